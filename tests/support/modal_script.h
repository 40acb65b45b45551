#pragma once

#include <QApplication>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <deque>
#include <functional>

/// Answers modal windows while the code under test runs them: each step gets one new window, in
/// the order in which they come up. A window that nobody expects is closed, so that the test ends,
/// and done() tells.
class ModalScript : public QObject
{
public:
    using Step = std::function<void(QWidget *)>;

    ModalScript()
    {
        m_timer.setInterval(5);
        connect(&m_timer, &QTimer::timeout, this, &ModalScript::look);
        m_timer.start();
    }

    ModalScript &then(Step step)
    {
        m_steps.push_back(std::move(step));
        return *this;
    }

    /// Every step has run and no other window came.
    bool done() const { return m_steps.empty() && !m_surprised; }

private:
    void look()
    {
        QWidget *modal = QApplication::activeModalWidget();
        if (!modal || !modal->isVisible() || modal == m_answered)
            return;
        m_answered = modal;
        if (m_steps.empty()) {
            m_surprised = true;
            modal->close();
            return;
        }
        const Step step = m_steps.front();
        m_steps.pop_front();
        step(modal);
    }

    QTimer m_timer;
    std::deque<Step> m_steps;
    QPointer<QWidget> m_answered;
    bool m_surprised = false;
};

/// Clicks a button of a window with the mouse.
inline void press(QWidget *window, const char *button)
{
    auto *widget = window->findChild<QWidget *>(QLatin1String(button));
    QVERIFY2(widget, button);
    QTest::mouseClick(widget, Qt::LeftButton);
}
