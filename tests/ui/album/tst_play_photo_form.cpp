#include "tests/support/modal_script.h"
#include "tests/ui/album/album_fixture.h"
#include "ui/album/photo_frame.h"
#include "ui/album/play_photo_form.h"
#include "ui/common/message_box.h"
#include "ui/common/video_area_frame.h"

#include <QContextMenuEvent>
#include <QFrame>
#include <QLabel>
#include <QMenu>
#include <QToolButton>

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int showTarget = 10'000; // milliseconds
#else
constexpr int showTarget = 2000; // milliseconds
#endif

} // namespace

class TestPlayPhotoForm : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aPictureThatFitsIsShownAtItsOwnSize();
    void aPictureLargerThanTheBoxIsAlwaysFitted();
    void aTinyPictureIsShownOneStepLarger();
    void zoomStepsGoAlongTheLadder();
    void zoomInAt800Stays();
    void zoomOutAt10Stays();
    void resizingTheAreaStartsAt100Again();
    void eachPictureStartsAt100();

    void previousAndNextStopAtTheEnds();
    void deletingShowsTheNextOne();
    void deletingTheLastOfSeveralShowsTheNewLast();
    void deletingTheOnlyPictureReturnsToTheAlbum();
    void deletingDoesNotAsk();
    void aHeldDeleteKeyDeletesOneFile();
    void aDeleteKeyWithModifiersDeletesNothing();
    void aFileThatCannotBeDeletedIsToldAndStays();
    void aTileThatIsGoneIsNotTouched();
    void backReturnsToTheAlbum();

    void aLeftDoubleClickTogglesFullScreen();
    void releasingEscapeLeavesFullScreen();
    void escapePressedElsewhereLeavesThePictureAlone();
    void theFullScreenButtonOnlyEnters();
    void keysStepInFullScreen();

    void picturesThatCannotBeShown_data();
    void picturesThatCannotBeShown();
    void aHugePhotoIsShownWithoutALongWait();
    void theFrameKeepsTheRatio();
    void thePictureIsDrawn();
    void thePictureIsLetGoWhenThePageIsLeft();
    void buttonsHaveNamesAndTips();
    void everyButtonHasAKeyAndAMenuEntry();

private:
    void show(int index = 0);
    CPhotoMgrItemForm *tile(const QString &file);
    void add(const QString &name, QSize size = {320, 240}, QColor colour = Qt::red)
    {
        m_list << tile(m_album->writePicture("A", name, colour, size));
    }
    QString status() { return m_page->findChild<QLabel *>("labelStatus")->text(); }
    void click(const char *button)
    {
        QTest::mouseClick(m_page->findChild<QToolButton *>(button), Qt::LeftButton);
    }
    QSize area() { return m_page->findChild<QWidget *>("framePhotoArea")->size(); }
    QWidget *window() { return m_page->findChild<QWidget *>("framePhotoWindow"); }

    std::unique_ptr<AlbumFixture> m_album;
    std::unique_ptr<QWidget> m_owner;
    std::unique_ptr<CPlayPhotoForm> m_page;
    CPhotoFrame *m_frame = nullptr;
    PageHost::TileList m_list;
};

void TestPlayPhotoForm::init()
{
    m_album = std::make_unique<AlbumFixture>();
    m_owner = std::make_unique<QWidget>();
    m_page = std::make_unique<CPlayPhotoForm>();
    m_frame = m_page->findChild<CPhotoFrame *>("framePhoto");
    m_page->resize(800, 600);
}

void TestPlayPhotoForm::cleanup()
{
    m_page.reset();
    m_list.clear();
    m_owner.reset();
    m_album.reset();
}

CPhotoMgrItemForm *TestPlayPhotoForm::tile(const QString &file)
{
    auto *tile = new CPhotoMgrItemForm(m_owner.get());
    tile->setItem(QFileInfo(file).fileName(), file);
    return tile;
}

void TestPlayPhotoForm::show(int index)
{
    m_page->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page.get()));
    m_page->setList(&m_list);
    m_page->showPhoto(m_list.at(index));
}

void TestPlayPhotoForm::aPictureThatFitsIsShownAtItsOwnSize()
{
    add("a.jpg");
    show();
    QCOMPARE(status(), QString("a.jpg  320x240(100%)"));
    QCOMPARE(m_page->zoom(), 100);
    const int left = (area().width() - 30 - 320) / 2 + 15;
    const int top = (area().height() - 48 - 240) / 2 + 15;
    QCOMPARE(window()->geometry(), QRect(left - 6, top - 5, 320 + 13, 240 + 31));
}

void TestPlayPhotoForm::aPictureLargerThanTheBoxIsAlwaysFitted()
{
    add("wide.jpg", {2000, 500});
    add("high.jpg", {500, 2000});
    show();
    const int width = area().width() - 30;
    QCOMPARE(status(), QString("wide.jpg  2000x500(%1%)").arg(width * 100 / 2000));
    for (int i = 0; i < 3; ++i)
        click("btnZoomIn");
    QCOMPARE(m_page->zoom(), width * 100 / 2000);
    QCOMPARE(status(), QString("wide.jpg  2000x500(%1%)").arg(width * 100 / 2000));
    click("btnNext");
    const int shown = 500 * (area().height() - 48) / 2000;
    QCOMPARE(status(), QString("high.jpg  500x2000(%1%)").arg(shown * 100 / 500));
    QVERIFY(window()->geometry().bottom() < area().height());
}

void TestPlayPhotoForm::aTinyPictureIsShownOneStepLarger()
{
    add("tiny.jpg", {90, 90});
    show();
    QCOMPARE(m_page->zoom(), 125);
    QCOMPARE(status(), QString("tiny.jpg  90x90(124%)"));
}

void TestPlayPhotoForm::zoomStepsGoAlongTheLadder()
{
    add("a.jpg", {300, 200});
    show();
    click("btnZoomIn");
    QCOMPARE(m_page->zoom(), 125);
    QCOMPARE(status(), QString("a.jpg  300x200(125%)"));
    click("btnZoomOut");
    QCOMPARE(m_page->zoom(), 100);
    click("btnZoomOut");
    QCOMPARE(m_page->zoom(), 75);
    QTest::keyClick(m_frame, Qt::Key_Plus);
    QCOMPARE(m_page->zoom(), 100);
    QTest::keyClick(m_frame, Qt::Key_Minus);
    QCOMPARE(m_page->zoom(), 75);
}

void TestPlayPhotoForm::zoomInAt800Stays()
{
    // Any larger picture is fitted before it gets there.
    m_page->resize(1400, 1300);
    add("a.jpg", {130, 130});
    show();
    for (int i = 0; i < 20; ++i)
        click("btnZoomIn");
    QCOMPARE(m_page->zoom(), 800);
    QCOMPARE(status(), QString("a.jpg  130x130(800%)"));
}

void TestPlayPhotoForm::zoomOutAt10Stays()
{
    add("a.jpg", {4000, 3000});
    show();
    for (int i = 0; i < 20; ++i)
        click("btnZoomOut");
    QCOMPARE(m_page->zoom(), 10);
    QCOMPARE(status(), QString("a.jpg  4000x3000(10%)"));
}

void TestPlayPhotoForm::resizingTheAreaStartsAt100Again()
{
    add("a.jpg", {300, 200});
    show();
    click("btnZoomOut");
    QCOMPARE(m_page->zoom(), 75);
    m_page->resize(900, 650);
    QTRY_COMPARE_WITH_TIMEOUT(m_page->zoom(), 100, AlbumFixture::deadline);
    QCOMPARE(status(), QString("a.jpg  300x200(100%)"));
}

void TestPlayPhotoForm::eachPictureStartsAt100()
{
    add("a.jpg", {300, 200});
    add("b.jpg", {300, 200});
    show();
    click("btnZoomOut");
    click("btnNext");
    QCOMPARE(status(), QString("b.jpg  300x200(100%)"));
}

void TestPlayPhotoForm::previousAndNextStopAtTheEnds()
{
    add("a.jpg");
    add("b.jpg");
    show();
    click("btnPrev");
    QVERIFY(status().startsWith("a.jpg"));
    click("btnNext");
    QVERIFY(status().startsWith("b.jpg"));
    click("btnNext");
    QVERIFY(status().startsWith("b.jpg"));
    QTest::keyClick(m_frame, Qt::Key_Left);
    QVERIFY(status().startsWith("a.jpg"));
    m_list.clear();
    click("btnNext");
    click("btnPrev");
    QVERIFY(status().startsWith("a.jpg"));
}

void TestPlayPhotoForm::deletingShowsTheNextOne()
{
    add("a.jpg");
    add("b.jpg");
    show();
    const QPointer<CPhotoMgrItemForm> gone = m_list.first();
    click("btnDelete");
    QVERIFY(status().startsWith("b.jpg"));
    QCOMPARE(m_list.size(), 1);
    QVERIFY(!QFile::exists(m_album->path("A", "a.jpg")));
    QTRY_VERIFY_WITH_TIMEOUT(!gone, AlbumFixture::deadline);
    QVERIFY(m_album->host.pages.isEmpty());
}

void TestPlayPhotoForm::deletingTheLastOfSeveralShowsTheNewLast()
{
    add("a.jpg");
    add("b.jpg");
    add("c.jpg");
    show(2);
    click("btnDelete");
    QVERIFY(status().startsWith("b.jpg"));
    QCOMPARE(m_list.size(), 2);
}

void TestPlayPhotoForm::deletingTheOnlyPictureReturnsToTheAlbum()
{
    add("a.jpg");
    show();
    click("btnDelete");
    QVERIFY(m_list.isEmpty());
    QCOMPARE(m_album->host.pages, QStringList({"back to photos"}));
    click("btnDelete");
    QCOMPARE(m_album->host.pages.size(), 2);
}

void TestPlayPhotoForm::deletingDoesNotAsk()
{
    add("a.jpg");
    add("b.jpg");
    show();
    QTest::keyClick(m_frame, Qt::Key_Delete);
    QVERIFY(!QApplication::activeModalWidget());
    QVERIFY(!QFile::exists(m_album->path("A", "a.jpg")));
}

void TestPlayPhotoForm::aHeldDeleteKeyDeletesOneFile()
{
    for (const char *name : {"a.jpg", "b.jpg", "c.jpg"})
        add(name);
    show();
    QTest::keyPress(m_frame, Qt::Key_Delete);
    for (int i = 0; i < 3; ++i) {
        repeatKey(m_frame, Qt::Key_Delete);
        repeatKey(m_page.get(), Qt::Key_Delete);
    }
    QTest::keyRelease(m_frame, Qt::Key_Delete);
    QVERIFY(!QFile::exists(m_album->path("A", "a.jpg")));
    QCOMPARE(m_list.size(), 2);
    QVERIFY(QFile::exists(m_album->path("A", "b.jpg")));
    QTest::keyClick(m_frame, Qt::Key_Delete);
    QCOMPARE(m_list.size(), 1);
}

void TestPlayPhotoForm::aDeleteKeyWithModifiersDeletesNothing()
{
    add("a.jpg");
    add("b.jpg");
    show();
    for (const auto modifier :
         {Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier}) {
        QTest::keyClick(m_frame, Qt::Key_Delete, modifier);
        QTest::keyClick(m_frame, Qt::Key_Right, modifier);
    }
    QCOMPARE(m_list.size(), 2);
    QVERIFY(status().startsWith("a.jpg"));
    QTest::keyClick(m_frame, Qt::Key_Delete, Qt::KeypadModifier);
    QCOMPARE(m_list.size(), 1);
}

void TestPlayPhotoForm::aFileThatCannotBeDeletedIsToldAndStays()
{
    m_list << tile(m_album->writeUndeletable("A", "a.jpg"));
    add("b.jpg");
    show();
    QString message;
    ModalScript script([&](CMessageBox *box) {
        message = box->findChild<QLabel *>("labelMessage")->text();
        box->accept();
    });
    click("btnDelete");
    QVERIFY(script.done());
    QVERIFY2(message.contains("a.jpg"), qPrintable(message));
    QCOMPARE(m_list.size(), 2);
    QVERIFY(status().startsWith("a.jpg"));
    QVERIFY(QFile::exists(m_album->path("A", "a.jpg")));
    click("btnNext");
    QVERIFY(status().startsWith("b.jpg"));
}

void TestPlayPhotoForm::aTileThatIsGoneIsNotTouched()
{
    add("a.jpg");
    add("b.jpg");
    show();
    delete m_list.takeFirst();
    click("btnNext");
    click("btnPrev");
    click("btnZoomIn");
    QCOMPARE(status(), QString());
    click("btnDelete");
    click("btnDelete");
    QCOMPARE(status(), QString());
    QVERIFY(QFile::exists(m_album->path("A", "a.jpg")));
    QVERIFY(QFile::exists(m_album->path("A", "b.jpg")));
}

void TestPlayPhotoForm::backReturnsToTheAlbum()
{
    add("a.jpg");
    show();
    click("btnBack");
    QCOMPARE(m_album->host.pages, QStringList({"back to photos"}));
}

void TestPlayPhotoForm::aLeftDoubleClickTogglesFullScreen()
{
    add("a.jpg");
    show();
    QTest::mouseDClick(m_frame, Qt::RightButton);
    QVERIFY(!m_page->isPictureFullScreen());
    QTest::mouseDClick(m_frame, Qt::LeftButton);
    QVERIFY(m_page->isPictureFullScreen());
    QVERIFY(m_frame->isWindow() && m_frame->isFullScreen());
    QTest::mouseDClick(m_frame, Qt::LeftButton);
    QVERIFY(!m_page->isPictureFullScreen());
    QVERIFY(!m_frame->isWindow());
    QCOMPARE(m_frame->parentWidget(), window());
}

void TestPlayPhotoForm::releasingEscapeLeavesFullScreen()
{
    add("a.jpg");
    show();
    click("btnFullScreen");
    QVERIFY(m_page->isPictureFullScreen());
    QTest::keyPress(m_frame, Qt::Key_Escape);
    QVERIFY(m_page->isPictureFullScreen());
    QTest::keyRelease(m_frame, Qt::Key_Escape);
    QVERIFY(!m_page->isPictureFullScreen());
}

// As when it closes a dialog over the picture.
void TestPlayPhotoForm::escapePressedElsewhereLeavesThePictureAlone()
{
    add("a.jpg");
    show();
    click("btnFullScreen");
    QTest::keyRelease(m_frame, Qt::Key_Escape);
    QVERIFY(m_page->isPictureFullScreen());
    QTest::keyPress(m_frame, Qt::Key_Escape);
    QFocusEvent left(QEvent::FocusOut);
    QApplication::sendEvent(m_frame, &left);
    QTest::keyRelease(m_frame, Qt::Key_Escape);
    QVERIFY(m_page->isPictureFullScreen());
    QTest::keyClick(m_frame, Qt::Key_Escape);
    QVERIFY(!m_page->isPictureFullScreen());
}

void TestPlayPhotoForm::theFullScreenButtonOnlyEnters()
{
    add("a.jpg");
    show();
    m_page->slotFullScreen();
    m_page->slotFullScreen();
    QVERIFY(m_page->isPictureFullScreen());
    QCOMPARE(status(), QString("a.jpg  320x240(100%)"));
}

void TestPlayPhotoForm::keysStepInFullScreen()
{
    add("a.jpg");
    add("b.jpg", {640, 480});
    show();
    m_page->slotFullScreen();
    QTest::keyClick(m_frame, Qt::Key_Right);
    QVERIFY(status().startsWith("b.jpg"));
    QVERIFY(m_page->isPictureFullScreen());
    QTest::keyClick(m_frame, Qt::Key_Delete);
    QTest::keyClick(m_frame, Qt::Key_Delete);
    QVERIFY(!m_page->isPictureFullScreen());
    QCOMPARE(m_album->host.pages, QStringList({"back to photos"}));
}

void TestPlayPhotoForm::picturesThatCannotBeShown_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("no picture at all");
    QTest::newRow("cut off") << QByteArray("\xff\xd8\xff\xe0\x00\x10JFIF", 10);
    // A frame header of 65,500 by 65,500 pixels without any data behind it.
    QTest::newRow("enormous") << QByteArray("\xff\xd8\xff\xc0\x00\x11\x08\xff\xdc\xff\xdc\x03\x01"
                                            "\x22\x00\x02\x11\x01\x03\x11\x01",
                                            21);
}

void TestPlayPhotoForm::picturesThatCannotBeShown()
{
    QFETCH(QByteArray, bytes);
    m_list << tile(m_album->write("A", "bad.jpg", bytes));
    add("good.jpg");
    show();
    QVERIFY2(status().startsWith("bad.jpg  "), qPrintable(status()));
    m_frame->grab();
    for (const char *button : {"btnZoomIn", "btnZoomOut", "btnZoomOut", "btnFullScreen"})
        click(button);
    QTest::keyClick(m_frame, Qt::Key_Escape);
    m_page->resize(500, 400);
    click("btnNext");
    QCOMPARE(status(), QString("good.jpg  320x240(100%)"));
    QVERIFY(QFile::remove(m_album->path("A", "good.jpg")));
    m_page->showPhoto(m_list.last());
    QCOMPARE(status(), QString("good.jpg  0x0(0%)"));
}

void TestPlayPhotoForm::aHugePhotoIsShownWithoutALongWait()
{
    add("huge.jpg", {11600, 8700}, Qt::green);
    const int before = threadTime();
    show();
    QVERIFY(alike(centreOf(m_frame), Qt::green));
    const int taken = threadTime() - before;
    qInfo("shown after %d ms of work", taken);
    QVERIFY2(taken < showTarget, qPrintable(QString::number(taken)));
    QVERIFY(status().startsWith("huge.jpg  11600x8700("));
}

void TestPlayPhotoForm::theFrameKeepsTheRatio()
{
    const QString file = m_album->writePicture("A", "a.jpg", Qt::red, {400, 100});
    CPhotoFrame frame;
    frame.resize(300, 300);
    auto *picture = frame.findChild<QFrame *>("framePicture");
    frame.setPhoto({}, {});
    QCOMPARE(picture->geometry(), QRect(0, 0, 300, 300));
    frame.setPhoto(file, {400, 100});
    QCOMPARE(picture->geometry(), QRect(0, 112, 300, 75));
    frame.setPhoto(file, {100, 400});
    QCOMPARE(picture->geometry(), QRect(112, 0, 75, 300));
    QCOMPARE(picture->styleSheet(), "QFrame#framePicture{border-image:url(" + file + ");}");
}

void TestPlayPhotoForm::thePictureIsDrawn()
{
    add("a.jpg", {320, 240}, Qt::green);
    add("b.jpg", {320, 240}, Qt::blue);
    show();
    QVERIFY(alike(centreOf(m_frame), Qt::green));
    click("btnNext");
    QVERIFY(alike(centreOf(m_frame), Qt::blue));
}

void TestPlayPhotoForm::thePictureIsLetGoWhenThePageIsLeft()
{
    add("a.jpg", {320, 240}, Qt::green);
    show();
    const auto *picture = m_frame->findChild<QFrame *>("framePicture");
    QVERIFY(!picture->styleSheet().isEmpty());
    m_page->hide();
    QCOMPARE(picture->styleSheet(), QString());
    m_page->show();
    QVERIFY(alike(centreOf(m_frame), Qt::green));
}

void TestPlayPhotoForm::buttonsHaveNamesAndTips()
{
    for (const QToolButton *button : m_page->findChildren<QToolButton *>()) {
        QVERIFY2(!button->toolTip().isEmpty(), qPrintable(button->objectName()));
        QVERIFY2(!button->accessibleName().isEmpty(), qPrintable(button->objectName()));
        QCOMPARE(button->focusPolicy(), Qt::StrongFocus);
    }
}

void TestPlayPhotoForm::everyButtonHasAKeyAndAMenuEntry()
{
    add("a.jpg");
    show();
    m_page->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_page.get()));
    QContextMenuEvent request(QContextMenuEvent::Mouse, QPoint(3, 3),
                              m_frame->mapToGlobal(QPoint(3, 3)));
    QCoreApplication::sendEvent(m_frame, &request);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    QVERIFY(menu);
    QStringList texts;
    for (const QAction *action : menu->actions())
        if (!action->isSeparator())
            texts << action->text().section('\t', 0, 0);
    menu->close();
    QApplication::setActiveWindow(m_page.get()); // the platform of the tests activates popups
    for (const auto *button : m_page->findChildren<QToolButton *>())
        QVERIFY2(texts.contains(button->accessibleName()), qPrintable(button->objectName()));

    QTest::keyClick(m_page.get(), Qt::Key_F);
    QVERIFY(m_page->isPictureFullScreen());
    QTest::keyClick(m_frame, Qt::Key_Escape);
    QVERIFY(!m_page->isPictureFullScreen());
    QApplication::setActiveWindow(m_page.get());
    QTest::keyClick(m_page.get(), Qt::Key_Backspace);
    QCOMPARE(m_album->host.pages.last(), QString("back to photos"));
}

QTEST_MAIN(TestPlayPhotoForm)
#include "tst_play_photo_form.moc"
