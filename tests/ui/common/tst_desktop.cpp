#include "tests/support/modal_script.h"
#include "ui/common/desktop.h"
#include "ui/common/page_host.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QTemporaryDir>
#include <QTest>

namespace {

class SilentDesktop : public Desktop
{
public:
    bool openUrl(const QUrl &) override { return true; }
    void playSound(const QString &file) override { played += file; }
    QString chooseFolder(QWidget *, const QString &, const QString &) override { return "x"; }

    QStringList played;
};

} // namespace

class TestDesktop : public QObject
{
    Q_OBJECT

private slots:
    void aTestMayPutItsOwnInThePlace();
    void aMissingSoundIsPassedOver();
    void theChooserStartsAtTheFolderAndReturnsIt();
    void aCancelledChooserReturnsNothing();
    void thereIsNoPageHostBeforeTheMainWindow();

private:
    QTemporaryDir m_home;
};

void TestDesktop::aTestMayPutItsOwnInThePlace()
{
    Desktop *system = &desktop();
    SilentDesktop silent;
    setDesktop(&silent);
    desktop().playSound("a.wav");
    QCOMPARE(silent.played, QStringList({"a.wav"}));
    setDesktop(nullptr);
    QCOMPARE(&desktop(), system);
}

void TestDesktop::aMissingSoundIsPassedOver()
{
    desktop().playSound(m_home.filePath("none.wav"));
    desktop().playSound(m_home.path());
    desktop().playSound(QString());
}

void TestDesktop::theChooserStartsAtTheFolderAndReturnsIt()
{
    const QString folder = m_home.filePath("My Album");
    QVERIFY(QDir().mkpath(folder));
    ModalScript script;
    script.then([&](QWidget *window) {
        auto *chooser = qobject_cast<QFileDialog *>(window);
        QVERIFY(chooser);
        QCOMPARE(chooser->windowTitle(), QString("Selecte Path"));
        QCOMPARE(QFileInfo(chooser->directory().path()).canonicalFilePath(),
                 QFileInfo(folder).canonicalFilePath());
        QVERIFY(chooser->testOption(QFileDialog::ShowDirsOnly));
        QTest::keyClick(chooser, Qt::Key_Return);
    });
    QCOMPARE(desktop().chooseFolder(nullptr, "Selecte Path", folder), folder);
    QVERIFY(script.done());
}

void TestDesktop::aCancelledChooserReturnsNothing()
{
    ModalScript script;
    script.then([](QWidget *chooser) { QTest::keyClick(chooser, Qt::Key_Escape); });
    QCOMPARE(desktop().chooseFolder(nullptr, "Selecte Path", m_home.path()), QString());
    QVERIFY(script.done());
}

void TestDesktop::thereIsNoPageHostBeforeTheMainWindow()
{
    QVERIFY(!pageHost());
}

QTEST_MAIN(TestDesktop)
#include "tst_desktop.moc"
