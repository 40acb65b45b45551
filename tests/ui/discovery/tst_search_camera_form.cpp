#include "resources/resources.h"
#include "tests/fakes/fake_ndcp.h"
#include "tests/support/modal_script.h"
#include "ui/common/message_box.h"
#include "ui/discovery/search_camera_form.h"

#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QTest>

class TestSearchCameraForm : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void looksAsDescribed();
    void searchesOnceAsItOpens();
    void anyEventEndsTheSearch();
    void findingNothingIsNoError();
    void wrongCountsEndTheWalk_data();
    void wrongCountsEndTheWalk();
    void okReturnsChosenUid();
    void doubleClickAccepts();
    void noSelectionTellsTheUser();
    void cancelReturnsNothing();
    void deviceListedTwiceStandsTwice();
    void recordWithoutUidIsPassedOver();
    void currentRowHasOtherIcon();
    void refusedSearchLeavesButtonsUsable();
    void missingClientLeavesButtonsUsable();
    void searchesAgainWhenAsked_data();
    void searchesAgainWhenAsked();
    void closedWhileSearching();

private:
    static QListView *list(CSearchCameraForm &form)
    {
        return form.findChild<QListView *>(QStringLiteral("listCameraList"));
    }
    static QPushButton *button(CSearchCameraForm &form, const char *name)
    {
        return form.findChild<QPushButton *>(QLatin1String(name));
    }
    static void findTwo(CSearchCameraForm &form)
    {
        fake_ndcp::setDevices({fake_ndcp::device("uid-1", "Door", 0xC0A80114),
                               fake_ndcp::device("uid-2", "Yard", 0xC0A80115)});
        fake_ndcp::finish(NDCP_EVENT_DISCOVERY);
        QTRY_COMPARE_WITH_TIMEOUT(list(form)->model()->rowCount(), 2, 20000);
    }
    static void clickRow(CSearchCameraForm &form, int row)
    {
        const QRect cell = list(form)->visualRect(list(form)->model()->index(row, 0));
        QTest::mouseClick(list(form)->viewport(), Qt::LeftButton, {}, cell.center());
    }
};

void TestSearchCameraForm::init()
{
    zelvaro::initResources();
    fake_ndcp::reset();
}

void TestSearchCameraForm::looksAsDescribed()
{
    CSearchCameraForm form;
    QCOMPARE(form.windowTitle(), QStringLiteral("Search Camera"));
    QCOMPARE(form.findChild<QLabel *>("labelTitle")->text(), QStringLiteral("Search Camera"));
    QCOMPARE(form.findChild<QLabel *>("labelSelectCamera")->text(),
             QStringLiteral("Select Camera"));
    QCOMPARE(button(form, "btnOk")->text(), QStringLiteral("OK"));
    QCOMPARE(button(form, "btnCancel")->text(), QStringLiteral("Cancel"));
    QCOMPARE(list(form)->selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(list(form)->editTriggers(), QAbstractItemView::NoEditTriggers);
}

void TestSearchCameraForm::anyEventEndsTheSearch()
{
    CSearchCameraForm form;
    fake_ndcp::finish(NDCP_EVENT_SET_CONF, NDCP_ERROR_NETWORK);
    QTRY_VERIFY_WITH_TIMEOUT(button(form, "btnOk")->isEnabled(), 20000);
    QVERIFY(button(form, "btnCancel")->isEnabled());
}

void TestSearchCameraForm::findingNothingIsNoError()
{
    CSearchCameraForm form;
    form.open();
    ModalScript nothing;
    fake_ndcp::finish(NDCP_EVENT_DISCOVERY);
    QTRY_VERIFY_WITH_TIMEOUT(button(form, "btnOk")->isEnabled(), 20000);
    QCOMPARE(list(form)->model()->rowCount(), 0);
    QVERIFY(form.isVisible());
    QVERIFY(nothing.done());
}

void TestSearchCameraForm::wrongCountsEndTheWalk_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("rows");
    QTest::newRow("more than there are") << 5 << 2;
    QTest::newRow("fewer than there are") << 1 << 1;
    QTest::newRow("negative") << -1 << 0;
}

void TestSearchCameraForm::wrongCountsEndTheWalk()
{
    QFETCH(int, count);
    CSearchCameraForm form;
    fake_ndcp::setDevices({fake_ndcp::device("uid-1", "Door", 0xC0A80114),
                           fake_ndcp::device("uid-2", "Yard", 0xC0A80115)});
    fake_ndcp::setCount(count);
    fake_ndcp::finish(NDCP_EVENT_DISCOVERY);
    QTRY_VERIFY_WITH_TIMEOUT(button(form, "btnOk")->isEnabled(), 20000);
    QTEST(list(form)->model()->rowCount(), "rows");
}

void TestSearchCameraForm::searchesOnceAsItOpens()
{
    CSearchCameraForm form;
    QCOMPARE(fake_ndcp::count("discover"), 1);
    QVERIFY(!button(form, "btnOk")->isEnabled());
    QVERIFY(!button(form, "btnCancel")->isEnabled());
    QTest::ignoreMessage(QtDebugMsg, "CSearchCameraForm::ndcpEvent()\r\n");
    findTwo(form);
    QVERIFY(button(form, "btnOk")->isEnabled());
    QVERIFY(button(form, "btnCancel")->isEnabled());
    QVERIFY(form.windowFlags().testFlag(Qt::FramelessWindowHint));
    const QString model = QString::fromUtf8(fake_ndcp::device("uid-1", "Door", 0).model);
    QCOMPARE(list(form)->model()->index(0, 0).data().toString(), model + "  (uid-1)");
}

void TestSearchCameraForm::okReturnsChosenUid()
{
    CSearchCameraForm form;
    form.open();
    findTwo(form);
    clickRow(form, 1);
    QTest::mouseClick(button(form, "btnOk"), Qt::LeftButton);
    QCOMPARE(form.result(), 1);
    QVERIFY(!form.isVisible());
    QCOMPARE(form.uid(), QStringLiteral("uid-2"));
}

void TestSearchCameraForm::doubleClickAccepts()
{
    CSearchCameraForm form;
    form.open();
    findTwo(form);
    clickRow(form, 0);
    const QRect cell = list(form)->visualRect(list(form)->model()->index(0, 0));
    QTest::mouseDClick(list(form)->viewport(), Qt::LeftButton, {}, cell.center());
    QVERIFY(!form.isVisible());
    QCOMPARE(form.uid(), QStringLiteral("uid-1"));
}

void TestSearchCameraForm::noSelectionTellsTheUser()
{
    CSearchCameraForm form;
    form.open();
    findTwo(form);
    QString title, text;
    ModalScript box([&](CMessageBox *shown) {
        title = shown->findChild<QLabel *>(QStringLiteral("labelTitle"))->text();
        text = shown->findChild<QLabel *>(QStringLiteral("labelMessage"))->text();
        QTest::mouseClick(shown->findChild<QPushButton *>(QStringLiteral("btnOk")), Qt::LeftButton);
    });
    QTest::mouseClick(button(form, "btnOk"), Qt::LeftButton);
    QVERIFY(box.done());
    QCOMPARE(title, QStringLiteral("Error"));
    QCOMPARE(text, QStringLiteral("Please select a camera."));
    QVERIFY(form.isVisible());
    QVERIFY(form.uid().isEmpty());
}

void TestSearchCameraForm::cancelReturnsNothing()
{
    CSearchCameraForm form;
    form.open();
    findTwo(form);
    clickRow(form, 0);
    QTest::mouseClick(button(form, "btnCancel"), Qt::LeftButton);
    QVERIFY(!form.isVisible());
    QCOMPARE(form.result(), 0);
    QVERIFY(form.uid().isEmpty());
}

void TestSearchCameraForm::deviceListedTwiceStandsTwice()
{
    CSearchCameraForm form;
    const ndcp_device device = fake_ndcp::device("uid-1", "Door", 0xC0A80114);
    fake_ndcp::setDevices({device, device});
    fake_ndcp::finish(NDCP_EVENT_DISCOVERY);
    QTRY_COMPARE_WITH_TIMEOUT(list(form)->model()->rowCount(), 2, 20000);
}

void TestSearchCameraForm::recordWithoutUidIsPassedOver()
{
    CSearchCameraForm form;
    fake_ndcp::setDevices(
        {fake_ndcp::device("", "Nameless", 1), fake_ndcp::device("uid-2", "Yard", 0xC0A80115)});
    fake_ndcp::finish(NDCP_EVENT_DISCOVERY);
    QTRY_COMPARE_WITH_TIMEOUT(list(form)->model()->rowCount(), 1, 20000);
}

void TestSearchCameraForm::currentRowHasOtherIcon()
{
    CSearchCameraForm form;
    form.open();
    findTwo(form);
    const auto icon = [](const QIcon &from) { return from.pixmap(24).toImage(); };
    const auto iconOf = [&](int row) {
        return icon(list(form)->model()->index(row, 0).data(Qt::DecorationRole).value<QIcon>());
    };
    const QImage plain = icon(QIcon(QStringLiteral(":/images/photomgr/cameraicon.png")));
    const QImage down = icon(QIcon(QStringLiteral(":/images/photomgr/cameraicon_down.png")));
    QVERIFY(!plain.isNull() && !down.isNull() && plain != down);
    QCOMPARE(iconOf(0), plain);
    QCOMPARE(iconOf(1), plain);
    clickRow(form, 1);
    QCOMPARE(iconOf(0), plain);
    QCOMPARE(iconOf(1), down);
    clickRow(form, 0);
    QCOMPARE(iconOf(0), down);
    QCOMPARE(iconOf(1), plain);
}

void TestSearchCameraForm::refusedSearchLeavesButtonsUsable()
{
    fake_ndcp::setResult("discover", -1);
    CSearchCameraForm form;
    QVERIFY(button(form, "btnCancel")->isEnabled());
    QVERIFY(button(form, "btnSearchAgain")->isEnabled());
    QVERIFY(form.findChild<QLabel *>("labelStatus")->text().contains("cannot be started"));
}

void TestSearchCameraForm::missingClientLeavesButtonsUsable()
{
    fake_ndcp::failCreate();
    CSearchCameraForm form;
    QVERIFY(button(form, "btnCancel")->isEnabled());
    QCOMPARE(list(form)->model()->rowCount(), 0);
}

void TestSearchCameraForm::searchesAgainWhenAsked_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("button") << false;
    QTest::newRow("F5") << true;
}

void TestSearchCameraForm::searchesAgainWhenAsked()
{
    QFETCH(bool, byKey);
    CSearchCameraForm form;
    form.open();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    QVERIFY(!button(form, "btnSearchAgain")->isEnabled());
    findTwo(form);
    clickRow(form, 1);
    if (byKey)
        QTest::keyClick(&form, Qt::Key_F5);
    else
        QTest::mouseClick(button(form, "btnSearchAgain"), Qt::LeftButton);
    QTRY_COMPARE_WITH_TIMEOUT(fake_ndcp::count("discover"), 2, 20000);
    QCOMPARE(list(form)->model()->rowCount(), 0);
    QVERIFY(!button(form, "btnOk")->isEnabled());
    QVERIFY(!button(form, "btnSearchAgain")->isEnabled());
    findTwo(form);
    clickRow(form, 0);
    QTest::mouseClick(button(form, "btnOk"), Qt::LeftButton);
    QCOMPARE(form.uid(), QStringLiteral("uid-1"));
}

void TestSearchCameraForm::closedWhileSearching()
{
    auto form = std::make_unique<CSearchCameraForm>();
    form->open();
    QTest::keyClick(form.get(), Qt::Key_Escape);
    QVERIFY(!form->isVisible());
    form.reset();
    QCOMPARE(fake_ndcp::clients(), 0);
    QVERIFY(fake_ndcp::contractViolations().empty());
}

QTEST_MAIN(TestSearchCameraForm)
#include "tst_search_camera_form.moc"
