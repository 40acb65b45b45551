#pragma once

#include <QApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <QProgressDialog>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <deque>
#include <functional>

/// Answers modal windows while the code under test runs them: each step gets one window that has
/// come up, in the order of the steps. A step takes a pointer to the class of window that it is
/// for (QWidget for any). Made before the call that shows the first window; GUI thread only.
///
/// A progress dialog without a step is left alone: it closes by itself; so is a window that was
/// open before. Any other window that nobody expects is closed, so that the test ends, and done()
/// tells.
class ModalScript : public QObject
{
public:
    ModalScript()
    {
        for (QWidget *window : QApplication::topLevelWidgets())
            if (window->isModal() && window->isVisible())
                m_known.append(window);
        connect(&m_timer, &QTimer::timeout, this, &ModalScript::look);
        m_timer.start(interval);
        m_sinceStep.start();
    }

    template <typename Step>
    explicit ModalScript(Step step) : ModalScript()
    {
        then(std::move(step));
    }

    template <typename Step>
    ModalScript &then(Step step)
    {
        return append(std::function(std::move(step)));
    }

    /// Every step has come to its end and no other window came.
    bool done() const { return m_steps.empty() && m_running == 0 && !m_surprised; }

private:
    struct Step
    {
        std::function<bool(const QWidget *)> isFor;
        std::function<void(QWidget *)> act;
    };

    template <typename Window>
    ModalScript &append(std::function<void(Window *)> step)
    {
        m_steps.push_back(
            {[](const QWidget *window) { return qobject_cast<const Window *>(window); },
             [step = std::move(step)](QWidget *window) { step(qobject_cast<Window *>(window)); }});
        return *this;
    }

    void look()
    {
        QWidget *modal = QApplication::activeModalWidget();
        if (!modal || !modal->isVisible())
            return;
        if (m_sinceStep.hasExpired(patience) && !QTest::currentTestFailed())
            QTest::qFail("a window is open and what should close it does not come", __FILE__,
                         __LINE__);
        // The test waits behind the window: after a failed check nobody else would close it.
        if (QTest::currentTestFailed())
            modal->hide();
        else if (modal == m_answered || !modal->windowHandle()->isExposed())
            return;
        else if (!m_steps.empty() && m_steps.front().isFor(modal))
            answer(modal);
        else if (!m_known.contains(modal) && !qobject_cast<QProgressDialog *>(modal)) {
            m_surprised = true;
            modal->close();
        }
    }

    void answer(QWidget *modal)
    {
        m_answered = modal;
        m_known.append(modal);
        const Step step = m_steps.front();
        m_steps.pop_front();
        ++m_running;
        m_sinceStep.restart();
        step.act(modal);
        m_sinceStep.restart();
        --m_running;
    }

    static constexpr int interval = 5;       // milliseconds
    static constexpr int patience = 120'000; // milliseconds; a step may wait for a camera

    QTimer m_timer;
    QElapsedTimer m_sinceStep;
    std::deque<Step> m_steps;
    QPointer<QWidget> m_answered;
    QList<QPointer<QWidget>> m_known;
    int m_running = 0; ///< a step may show the window that the next step answers
    bool m_surprised = false;
};

/// Clicks a button of a window with the mouse.
inline void press(QWidget *window, const char *button)
{
    auto *widget = window->findChild<QWidget *>(QLatin1String(button));
    QVERIFY2(widget, button);
    QTest::mouseClick(widget, Qt::LeftButton);
}
