#include "resources/resources.h"

#include <QtTest>
#include <QtWidgets>

namespace {

QStringList warnings;

void keepWarning(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type != QtDebugMsg && type != QtInfoMsg)
        warnings.append(text);
}

/// The widget as it is drawn on a screen of that many device pixels to the logical one.
QImage drawn(QWidget &widget, qreal density)
{
    QImage image(widget.size() * density, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(density);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(),
                  QWidget::DrawChildren | QWidget::DrawWindowBackground);
    return image;
}

/// A translucent window that shows nothing but its frame, as every dialog is.
class FramedDialog : public QDialog
{
public:
    explicit FramedDialog(const QString &image)
    {
        setAttribute(Qt::WA_TranslucentBackground);
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        auto *frame = new QFrame;
        frame->setObjectName(QStringLiteral("frame"));
        frame->setStyleSheet(
            QStringLiteral("QFrame#frame{border-image:url(:/images/%1.png) 36 32 40 32;"
                           "border-top-width:18px;border-right-width:16px;"
                           "border-bottom-width:20px;border-left-width:16px;}")
                .arg(image));
        layout->addWidget(frame);
    }
};

int distance(const QColor &a, const QColor &b)
{
    return qAbs(a.red() - b.red()) + qAbs(a.green() - b.green()) + qAbs(a.blue() - b.blue());
}

} // namespace

class TestLook : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void styleSheetHasNoErrors();
    void styleSheetHasNoOpenNames();
    void fontsHaveSubstitutes();
    void iconHasEverySize();
    void windowsGetTheIcon();
    void frameLinesStaySharp_data();
    void frameLinesStaySharp();
    void frameCornersAreRound();
    void buttonShowsItsStates();
    void focusIsVisible_data();
    void focusIsVisible();
};

void TestLook::initTestCase()
{
    const auto before = qInstallMessageHandler(keepWarning);
    zelvaro::initResources();
    zelvaro::applyLook();
    QWidget widget;
    widget.ensurePolished();
    qInstallMessageHandler(before);
}

void TestLook::styleSheetHasNoErrors()
{
    QVERIFY2(warnings.isEmpty(), qPrintable(warnings.join('\n')));
    QCOMPARE(qApp->styleSheet(), zelvaro::applicationStyleSheet());
}

void TestLook::styleSheetHasNoOpenNames()
{
    const QString sheet = zelvaro::applicationStyleSheet();
    QVERIFY(sheet.contains(QLatin1String("QScrollBar")));
    QVERIFY(!sheet.contains(QLatin1String("{{")));
}

void TestLook::fontsHaveSubstitutes()
{
    QVERIFY(QFont::substitutes("Calibri").contains("Carlito", Qt::CaseInsensitive));
    QVERIFY(QFont::substitutes("Arial").contains("Liberation Sans", Qt::CaseInsensitive));
    QCOMPARE(QApplication::font().family(), QStringLiteral("Calibri"));
}

void TestLook::iconHasEverySize()
{
    const QList<QSize> sizes = zelvaro::applicationIcon().availableSizes();
    for (const int size : {16, 24, 32, 48, 64, 128, 256})
        QVERIFY2(sizes.contains(QSize(size, size)), qPrintable(QString::number(size)));
}

void TestLook::windowsGetTheIcon()
{
    QWidget window;
    QVERIFY(!window.windowIcon().isNull());
}

void TestLook::frameLinesStaySharp_data()
{
    QTest::addColumn<qreal>("density");
    QTest::newRow("100 %") << 1.0;
    QTest::newRow("200 %") << 2.0;
}

/// The dialog's outline is one logical pixel, 10 pixels from the left: a pure colour, with the
/// white line next to it, whatever the density and the size.
void TestLook::frameLinesStaySharp()
{
    QFETCH(qreal, density);
    FramedDialog dialog(QStringLiteral("settingframe"));
    for (const QSize size : {QSize(64, 80), QSize(333, 257), QSize(1600, 900)}) {
        dialog.resize(size);
        const QImage image = drawn(dialog, density);
        const int middle = image.height() / 2;
        for (int i = 0; i < density; ++i) {
            const QColor outline = image.pixelColor(int(10 * density) + i, middle);
            QVERIFY2(distance(outline, QColor(0x58, 0x78, 0x94)) <= 6, qPrintable(outline.name()));
            const QColor light = image.pixelColor(int(11 * density) + i, middle);
            QVERIFY2(distance(light, Qt::white) <= 6, qPrintable(light.name()));
        }
    }
}

void TestLook::frameCornersAreRound()
{
    FramedDialog dialog(QStringLiteral("messageframe"));
    dialog.resize(300, 200);
    const QImage image = drawn(dialog, 1);
    QVERIFY(image.pixelColor(0, 0).alpha() < 16);
    QVERIFY2(image.pixelColor(10, 10).alpha() < 255, "the corner of the dialog is square");
    QCOMPARE(image.pixelColor(150, 100).alpha(), 255);
    const int shadowBelow = image.pixelColor(150, 190).alpha();
    QVERIFY2(shadowBelow > 0 && shadowBelow < 200, qPrintable(QString::number(shadowBelow)));
}

void TestLook::buttonShowsItsStates()
{
    QPushButton button(QStringLiteral("Search"));
    button.resize(button.sizeHint());
    QCOMPARE(button.height(), 30);
    QVERIFY(button.width() >= 88);
    const QImage plain = drawn(button, 1);
    button.setDown(true);
    const QImage down = drawn(button, 1);
    button.setDown(false);
    button.setEnabled(false);
    const QImage disabled = drawn(button, 1);
    QVERIFY(plain != down);
    QVERIFY(plain != disabled);
    QVERIFY(down != disabled);
}

void TestLook::focusIsVisible_data()
{
    QTest::addColumn<QWidget *>("widget");
    auto *group = new QGroupBox(QStringLiteral("Detection Window: 1"));
    group->setCheckable(true);
    auto *list = new QListWidget;
    list->addItem(QStringLiteral("Camera"));
    QTest::newRow("push button") << static_cast<QWidget *>(new QPushButton(QStringLiteral("OK")));
    QTest::newRow("tool button") << static_cast<QWidget *>(new QToolButton);
    QTest::newRow("line edit") << static_cast<QWidget *>(new QLineEdit);
    QTest::newRow("check box") << static_cast<QWidget *>(new QCheckBox(QStringLiteral("Manual")));
    QTest::newRow("group") << static_cast<QWidget *>(group);
    QTest::newRow("slider") << static_cast<QWidget *>(new QSlider(Qt::Horizontal));
    QTest::newRow("list") << static_cast<QWidget *>(list);
    QTest::newRow("combo box") << static_cast<QWidget *>(new QComboBox);
}

void TestLook::focusIsVisible()
{
    QFETCH(QWidget *, widget);
    QWidget window;
    QVBoxLayout layout(&window);
    auto *other = new QLineEdit;
    layout.addWidget(other);
    layout.addWidget(widget);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window, 30000));
    other->setFocus();
    QTRY_VERIFY_WITH_TIMEOUT(other->hasFocus(), 30000);
    const QImage without = drawn(*widget, 1);
    widget->setFocus(Qt::TabFocusReason);
    QTRY_VERIFY_WITH_TIMEOUT(widget->hasFocus(), 30000);
    const QImage with = drawn(*widget, 1);
    int different = 0;
    for (int y = 0; y < with.height(); ++y)
        for (int x = 0; x < with.width(); ++x)
            different += distance(with.pixelColor(x, y), without.pixelColor(x, y)) >= 60;
    QVERIFY2(different >= with.width(), qPrintable(QString::number(different)));
}

QTEST_MAIN(TestLook)

#include "tst_look.moc"
