#pragma once

#include "EndToEnd/ProgramAtHome.h"
#include "EndToEnd/WindowTree.h"
#include "support/XServer.h"
#include "support/waitUntil.h"

#include <memory>

namespace pavonel::test {

/// Three screens of 1280x720 side by side, a window manager, and the built program, which is driven and
/// looked at from outside: the windows, the pixels, the keys, the store's file.
class Desktop : public ProgramAtHome {
public:
    explicit Desktop(XServer::WindowManager manager = XServer::WindowManager::openbox);
    ~Desktop();

    static QRect screen(int index) { return {1280 * index, 0, 1280, 720}; }
    static constexpr int screens = 3;

    XServer &server() { return *server_; }
    WindowTree &tree() { return *tree_; }

    /// The break screen's windows, the lowest first.
    std::vector<SeenWindow> overlays();
    bool waitForOverlays(std::size_t count = screens);
    bool waitForNoOverlay() { return waitForOverlays(0); }

    /// Whether a window of this title is on the screen.
    bool shows(const char *title);

    /// What stands behind all windows; nothing of Pavonel's has this colour.
    static QColor background() { return Qt::magenta; }

    void pressEscape() { server_->xdotool({QStringLiteral("key"), QStringLiteral("Escape")}); }
    void pointAt(const QRect &screen);

    /// The X server dies on the program.
    void endServer();

private:
    explicit Desktop(std::unique_ptr<XServer> server);

    std::unique_ptr<XServer> server_;
    std::unique_ptr<WindowTree> tree_;
};

} // namespace pavonel::test
