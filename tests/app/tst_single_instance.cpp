#include "app/single_instance.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QLocalSocket>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <vector>

using namespace std::chrono_literals;
using zelvaro::SingleInstance;

namespace {

constexpr int deadline = 20'000; // milliseconds
constexpr auto shortPatience = 200ms;

/// Another start of the program, on its own thread.
class OtherStart
{
public:
    explicit OtherStart(const QString &folder, std::chrono::milliseconds patience = 10s)
        : m_thread(QThread::create([this, folder, patience] {
            SingleInstance instance(folder);
            m_handedOver = instance.handOver(patience);
        }))
    {
        m_thread->start();
    }
    ~OtherStart() { m_thread->wait(); }

    bool isFinished() const { return m_thread->isFinished(); }
    bool handedOver() const { return m_handedOver; }

private:
    std::atomic<bool> m_handedOver = false;
    std::unique_ptr<QThread> m_thread;
};

/// A socket file that nobody listens on, as a killed program leaves it.
bool leaveSocket(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (static_cast<std::size_t>(name.size()) >= sizeof address.sun_path)
        return false;
    std::strcpy(address.sun_path, name.constData());
    const int handle = ::socket(AF_UNIX, SOCK_STREAM, 0);
    const bool bound =
        ::bind(handle, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    ::close(handle);
    return bound;
}

} // namespace

class TestSingleInstance : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_runtime.path())); }
    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        m_folder = m_home->filePath("Zelvaro");
    }

    void secondStartShowsWindowOfFirst()
    {
        SingleInstance first(m_folder);
        QSignalSpy activated(&first, &SingleInstance::activated);
        QVERIFY(!first.handOver());
        for (int start = 1; start <= 2; ++start) {
            const OtherStart second(m_folder);
            QTRY_VERIFY_WITH_TIMEOUT(second.isFinished(), deadline);
            QVERIFY(second.handedOver());
            QCOMPARE(activated.count(), start);
        }
    }

    void otherSettingsHaveTheirOwn()
    {
        SingleInstance first(m_folder);
        QVERIFY(!first.handOver());
        SingleInstance other(m_home->filePath("Other"));
        QVERIFY(!other.handOver());
    }

    void sameFolderByAnotherPathIsTheSame()
    {
        SingleInstance first(m_folder);
        QVERIFY(QFile::link(m_home->path(), m_home->filePath("link")));
        const SingleInstance second(m_home->filePath("link/Zelvaro/"));
        QCOMPARE(second.socketPath(), first.socketPath());
        QVERIFY(!first.socketPath().isEmpty());
    }

    void nextStartAfterEndIsFirst()
    {
        {
            SingleInstance first(m_folder);
            QVERIFY(!first.handOver());
        }
        SingleInstance next(m_folder);
        QVERIFY(!next.handOver());
        next.close();
        SingleInstance last(m_folder);
        QVERIFY(!last.handOver());
    }

    void nothingIsLeftAtEnd()
    {
        {
            SingleInstance first(m_folder);
            QVERIFY(!first.handOver());
        }
        QCOMPARE(QDir(m_runtime.path()).entryList({"zelvaro-*"}, QDir::AllEntries | QDir::System),
                 QStringList());
    }

    void socketOfKilledProgramIsReplaced()
    {
        SingleInstance first(m_folder);
        QVERIFY(leaveSocket(first.socketPath()));
        QVERIFY(!first.handOver());
        const OtherStart second(m_folder);
        QTRY_VERIFY_WITH_TIMEOUT(second.isFinished(), deadline);
        QVERIFY(second.handedOver());
    }

    // Its event loop does not run, so it answers nobody.
    void programThatHangsIsReplaced()
    {
        SingleInstance hanging(m_folder);
        QVERIFY(!hanging.handOver());
        QElapsedTimer waited;
        waited.start();
        SingleInstance second(m_folder);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("runs already and does not answer"));
        QVERIFY(!second.handOver(shortPatience));
        QVERIFY(waited.elapsed() >= shortPatience.count());
        QVERIFY(waited.elapsed() < deadline);

        QSignalSpy activated(&second, &SingleInstance::activated);
        const OtherStart third(m_folder);
        QTRY_VERIFY_WITH_TIMEOUT(third.isFinished(), deadline);
        QVERIFY(third.handedOver());
        QCOMPARE(activated.count(), 1);
    }

    void ofManyStartsOneIsFirst()
    {
        constexpr int starts = 8;
        std::atomic<int> first = 0;
        std::atomic<int> handedOver = 0;
        std::vector<std::unique_ptr<QThread>> threads;
        for (int i = 0; i < starts; ++i) {
            threads.emplace_back(QThread::create([&] {
                SingleInstance instance(m_folder);
                if (instance.handOver(10s)) {
                    ++handedOver;
                    return;
                }
                ++first;
                QEventLoop answering;
                QTimer look;
                QObject::connect(&look, &QTimer::timeout, [&] {
                    if (handedOver == starts - 1)
                        answering.quit();
                });
                look.start(20);
                QTimer::singleShot(deadline, &answering, &QEventLoop::quit);
                answering.exec();
            }));
            threads.back()->start();
        }
        for (const auto &thread : threads)
            QVERIFY(thread->wait(2 * deadline));
        QCOMPARE(first.load(), 1);
        QCOMPARE(handedOver.load(), starts - 1);
    }

    void strangersAreTurnedAway_data()
    {
        QTest::addColumn<QByteArray>("words");
        QTest::newRow("another request") << QByteArray("quit\n");
        QTest::newRow("no end") << QByteArray(100'000, 'x');
        QTest::newRow("zeros") << QByteArray(100, '\0');
    }
    void strangersAreTurnedAway()
    {
        QFETCH(QByteArray, words);
        SingleInstance first(m_folder);
        QSignalSpy activated(&first, &SingleInstance::activated);
        QVERIFY(!first.handOver());
        QLocalSocket stranger;
        stranger.connectToServer(first.socketPath());
        QVERIFY(stranger.waitForConnected(deadline));
        stranger.write(words);
        QTRY_COMPARE_WITH_TIMEOUT(stranger.state(), QLocalSocket::UnconnectedState, deadline);
        QCOMPARE(activated.count(), 0);
    }

    void silentStrangerHoldsNobodyUp()
    {
        SingleInstance first(m_folder);
        QVERIFY(!first.handOver());
        QLocalSocket stranger;
        stranger.connectToServer(first.socketPath());
        QVERIFY(stranger.waitForConnected(deadline));
        const OtherStart second(m_folder);
        QTRY_VERIFY_WITH_TIMEOUT(second.isFinished(), deadline);
        QVERIFY(second.handedOver());
        QTRY_COMPARE_WITH_TIMEOUT(stranger.state(), QLocalSocket::UnconnectedState, deadline);
    }

    void otherUsersMayNotAsk()
    {
        SingleInstance first(m_folder);
        QVERIFY(!first.handOver());
        const auto others =
            QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        QVERIFY(!(QFile::permissions(first.socketPath()) & others));
    }

private:
    QTemporaryDir m_runtime;
    std::unique_ptr<QTemporaryDir> m_home;
    QString m_folder;
};

QTEST_GUILESS_MAIN(TestSingleInstance)
#include "tst_single_instance.moc"
