#include "resources/resources.h"
#include "tests/gallery/checks.h"
#include "tests/gallery/contact_sheet.h"
#include "tests/gallery/message_log.h"
#include "tests/gallery/stage.h"

#include <QDialog>
#include <QDir>
#include <QPainter>
#include <QThreadPool>
#include <QTranslator>
#include <QtTest>

#include <map>

namespace gallery {

namespace {

constexpr int deadline = 30000; // milliseconds

// The smallest that the window allows, small screens, the usual one, and large ones: at 2x that
// is a screen of 3840x2160.
constexpr QSize smallestSize(400, 300);
constexpr QSize usualSize(1280, 800); // what does not depend on the size is looked at in this one
constexpr QSize largestSize(1920, 1080);
// Every dialog fits on the smallest screen that is in use.
constexpr QSize smallestScreen(800, 600);
constexpr QSize sheetCell(400, 300);

QVector<Scene> allScenes()
{
    return managerScenes() + liveScenes() + albumScenes() + setUpScenes() + dialogScenes();
}

/// Gives the window the keyboard, which another one may still be getting.
bool activate(QWidget &window)
{
    return QTest::qWaitFor(
        [&window] {
            window.activateWindow();
            return QApplication::activeWindow() == &window;
        },
        deadline);
}

QString sizeName(QSize size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

} // namespace

/// Shows every page and dialog in every state and window size, checks what can be checked by rule
/// and writes pictures of all of them for the eye. The scale is that of the process
/// (QT_SCALE_FACTOR); the pictures go into the folder ZELVARO_GALLERY_FOLDER.
class Gallery : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void show_data();
    void show();
    void cleanupTestCase();

private:
    bool isDense() const { return !m_scale.isEmpty(); }
    QVector<QSize> windowSizes() const;
    /// Checks for the keyboard: nothing in them depends on the scale, so one process makes them.
    QStringList keyboardProblems(QWidget &window);
    void showPage(const Scene &scene, const Subject &subject);
    void showDialog(const Scene &scene, const Subject &subject);
    /// Waits until the window is laid out and painted and shows all there is to see.
    bool settle(const Subject &subject);
    void keepPicture(const Scene &scene, QSize size, QWidget &window);
    void note(QSize size, const QStringList &problems);

    QDir m_folder;
    QString m_scale; // "" or "@2x"
    std::map<QString, ContactSheet> m_sheets;
    QThreadPool m_writers;
    MessageLog m_log;
    QStringList m_problems;
};

void Gallery::initTestCase()
{
    zelvaro::initResources();
    zelvaro::applyLook();
    const qreal ratio = qApp->devicePixelRatio();
    m_scale = qFuzzyCompare(ratio, 1) ? QString() : QStringLiteral("@%1x").arg(ratio);
    m_folder = QDir(qEnvironmentVariable("ZELVARO_GALLERY_FOLDER", QStringLiteral("gallery")));
    QVERIFY(m_folder.mkpath(QStringLiteral(".")));
}

void Gallery::show_data()
{
    QTest::addColumn<int>("number");
    const QVector<Scene> scenes = allScenes();
    for (int i = 0; i < scenes.size(); ++i)
        QTest::newRow(qPrintable(scenes.at(i).name)) << i;
}

void Gallery::show()
{
    QFETCH(int, number);
    const Scene scene = allScenes().at(number);
    m_problems.clear();
    Stage stage;
    const Subject subject = scene.build(stage);
    QVERIFY2(subject.window, "the scene shows nothing");
    if (scene.kind == Scene::Kind::Page)
        showPage(scene, subject);
    else
        showDialog(scene, subject);
    m_problems << m_log.take();
    m_problems.removeDuplicates();
    QVERIFY2(m_problems.isEmpty(), qPrintable(QLatin1Char('\n') + m_problems.join('\n')));
}

void Gallery::note(QSize size, const QStringList &problems)
{
    for (const QString &problem : problems)
        m_problems << sizeName(size) + QStringLiteral(": ") + problem;
}

bool Gallery::settle(const Subject &subject)
{
    for (int round = 0; round < 3; ++round)
        QCoreApplication::processEvents();
    return QTest::qWaitFor([&] { return !subject.ready || subject.ready(); }, deadline);
}

QVector<QSize> Gallery::windowSizes() const
{
    if (isDense())
        return {smallestSize, usualSize, largestSize};
    return {smallestSize, smallestScreen, usualSize, largestSize};
}

QStringList Gallery::keyboardProblems(QWidget &window)
{
    if (isDense())
        return {};
    if (!activate(window))
        return {QStringLiteral("the window does not get the keyboard")};
    return unnamedControls(window) + backwardTabs(window) + invisibleFocus(window);
}

void Gallery::showPage(const Scene &scene, const Subject &subject)
{
    QWidget &window = *subject.window;
    for (const QSize size : windowSizes()) {
        window.resize(size);
        QVERIFY(settle(subject));
        keepPicture(scene, size, window);
        note(size, clippedTexts(window) + misplacedControls(window));
        if (size == usualSize)
            note(size, missingImages(window) + blurredPictures(window) + keyboardProblems(window));
    }
}

void Gallery::showDialog(const Scene &scene, const Subject &subject)
{
    QWidget &window = *subject.window;
    QVERIFY(settle(subject));
    const QSize size = window.size();
    keepPicture(scene, size, window);
    note(size, missingImages(window) + blurredPictures(window));
    if (scene.kind == Scene::Kind::Other)
        return;
    note(size, clippedTexts(window) + misplacedControls(window) + keyboardProblems(window));
    if (size.boundedTo(smallestScreen) != size)
        note(size, {QStringLiteral("does not fit on a screen of 800x600")});
    if (scene.kind == Scene::Kind::Dialog && !isDense())
        note(size, deafKeys(*qobject_cast<QDialog *>(&window)));
}

void Gallery::keepPicture(const Scene &scene, QSize size, QWidget &window)
{
    const QImage picture = window.grab().toImage();
    // What is translucent shows as it would over a light desktop.
    QImage flat(picture.size(), QImage::Format_RGB32);
    flat.fill(QColor(0xc8, 0xd0, 0xd8));
    QPainter painter(&flat);
    painter.drawImage(QRect(QPoint(0, 0), flat.size()), picture);
    painter.end();

    const bool isPage = scene.kind == Scene::Kind::Page;
    QString name = isPage ? scene.name + QLatin1Char('-') + sizeName(size) : scene.name;
    m_sheets.try_emplace(scene.group, sheetCell)
        .first->second.add(isPage ? scene.name : QString(), name, flat);
    name += m_scale + QStringLiteral(".png");
    m_writers.start([file = m_folder.filePath(name), flat] {
        constexpr int quickCompression = 80;
        if (!flat.save(file, "PNG", quickCompression))
            qFatal("cannot write %s", qPrintable(file));
    });
}

void Gallery::cleanupTestCase()
{
    for (const auto &[group, sheet] : m_sheets) {
        const QString name = QStringLiteral("contact-") + group + m_scale + QStringLiteral(".png");
        QVERIFY2(sheet.save(m_folder.filePath(name)), qPrintable(name));
    }
    m_writers.waitForDone();
    qInfo("The pictures and contact sheets lie in %s", qPrintable(m_folder.absolutePath()));
}

} // namespace gallery

int main(int argc, char **argv)
{
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, true);
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Zelvaro"));
    // The program itself shows its source texts; its layouts are to hold the other ones as well.
    zelvaro::initResources();
    QTranslator translator;
    const QString translation = qEnvironmentVariable("ZELVARO_GALLERY_TRANSLATION");
    if (!translation.isEmpty()) {
        if (!translator.load(QStringLiteral(":/%1.qm").arg(translation)))
            qFatal("no translation %s", qPrintable(translation));
        QCoreApplication::installTranslator(&translator);
    }
    gallery::Gallery gallery;
    return QTest::qExec(&gallery, argc, argv);
}

#include "tst_gallery.moc"
