#pragma once

#include <QWidget>

#include <array>

class QLineEdit;

/// An IPv4 address in four edits with dots between them. A dot typed in one moves on to the next;
/// a whole address pasted into one fills all four. GUI thread only.
class CAddressEdit : public QWidget
{
    Q_OBJECT

public:
    explicit CAddressEdit(QWidget *parent = nullptr);

    /// The address in host order, as QHostAddress takes it.
    void setAddress(quint32 address);
    /// 0 when an edit is empty or its number is out of range.
    quint32 address() const;
    void setReadOnly(bool readOnly);
    bool isReadOnly() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool pasteWhole();

    std::array<QLineEdit *, 4> m_octets{};
};
