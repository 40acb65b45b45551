#include "app/child_margins.h"

#include <QApplication>
#include <QTest>
#include <QWidget>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <optional>

namespace {

/// The frame that a window says to have: the sum of its four margins; nothing when it says none.
std::optional<int> declaredFrame(WId window)
{
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> server(
        xcb_connect(nullptr, nullptr), &xcb_disconnect);
    static const char name[] = "_NET_FRAME_EXTENTS";
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
        xcb_intern_atom_reply(server.get(), xcb_intern_atom(server.get(), 0, sizeof name - 1, name),
                              nullptr),
        &std::free);
    if (!atom)
        return {};
    const auto asked = xcb_get_property(server.get(), 0, static_cast<xcb_window_t>(window),
                                        atom->atom, XCB_ATOM_CARDINAL, 0, 4);
    const std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> answer(
        xcb_get_property_reply(server.get(), asked, nullptr), &std::free);
    if (!answer || answer->value_len != 4)
        return {};
    const auto *margins = static_cast<const std::uint32_t *>(xcb_get_property_value(answer.get()));
    return static_cast<int>(margins[0] + margins[1] + margins[2] + margins[3]);
}

} // namespace

class TestChildMargins : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (QGuiApplication::platformName() != QLatin1String("xcb"))
            QSKIP("needs an X display");
    }

    void nativeChildHasNoFrame()
    {
        QObject owner;
        zelvaro::declareChildMargins(&owner);
        QWidget window;
        QWidget child(&window);
        child.setAttribute(Qt::WA_NativeWindow);
        window.show();
        QTRY_COMPARE_WITH_TIMEOUT(declaredFrame(child.winId()), std::optional<int>(0), 20'000);
    }

    void childIsDeclaredAgainWhenItsWindowIsMadeAnew()
    {
        QObject owner;
        zelvaro::declareChildMargins(&owner);
        QWidget window;
        QWidget child(&window);
        child.setAttribute(Qt::WA_NativeWindow);
        window.show();
        QVERIFY(child.winId() != 0);
        child.setParent(&window, Qt::Window);
        child.setParent(&window, Qt::Widget);
        child.show();
        QTRY_COMPARE_WITH_TIMEOUT(declaredFrame(child.winId()), std::optional<int>(0), 20'000);
    }

    void windowThatIsGoneIsPassedOver()
    {
        QObject owner;
        zelvaro::declareChildMargins(&owner);
        QWidget window;
        {
            QWidget child(&window);
            child.setAttribute(Qt::WA_NativeWindow);
            QVERIFY(child.winId() != 0);
        }
        QWidget other(&window);
        other.setAttribute(Qt::WA_NativeWindow);
        QTRY_COMPARE_WITH_TIMEOUT(declaredFrame(other.winId()), std::optional<int>(0), 20'000);
    }

    void nothingIsDeclaredAfterTheOwner()
    {
        {
            QObject owner;
            zelvaro::declareChildMargins(&owner);
        }
        QWidget window;
        QWidget child(&window);
        child.setAttribute(Qt::WA_NativeWindow);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(!declaredFrame(child.winId()));
    }
};

QTEST_MAIN(TestChildMargins)
#include "tst_child_margins.moc"
