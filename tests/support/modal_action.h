#pragma once

#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QTimer>

#include <functional>

/// Acts on a modal dialog while the code under test runs it: made before the call that shows the
/// dialog, it waits for one of type Dialog and hands it to act, once. A dialog that nobody expects
/// is rejected after the deadline, so that a failing test ends.
template <typename Dialog>
class ModalAction
{
public:
    explicit ModalAction(std::function<void(Dialog *)> act, int deadlineMs = 20000)
        : m_act(std::move(act))
        , m_deadlineMs(deadlineMs)
    {
        m_clock.start();
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
        m_timer.start(2);
    }

    /// Whether the dialog came and was acted on.
    bool done() const { return m_done; }

private:
    void look()
    {
        QWidget *modal = QApplication::activeModalWidget();
        if (auto *dialog = qobject_cast<Dialog *>(modal); dialog && dialog->isVisible()) {
            m_timer.stop();
            m_done = true;
            m_act(dialog);
        } else if (m_clock.hasExpired(m_deadlineMs)) {
            if (auto *other = qobject_cast<QDialog *>(modal))
                other->done(QDialog::Rejected);
        }
    }

    std::function<void(Dialog *)> m_act;
    QTimer m_timer;
    QElapsedTimer m_clock;
    int m_deadlineMs;
    bool m_done = false;
};
