#include "Platform/Linux/X11/X11Windows.h"
#include "X11/server.h"
#include "support/OtherWindow.h"
#include "support/XClient.h"
#include "support/XServer.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// A program whose window does not say truly which process it belongs to. The window is in front.
class WindowOwners : public testing::Test {
protected:
    WindowOwners() { server().start(XServer::WindowManager::openbox); }
    ~WindowOwners() override { leaveServerAsFound(); }

    xcb_window_t windowInFront() {
        std::optional<FrontWindow> front;
        X11Windows windows(X11Connection::open(server().display()));
        EXPECT_TRUE(waitUntil([&] { return (front = windows.front()).has_value(); }));
        return front ? static_cast<xcb_window_t>(front->window) : xcb_window_t{XCB_WINDOW_NONE};
    }

    /// Of the window in front, and of the only one on the screen.
    void expectOwner(qint64 process) {
        X11Windows windows(X11Connection::open(server().display()));
        const auto front = windows.front();
        ASSERT_TRUE(front);
        EXPECT_EQ(front->processId, process);
        ASSERT_TRUE(waitUntil([&] { return windows.onScreen().size() == 1; }));
        EXPECT_EQ(windows.onScreen().front().owner, process);
    }

    XClient outsider{server().display()};
};

/// The only child of a process; 0 while there is none.
qint64 childOf(qint64 process) {
    return readFile(QStringLiteral("/proc/%1/task/%1/children").arg(process)).trimmed().toLongLong();
}

const QStringList inASandbox{QStringLiteral("--user"), QStringLiteral("--map-root-user"),
                             QStringLiteral("--pid"), QStringLiteral("--fork"),
                             QStringLiteral("--kill-child")};

bool mayMakeASandbox() {
    return ChildProcess::run(QStringLiteral("unshare"), inASandbox + QStringList{QStringLiteral("true")},
                             QProcessEnvironment::systemEnvironment())
               .status == 0;
}

} // namespace

TEST_F(WindowOwners, a_window_that_names_no_process_belongs_to_the_one_that_opened_it) {
    OtherWindow other(server().environment());
    const xcb_window_t window = windowInFront();
    xcb_delete_property(outsider.xcb(), window, outsider.atom("_NET_WM_PID"));
    ASSERT_TRUE(waitUntil([&] { return outsider.isViewable(window); }));
    expectOwner(other.processId());
}

TEST_F(WindowOwners, a_window_with_the_name_of_another_machine_belongs_to_the_local_process_that_opened_it) {
    OtherWindow other(server().environment());
    const xcb_window_t window = windowInFront();
    constexpr char machine[] = "elsewhere";
    xcb_change_property(outsider.xcb(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLIENT_MACHINE,
                        XCB_ATOM_STRING, 8, sizeof machine - 1, machine);
    ASSERT_TRUE(waitUntil([&] { return outsider.isViewable(window); }));
    expectOwner(other.processId());
}

TEST_F(WindowOwners, a_window_of_a_sandbox_belongs_to_the_process_and_not_to_its_number_in_there) {
    if (!mayMakeASandbox())
        GTEST_SKIP() << "name spaces cannot be made here";
    ChildProcess sandbox(QStringLiteral("unshare"),
                         inASandbox + QStringList{OtherWindow::program(), QStringLiteral("other")},
                         server().environment());
    windowInFront();
    expectOwner(childOf(sandbox.process().processId()));
}

} // namespace pavonel::test
