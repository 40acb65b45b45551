#pragma once

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <deque>
#include <functional>

/// Steps for the modal windows that come up while the program runs, in their order: each step runs
/// once, when a window of its class can be seen and typed into. Windows of other classes (a wait
/// dialog) are left alone.
class ModalQueue : public QObject
{
public:
    ModalQueue()
    {
        connect(&m_timer, &QTimer::timeout, this, &ModalQueue::look);
        m_timer.start(20);
        m_sinceStep.start();
    }

    template <typename Window>
    ModalQueue &then(std::function<void(Window *)> step)
    {
        m_steps.push_back({&Window::staticMetaObject, [step = std::move(step)](QWidget *window) {
                               step(static_cast<Window *>(window));
                           }});
        return *this;
    }

    bool done() const { return m_steps.empty() && !m_running; }

private:
    struct Step
    {
        const QMetaObject *type;
        std::function<void(QWidget *)> act;
    };

    void look()
    {
        QWidget *modal = QApplication::activeModalWidget();
        // The test waits behind the window: after a failed check nobody else would close it.
        if (!m_running && !m_steps.empty() && m_sinceStep.hasExpired(kPatience))
            QTest::qFail("the window that was expected did not come", __FILE__, __LINE__);
        if (QTest::currentTestFailed() && modal) {
            modal->hide();
            return;
        }
        if (m_running || m_steps.empty() || !modal || !modal->isVisible() ||
            !modal->metaObject()->inherits(m_steps.front().type))
            return;
        m_running = true;
        if (QTest::qWaitForWindowExposed(modal, kPatience)) {
            const Step step = m_steps.front();
            m_steps.pop_front();
            step.act(modal);
        }
        m_running = false;
        m_sinceStep.restart();
    }

    static constexpr int kPatience = 60'000; // milliseconds

    QTimer m_timer;
    QElapsedTimer m_sinceStep;
    std::deque<Step> m_steps;
    bool m_running = false;
};
