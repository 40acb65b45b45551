#include "ui/live/select_camera_form.h"
#include "ui/live/select_camera_item_form.h"
#include "ui/live/select_camera_recording_form.h"

#include "resources/resources.h"
#include "tests/support/declared.h"
#include "tests/support/modal_script.h"
#include "tests/support/tool_tip_text.h"
#include "tests/ui/live/live_fixture.h"
#include "ui/common/title_widget.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>

#include <unistd.h>

class TestSelectionDialogs : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { zelvaro::initResources(); }
    void init();
    void cleanup();

    void theDialogIsFrameless();
    void okAcceptsAndCloseRejects();
    void escapeRejectsAndEnterAccepts();
    void oneTileForEachCameraInListOrder();
    void marksStartAsTheFlagsAre();
    void applyStoresTheFlagsAndSavesTheFile();
    void withoutCamerasTheDialogIsEmptyAndOkStillSaves();
    void theRecordingDialogShowsTheShownCameras();
    void applyingTheRecordingDialogSavesNothing();
    void theEmptyRecordingDialogAppliesNothing();
    void closingChangesNothing();
    void nineCamerasFillTwoRowsAndTheFirstColumnOfTheThird();
    void aHundredCamerasScroll();
    void picturesOutOfSightAreGivenBack();
    void aHundredLargePicturesTakeLittleMemory();
    void signalsAndSlotsStandInOrder();
    void aPressAnywhereOnATileToggles();
    void spaceTogglesAndTabWalks();
    void theThumbnailIsShownWhenThereIsOne();
    void aThumbnailInAFolderWithBlanksIsShown();
    void aLongNameStaysInItsTile();
    void aSessionDestroyedMeanwhileIsPassedOver();

private:
    template <typename Dialog>
    static QList<CSelectCameraItemForm *> tiles(const Dialog &dialog)
    {
        return dialog.template findChild<zelvaro::SelectionFrame *>()->tiles();
    }
    static QString checkStyle(const CSelectCameraItemForm *tile)
    {
        return tile->findChild<QLabel *>(QStringLiteral("labelCheck"))->styleSheet();
    }

    std::unique_ptr<LiveFixture> m_live;
};

void TestSelectionDialogs::init()
{
    m_live = std::make_unique<LiveFixture>();
}

void TestSelectionDialogs::cleanup()
{
    m_live.reset();
}

void TestSelectionDialogs::theDialogIsFrameless()
{
    CSelectCameraForm dialog;
    QVERIFY(dialog.windowFlags() & Qt::FramelessWindowHint);
    QVERIFY(dialog.testAttribute(Qt::WA_TranslucentBackground));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Select Camera"));
    QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("labelTitle"))->text(),
             QStringLiteral("Select Camera"));
    CSelectCameraRecordingForm recording({});
    QVERIFY(recording.windowFlags() & Qt::FramelessWindowHint);
    QCOMPARE(recording.windowTitle(), QStringLiteral("Select Camera Recording"));

    dialog.move(100, 100);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto *title = dialog.findChild<CTitleWidget *>();
    QTest::mousePress(title, Qt::LeftButton, {}, QPoint(10, 5));
    QMouseEvent move(QEvent::MouseMove, QPointF(60, 35), title->mapToGlobal(QPoint(60, 35)),
                     Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(title, &move);
    QCOMPARE(dialog.pos(), QPoint(150, 130));
}

void TestSelectionDialogs::okAcceptsAndCloseRejects()
{
    for (const char *button : {"btnOK", "btnClose"}) {
        CSelectCameraForm dialog;
        ModalScript script([button](QDialog *shown) { press(shown, button); });
        QCOMPARE(dialog.exec(), qstrcmp(button, "btnOK") == 0 ? 1 : 0);
        QVERIFY(script.done());
    }
}

void TestSelectionDialogs::escapeRejectsAndEnterAccepts()
{
    m_live->addCameras({QStringLiteral("A")});
    for (Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
        CSelectCameraForm dialog;
        ModalScript script([key](QDialog *shown) {
            QWidget *focus = shown->focusWidget();
            QTest::keyClick(focus ? focus : shown, key);
        });
        QCOMPARE(dialog.exec(), key == Qt::Key_Return ? 1 : 0);
    }
}

void TestSelectionDialogs::oneTileForEachCameraInListOrder()
{
    m_live->addCameras({QStringLiteral("B"), QStringLiteral("A"), QStringLiteral("C")});
    CSelectCameraForm dialog;
    QVERIFY(dialog.findChild<CSelectCameraFrame *>());
    QCOMPARE(tiles(dialog).size(), 3);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(tiles(dialog).at(i)->camera(), m_live->camera(i));
        QCOMPARE(
            tiles(dialog).at(i)->findChild<QLabel *>(QStringLiteral("labelCameraName"))->text(),
            m_live->camera(i)->name());
    }
}

void TestSelectionDialogs::marksStartAsTheFlagsAre()
{
    m_live->addCameras({QStringLiteral("A"), QStringLiteral("B")});
    CameraSettings::instance().at(1)->multiLive = false;
    CSelectCameraForm dialog;
    QVERIFY(tiles(dialog).at(0)->isChecked());
    QVERIFY(!tiles(dialog).at(1)->isChecked());
    QCOMPARE(checkStyle(tiles(dialog).at(0)),
             QStringLiteral("border-image:url(:/images/multilive/selectcameraitem_check.png);"));
    QVERIFY(checkStyle(tiles(dialog).at(1)).isEmpty());
}

void TestSelectionDialogs::applyStoresTheFlagsAndSavesTheFile()
{
    m_live->addCameras({QStringLiteral("A"), QStringLiteral("B")}, false);
    CSelectCameraForm dialog;
    QTest::mousePress(tiles(dialog).at(1), Qt::LeftButton);
    QVERIFY(!CameraSettings::instance().at(1)->multiLive);
    dialog.Apply();
    QVERIFY(!CameraSettings::instance().at(0)->multiLive);
    QVERIFY(CameraSettings::instance().at(1)->multiLive);
    QVERIFY(!CameraSettings::instance().at(1)->recordSelected);
    QFile file(CameraSettings::instance().configFile());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray saved = file.readAll();
    QVERIFY(saved.indexOf("MULTILIVE=0") < saved.indexOf("HOSTNAME=B"));
    QVERIFY(saved.indexOf("MULTILIVE=1") > saved.indexOf("HOSTNAME=B"));
}

void TestSelectionDialogs::withoutCamerasTheDialogIsEmptyAndOkStillSaves()
{
    CSelectCameraForm dialog;
    QVERIFY(tiles(dialog).isEmpty());
    QVERIFY(!QFile::exists(CameraSettings::instance().configFile()));
    ModalScript script([](CSelectCameraForm *shown) { press(shown, "btnOK"); });
    QCOMPARE(dialog.exec(), 1);
    QVERIFY(script.done());
    dialog.Apply();
    QVERIFY(QFile::exists(CameraSettings::instance().configFile()));
}

void TestSelectionDialogs::theRecordingDialogShowsTheShownCameras()
{
    m_live->addCameras({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    CameraSettings::instance().at(0)->recordSelected = true;
    CSelectCameraRecordingForm dialog({m_live->camera(2), m_live->camera(0)});
    QVERIFY(dialog.findChild<CSelectCameraRecordingFrame *>());
    QCOMPARE(tiles(dialog).size(), 2);
    QCOMPARE(tiles(dialog).at(0)->camera(), m_live->camera(2));
    QVERIFY(!tiles(dialog).at(0)->isChecked());
    QVERIFY(tiles(dialog).at(1)->isChecked());
}

void TestSelectionDialogs::applyingTheRecordingDialogSavesNothing()
{
    m_live->addCameras({QStringLiteral("A"), QStringLiteral("B")});
    CSelectCameraRecordingForm dialog({m_live->camera(0), m_live->camera(1)});
    QTest::mousePress(tiles(dialog).at(0), Qt::LeftButton);
    dialog.Apply();
    QVERIFY(CameraSettings::instance().at(0)->recordSelected);
    QVERIFY(!CameraSettings::instance().at(1)->recordSelected);
    QVERIFY(CameraSettings::instance().at(1)->multiLive);
    QVERIFY(!QFile::exists(CameraSettings::instance().configFile()));
}

void TestSelectionDialogs::theEmptyRecordingDialogAppliesNothing()
{
    m_live->addCameras({QStringLiteral("A")});
    CameraSettings::instance().at(0)->recordSelected = true;
    CSelectCameraRecordingForm dialog({});
    QVERIFY(tiles(dialog).isEmpty());
    dialog.Apply();
    QVERIFY(CameraSettings::instance().at(0)->recordSelected);
}

void TestSelectionDialogs::closingChangesNothing()
{
    m_live->addCameras({QStringLiteral("A")});
    CSelectCameraForm dialog;
    ModalScript script([](CSelectCameraForm *shown) {
        QTest::mousePress(tiles(*shown).at(0), Qt::LeftButton);
        QVERIFY(!tiles(*shown).at(0)->isChecked());
        press(shown, "btnClose");
    });
    QCOMPARE(dialog.exec(), 0);
    QVERIFY(script.done());
    QVERIFY(CameraSettings::instance().at(0)->multiLive);
    QVERIFY(!QFile::exists(CameraSettings::instance().configFile()));
}

void TestSelectionDialogs::nineCamerasFillTwoRowsAndTheFirstColumnOfTheThird()
{
    QStringList hostnames;
    for (int i = 0; i < 9; ++i)
        hostnames << QString::number(i);
    m_live->addCameras(hostnames);
    CSelectCameraForm dialog;
    const auto *layout =
        qobject_cast<QGridLayout *>(dialog.findChild<CSelectCameraFrame *>()->layout());
    QVERIFY(layout);
    QCOMPARE(layout->spacing(), 10);
    for (int i = 0; i < 9; ++i)
        QCOMPARE(layout->itemAtPosition(i / 4, i % 4)->widget(), tiles(dialog).at(i));
    QCOMPARE(layout->columnStretch(4), 10);
    QCOMPARE(layout->rowStretch(3), 10);
    QCOMPARE(layout->rowStretch(2), 0);

    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QCOMPARE(tiles(dialog).at(1)->x() - tiles(dialog).at(0)->geometry().right() - 1, 10);
    auto *scroll = dialog.findChild<QScrollArea *>();
    QVERIFY(tiles(dialog).at(3)->geometry().right() < scroll->viewport()->width());
}

void TestSelectionDialogs::aHundredCamerasScroll()
{
    QStringList hostnames;
    for (int i = 0; i < 100; ++i)
        hostnames << QString::number(i);
    m_live->addCameras(hostnames);
    CSelectCameraForm dialog;
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto *scroll = dialog.findChild<QScrollArea *>();
    QVERIFY(tiles(dialog).at(3)->geometry().right() < scroll->viewport()->width());
    CSelectCameraItemForm *beforeLast = tiles(dialog).at(98);
    dialog.activateWindow();
    beforeLast->setFocus();
    QTRY_VERIFY_WITH_TIMEOUT(beforeLast->hasFocus(), LiveFixture::deadline);
    QTest::keyClick(beforeLast, Qt::Key_Tab);
    QVERIFY(tiles(dialog).last()->hasFocus());
    QTRY_VERIFY_WITH_TIMEOUT(tiles(dialog).last()->visibleRegion().boundingRect() ==
                                 tiles(dialog).last()->rect(),
                             LiveFixture::deadline);
}

namespace {

/// Resident memory of this process in bytes.
qint64 residentMemory()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

/// Cameras with thumbnails of that size.
QStringList addCamerasWithThumbnails(int count, QSize size)
{
    QStringList hostnames;
    for (int i = 0; i < count; ++i)
        hostnames << QString::number(i);
    LiveFixture::addCameras(hostnames);
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x, y, x ^ y));
    QStringList files;
    for (int i = 0; i < count; ++i) {
        const QString file = LiveFixture::camera(i)->thumb_path();
        QDir().mkpath(QFileInfo(file).path());
        if (!(i == 0 ? image.save(file, "JPG") : QFile::copy(files.first(), file)))
            qFatal("cannot write %s", qPrintable(file));
        files << file;
    }
    return files;
}

} // namespace

void TestSelectionDialogs::picturesOutOfSightAreGivenBack()
{
    addCamerasWithThumbnails(100, {64, 36});
    CSelectCameraForm dialog;
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    const auto holds = [&dialog](int index) {
        return tiles(dialog)
            .at(index)
            ->findChild<QFrame *>(QStringLiteral("frameClient"))
            ->styleSheet()
            .contains(QStringLiteral("thumb.jpeg"));
    };
    QVERIFY(holds(0));
    QVERIFY(!holds(99));
    auto *bar = dialog.findChild<QScrollArea *>()->verticalScrollBar();
    QTRY_VERIFY_WITH_TIMEOUT(bar->maximum() > 1000, LiveFixture::deadline);
    bar->setValue(bar->maximum());
    QVERIFY(!holds(0));
    QVERIFY(holds(99));
    bar->setValue(0);
    QVERIFY(holds(0));
}

void TestSelectionDialogs::aHundredLargePicturesTakeLittleMemory()
{
    addCamerasWithThumbnails(100, {1920, 1080});
    const qint64 before = residentMemory();
    QVERIFY(before > 0);
    qint64 most = 0;
    CSelectCameraForm dialog;
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto *bar = dialog.findChild<QScrollArea *>()->verticalScrollBar();
    QTRY_VERIFY_WITH_TIMEOUT(bar->maximum() > 1000, LiveFixture::deadline);
    for (int value = 0; value <= bar->maximum(); value += 160) {
        bar->setValue(value);
        dialog.grab();
        most = qMax(most, residentMemory());
    }
    constexpr qint64 megabyte = 1024 * 1024;
    qInfo("%lld MB before, %lld MB at most", before / megabyte, most / megabyte);
    // The sanitizers' own memory is not the dialog's.
    QVERIFY(most - before < 60 * megabyte);
    if (before < 90 * megabyte)
        QVERIFY(most < 150 * megabyte);
}

void TestSelectionDialogs::signalsAndSlotsStandInOrder()
{
    const QStringList both{QStringLiteral("slotOK()"), QStringLiteral("slotClose()")};
    QCOMPARE(declared(zelvaro::SelectionDialog::staticMetaObject, QMetaMethod::Slot), both);
    QCOMPARE(declared(CSelectCameraItemForm::staticMetaObject, QMetaMethod::Signal),
             QStringList{QStringLiteral("clicked(CSelectCameraItemForm*)")});
}

void TestSelectionDialogs::aPressAnywhereOnATileToggles()
{
    m_live->addCameras({QStringLiteral("A")}, false);
    CSelectCameraItemForm tile(false);
    tile.setCamera(m_live->camera());
    QSignalSpy clicked(&tile, &CSelectCameraItemForm::clicked);
    QTest::mousePress(&tile, Qt::LeftButton, {}, QPoint(1, 1));
    QVERIFY(tile.isChecked());
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.at(0).at(0).value<CSelectCameraItemForm *>(), &tile);
    auto *picture = tile.findChild<QWidget *>(QStringLiteral("frameClient"));
    QTest::mousePress(picture, Qt::LeftButton);
    QVERIFY(!tile.isChecked());
    QTest::mousePress(tile.findChild<QWidget *>(QStringLiteral("labelCameraName")), Qt::LeftButton);
    QVERIFY(tile.isChecked());
    QTest::mousePress(tile.findChild<QWidget *>(QStringLiteral("labelCheck")), Qt::RightButton);
    QVERIFY(!tile.isChecked());
    QVERIFY(checkStyle(&tile).isEmpty());
    QCOMPARE(clicked.count(), 4);
}

void TestSelectionDialogs::spaceTogglesAndTabWalks()
{
    m_live->addCameras({QStringLiteral("A"), QStringLiteral("B")}, false);
    CSelectCameraForm dialog;
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    dialog.activateWindow();
    QTRY_VERIFY_WITH_TIMEOUT(tiles(dialog).at(0)->hasFocus(), LiveFixture::deadline);
    const auto *back =
        tiles(dialog).at(0)->findChild<QFrame *>(QStringLiteral("frameSelectCameraItemBk"));
    QVERIFY(!back->styleSheet().contains(QStringLiteral("selectcameraitembk_default.png")));
    QTest::keyClick(tiles(dialog).at(0), Qt::Key_Space);
    QVERIFY(tiles(dialog).at(0)->isChecked());
    QTest::keyClick(tiles(dialog).at(0), Qt::Key_Tab);
    QVERIFY(tiles(dialog).at(1)->hasFocus());
    QVERIFY(back->styleSheet().contains(QStringLiteral("selectcameraitembk_default.png")));
    QTest::keyClick(tiles(dialog).at(1), Qt::Key_Tab);
    QCOMPARE(dialog.focusWidget()->objectName(), QStringLiteral("btnOK"));
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    QCOMPARE(dialog.focusWidget()->objectName(), QStringLiteral("btnClose"));
}

void TestSelectionDialogs::theThumbnailIsShownWhenThereIsOne()
{
    m_live->addCameras({QStringLiteral("A"), QStringLiteral("B")});
    m_live->camera(0)->take_thumb();
    CSelectCameraForm dialog;
    const auto style = [&dialog](int index) {
        return tiles(dialog)
            .at(index)
            ->findChild<QFrame *>(QStringLiteral("frameClient"))
            ->styleSheet();
    };
    QCOMPARE(style(0), QStringLiteral("QFrame#frameClient{border-image:url(") +
                           m_live->camera(0)->thumb_path() + QStringLiteral(");}"));
    QCOMPARE(style(1), QStringLiteral("QFrame#frameClient{border-image: "
                                      "url(:/images/cameraitem/novideo.png);}"));
}

void TestSelectionDialogs::aThumbnailInAFolderWithBlanksIsShown()
{
    CameraSettings::instance().setAlbumPath(CameraSettings::instance().albumPath() +
                                            QStringLiteral("/My 'photos' (new)"));
    m_live->addCameras({QStringLiteral("A")});
    m_live->camera()->take_thumb();
    QVERIFY(m_live->camera()->has_thumb());
    QImage red(8, 8, QImage::Format_RGB32);
    red.fill(Qt::red);
    QVERIFY(red.save(m_live->camera()->thumb_path(), "PNG"));
    CSelectCameraItemForm tile(false);
    tile.setCamera(m_live->camera());
    auto *client = tile.findChild<QFrame *>(QStringLiteral("frameClient"));
    tile.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tile));
    QCOMPARE(client->grab().toImage().pixelColor(client->rect().center()), QColor(Qt::red));
}

void TestSelectionDialogs::aLongNameStaysInItsTile()
{
    m_live->addCameras({QString(300, QLatin1Char('W'))});
    CSelectCameraItemForm tile(false);
    tile.setCamera(m_live->camera());
    tile.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tile));
    QCOMPARE(tile.size(), QSize(160, 150));
    auto *name = tile.findChild<QLabel *>(QStringLiteral("labelCameraName"));
    QVERIFY(name->geometry().right() < tile.width());
    QCOMPARE(shownByToolTip(name->toolTip()), m_live->camera()->name());
}

void TestSelectionDialogs::aSessionDestroyedMeanwhileIsPassedOver()
{
    m_live->addCameras({QStringLiteral("A")});
    CSelectCameraForm dialog;
    CCamera *camera = m_live->camera();
    camera->stop();
    camera->wait_stopped();
    CCameraList::instance().remove(camera);
    QTest::mousePress(tiles(dialog).at(0), Qt::LeftButton);
    dialog.Apply();
    QVERIFY(CameraSettings::instance().at(0)->multiLive);
}

QTEST_MAIN(TestSelectionDialogs)
#include "tst_selection_dialogs.moc"
