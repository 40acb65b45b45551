#include "ui/common/message_box.h"

#include "ui_message_box.h"

#include <QGuiApplication>
#include <QIcon>
#include <QRegularExpression>
#include <QScreen>

namespace {

constexpr int wrapWidth = 360; // pixels; longer texts are wrapped

QPixmap iconOf(int kind)
{
    constexpr QSize size(48, 48);
    switch (kind) {
    case CMessageBox::Question:
        return QIcon(QStringLiteral(":/images/icon/question.png")).pixmap(size);
    case CMessageBox::Error:
        return QIcon(QStringLiteral(":/images/icon/error.png")).pixmap(size);
    default:
        return {};
    }
}

} // namespace

CMessageBox::CMessageBox(int kind, const QString &title, const QString &text,
                         QMessageBox::StandardButtons buttons, QWidget *parent)
    : QDialog(parent, Qt::FramelessWindowHint)
    , m_ui(std::make_unique<Ui::CMessageBox>())
{
    m_ui->setupUi(this);
    m_ui->frameTitle->attach(this, true);
    setAttribute(Qt::WA_TranslucentBackground);

    connect(m_ui->btnOk, &QPushButton::clicked, this, &CMessageBox::slotOK);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &CMessageBox::slotClose);

    m_ui->labelIcon->clear();
    const QPixmap icon = iconOf(kind);
    if (!icon.isNull())
        m_ui->labelIcon->setPixmap(icon);
    m_ui->labelIcon->setVisible(!icon.isNull()); // no icon takes no room

    setWindowTitle(title);
    setAccessibleName(title);
    setAccessibleDescription(text);
    m_ui->labelTitle->setText(title);
    m_ui->labelMessage->setText(text);

    m_ui->btnOk->setVisible(buttons & QMessageBox::Ok);
    m_ui->btnCancel->setVisible(buttons & QMessageBox::Cancel);
    fitToText(text);
}

CMessageBox::~CMessageBox() = default;

void CMessageBox::slotOK()
{
    accept();
}

void CMessageBox::slotClose()
{
    reject();
}

// A label breaks lines between words only, so the longest word sets the least width.
void CMessageBox::fitToText(const QString &text)
{
    const QFontMetrics metrics(m_ui->labelMessage->font());
    int longestWord = 0;
    for (const QString &word : text.split(QRegularExpression(QStringLiteral("\\s+"))))
        longestWord = qMax(longestWord, metrics.horizontalAdvance(word));
    const int natural = metrics.size(0, text).width();
    const int screenLimit = QGuiApplication::primaryScreen()->availableGeometry().width() * 3 / 4;
    const int width = qMin(qMax(longestWord, qMin(natural, wrapWidth)), screenLimit);
    m_ui->labelMessage->setMinimumWidth(width + metrics.averageCharWidth());
}
