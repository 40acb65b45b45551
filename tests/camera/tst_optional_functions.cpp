#include "camera/optional_functions.h"
#include "tests/camera/session_test.h"

#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>

using zelvaro::CameraReason;
using zelvaro::OptionalFunctions;

namespace {

void *findNothing(const char *)
{
    return nullptr;
}

} // namespace

/// What a session tells by functions that a library may lack.
class TestOptionalFunctions : public QObject
{
    Q_OBJECT

private slots:
    void init() { fake_cammgr::reset(); }
    void cleanup()
    {
        QVERIFY(fake_cammgr::contractViolations().empty());
        fake_cammgr::reset();
    }

    void libraryWithoutThemTellsNothing()
    {
        const Session session;
        session.start();
        session.player()->change([](auto &script) {
            script.reason = CAMMGR_REASON_NO_VIDEO;
            script.figures = RtspPlayerFigures();
        });
        const OptionalFunctions none(&findNothing);
        QCOMPARE(none.reason(session.player()->handle()).value, int(CAMMGR_REASON_NONE));
        QVERIFY(!none.figures(session.player()->handle()));
        QVERIFY(none.trustKey(session.player()->handle()) < 0);
        QVERIFY(none.setKnownKeysFile("keys") < 0);
        QVERIFY(!none.canFetchStill());
        QVERIFY(none.fetchStill(session.player()->handle(), "still.jpeg") < 0);
    }

    void sessionWithoutAPlayerTellsNothing()
    {
        const Session session;
        QVERIFY(session->reason() == CameraReason());
        QVERIFY(!session->figures());
        QVERIFY(fake_cammgr::calls().empty());
    }

    void reasonComesWithItsDetail()
    {
        const Session session;
        session.start();
        QVERIFY(session->reason() == CameraReason());
        session.player()->change([](auto &script) {
            script.reason = CAMMGR_REASON_HOST_NOT_FOUND;
            script.reasonDetail = "caméra.lan";
        });
        QCOMPARE(session->reason().value, int(CAMMGR_REASON_HOST_NOT_FOUND));
        QCOMPARE(session->reason().detail, QStringLiteral("caméra.lan"));
    }

    void longDetailIsCut()
    {
        const Session session;
        session.start();
        session.player()->change([](auto &script) {
            script.reason = CAMMGR_REASON_NO_SUCH_PATH;
            script.reasonDetail = std::string(2000, 'x');
        });
        QCOMPARE(session->reason().detail, QString(511, 'x'));
    }

    void stillIsFetched()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("stíll.jpeg");
        const Session session;
        session.start();
        QSignalSpy fetched(session.camera.get(), &CCameraCore::signalStillFetched);
        QVERIFY(CCameraCore::canFetchStill());
        session.player()->change([](auto &script) { script.still = 0; });
        QCOMPARE(session->fetchStill(path), 0);
        QVERIFY(fetched.wait(deadline));
        QCOMPARE(fetched.takeFirst(), QVariantList{true});
        QVERIFY(QFileInfo::exists(path));
        session.player()->change([](auto &script) { script.still = -1; });
        QCOMPARE(session->fetchStill(path), 0);
        QVERIFY(fetched.wait(deadline));
        QCOMPARE(fetched.takeFirst(), QVariantList{false});
        session.player()->change(
            [](auto &script) { script.results["RtspPlayer_FetchStill"] = -1; });
        QVERIFY(session->fetchStill(path) < 0);
    }

    void keysGoToTheLibrary()
    {
        const Session session;
        session.start();
        QCOMPARE(session->trustKey(), 0);
        QCOMPARE(session.player()->count("RtspPlayer_TrustKey"), 1);
        QCOMPARE(OptionalFunctions::instance().setKnownKeysFile(QStringLiteral("/é/keys")), 0);
        const std::vector<std::string> file = {"/é/keys"};
        QVERIFY(fake_cammgr::calls().back().texts == file);
    }

    void figuresArePassedOn()
    {
        const Session session;
        session.start();
        QVERIFY(!session->figures());
        session.player()->change([](auto &script) {
            RtspPlayerFigures figures = {};
            figures.picture_age = 40;
            figures.packets_lost = 7;
            script.figures = figures;
        });
        const auto figures = session->figures();
        QVERIFY(figures);
        QCOMPARE(figures->size, int(sizeof(RtspPlayerFigures)));
        QCOMPARE(figures->picture_age, 40);
        QCOMPARE(figures->packets_lost, qint64(7));
    }
};

QTEST_MAIN(TestOptionalFunctions)
#include "tst_optional_functions.moc"
