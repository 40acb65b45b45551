#include "ui/discovery/address_edit.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHostAddress>
#include <QIntValidator>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>

#include <algorithm>

CAddressEdit::CAddressEdit(QWidget *parent) : QWidget(parent)
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    auto *octetRange = new QIntValidator(0, 255, this);
    for (std::size_t i = 0; i < m_octets.size(); ++i) {
        if (i > 0)
            layout->addWidget(new QLabel(QStringLiteral(" ."), this));
        auto *edit = new QLineEdit(this);
        edit->setObjectName(QStringLiteral("octet%1").arg(i + 1));
        edit->setAccessibleName(tr("Part %1 of the address").arg(i + 1));
        edit->setMaxLength(3);
        edit->setValidator(octetRange);
        edit->setAlignment(Qt::AlignCenter);
        edit->installEventFilter(this);
        layout->addWidget(edit);
        m_octets[i] = edit;
    }
    setFocusProxy(m_octets.front());
}

void CAddressEdit::setAddress(quint32 address)
{
    const QStringList parts = QHostAddress(address).toString().split(QLatin1Char('.'));
    for (std::size_t i = 0; i < m_octets.size(); ++i)
        m_octets[i]->setText(parts.value(static_cast<int>(i)));
}

// Decimal whatever the leading zeros: nobody types octal addresses.
quint32 CAddressEdit::address() const
{
    quint32 address = 0;
    for (const QLineEdit *edit : m_octets) {
        bool isNumber = false;
        const uint octet = edit->text().toUInt(&isNumber);
        if (!isNumber || octet > 255)
            return 0;
        address = address << 8 | octet;
    }
    return address;
}

void CAddressEdit::setReadOnly(bool readOnly)
{
    for (QLineEdit *edit : m_octets)
        edit->setReadOnly(readOnly);
}

bool CAddressEdit::isReadOnly() const
{
    return m_octets.front()->isReadOnly();
}

bool CAddressEdit::pasteWhole()
{
    QHostAddress pasted;
    const QString text = QGuiApplication::clipboard()->text().trimmed();
    if (text.count(QLatin1Char('.')) != 3 || !pasted.setAddress(text))
        return false;
    setAddress(pasted.toIPv4Address());
    return true;
}

bool CAddressEdit::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || isReadOnly())
        return QWidget::eventFilter(watched, event);
    const auto *key = static_cast<QKeyEvent *>(event);
    if (key->matches(QKeySequence::Paste))
        return pasteWhole();
    const auto octet = std::find(m_octets.begin(), m_octets.end(), watched);
    if (key->text() != QLatin1String(".") || octet == m_octets.end())
        return QWidget::eventFilter(watched, event);
    if (!(*octet)->text().isEmpty() && std::next(octet) != m_octets.end()) {
        (*std::next(octet))->setFocus();
        (*std::next(octet))->selectAll();
    }
    return true;
}
