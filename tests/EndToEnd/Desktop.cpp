#include "EndToEnd/Desktop.h"

#include <algorithm>
#include <utility>

namespace pavonel::test {

namespace {

std::unique_ptr<XServer> runningServer(XServer::WindowManager manager) {
    auto server = std::make_unique<XServer>(QSize(1280 * Desktop::screens, 720));
    server->setMonitors({Desktop::screen(0), Desktop::screen(1), Desktop::screen(2)});
    server->start(manager);
    server->run(QStringLiteral("xsetroot"), {QStringLiteral("-solid"), Desktop::background().name()});
    return server;
}

} // namespace

Desktop::Desktop(XServer::WindowManager manager) : Desktop(runningServer(manager)) {}

Desktop::Desktop(std::unique_ptr<XServer> server)
    : ProgramAtHome(server->environment()), server_(std::move(server)),
      tree_(std::make_unique<WindowTree>(server_->display())) {
    pointAt(screen(1)); // the screens differ, and the idle time starts afresh
}

Desktop::~Desktop() {
    stopProgram();
}

std::vector<SeenWindow> Desktop::overlays() {
    auto windows = tree_->visible();
    std::erase_if(windows, [](const SeenWindow &window) { return window.title != u"Pavonel Break"; });
    return windows;
}

bool Desktop::shows(const char *title) {
    return std::ranges::any_of(
        tree_->visible(), [&](const SeenWindow &window) { return window.title == QString::fromUtf8(title); });
}

bool Desktop::waitForOverlays(std::size_t count) {
    return waitUntil([&] { return overlays().size() == count || !isRunning(); }) && isRunning();
}

void Desktop::pointAt(const QRect &screen) {
    const QPoint at = screen.center() + QPoint(7, 300); // beside everything one could press
    server_->xdotool({QStringLiteral("mousemove"), QString::number(at.x()), QString::number(at.y())});
}

void Desktop::endServer() {
    tree_.reset();
    server_.reset();
}

} // namespace pavonel::test
