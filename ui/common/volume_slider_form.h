#pragma once

#include <QWidget>

#include <memory>

class QAbstractButton;

namespace Ui {
class CVolumeSliderForm;
}

namespace zelvaro {
/// Volumes of a session: the loudest, and the level of the source.
constexpr int maxVolume = 200;
constexpr int naturalVolume = 100;
} // namespace zelvaro

/// A volume slider with a mute button. Muting does not move the slider, which is left out where a
/// form lets the widget be narrower than both. GUI thread only.
class CVolumeSliderForm : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(int value READ value WRITE setValue NOTIFY valueChanged)

public:
    explicit CVolumeSliderForm(QWidget *parent = nullptr);
    ~CVolumeSliderForm() override;

    void setRange(int min, int max);
    void setValue(int value);
    int value() const;
    bool isMuted() const { return m_muted; }
    QAbstractButton *muteButton() const;
    /// Whether the slider moves what nobody hears: it is pale then, and its tool tip says why.
    /// Empty: it is heard.
    void setUnheard(const QString &why);

signals:
    void valueChanged(int value);
    void muteChanged(bool muted);

protected:
    void resizeEvent(QResizeEvent *event) override;

private slots:
    void slotValueChanged(int value);
    void slotMuteClicked();

private:
    void updateMuteStyle();

    std::unique_ptr<Ui::CVolumeSliderForm> m_ui;
    bool m_muted = false;
};
