#pragma once

#include "EndToEnd/WindowTree.h"
#include "support/XServer.h"
#include "support/waitUntil.h"

#include <QDate>
#include <QElapsedTimer>
#include <QJsonObject>
#include <QTemporaryDir>

#include <memory>

namespace pavonel::test {

/// Three screens of 1280x720 side by side, a window manager, and the built program in a home of its own. It
/// is driven and looked at from outside: the windows, the pixels, the keys, the store's file. It is always
/// night: midnight is over, and no planned break is near.
class Desktop {
public:
    explicit Desktop(XServer::WindowManager manager = XServer::WindowManager::openbox);
    ~Desktop();

    static QRect screen(int index) { return {1280 * index, 0, 1280, 720}; }
    static constexpr int screens = 3;

    XServer &server() { return *server_; }
    WindowTree &tree() { return *tree_; }

    /// What the program finds in its store, on top of settings that keep the tests short and silent.
    void store(const QJsonObject &members);
    QString storePath() const;
    QJsonObject stored() const;

    /// The date where the program is.
    static QDate today();

    /// Today's record of the statistics; empty when there is none.
    QJsonObject statistics() const;

    /// What the program will be started with.
    QProcessEnvironment &environment() { return environment_; }

    void startProgram();
    bool isRunning() const { return program_ && program_->isRunning(); }
    qint64 millisecondsSinceStart() const { return sinceStart_.elapsed(); }

    void sendSignal(int signal);

    /// Sends the signal and gives the exit status, -1 when the program crashed, was killed or did not end.
    int endProgram(int signal);
    int waitForExit();

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
    QProcessEnvironment environmentAtHome() const;

    QTemporaryDir home_;
    QProcessEnvironment environment_;
    std::unique_ptr<XServer> server_;
    std::unique_ptr<WindowTree> tree_;
    std::unique_ptr<ChildProcess> program_;
    QElapsedTimer sinceStart_;
};

} // namespace pavonel::test
