#pragma once

#include "support/ChildProcess.h"

#include <QColor>
#include <QImage>
#include <QRect>
#include <QTemporaryDir>

#include <memory>
#include <optional>
#include <vector>

namespace pavonel::test {

/// A virtual X server of the test's own, on a free display, with a private home for all that runs on it.
/// It can be made before the application object, so that Qt itself can run on it (`becomeOurDisplay`).
/// Everything it started ends with it. What cannot be had fails the test.
class XServer {
public:
    enum class WindowManager { openbox, xfwm4, xfwm4WithCompositor };

    /// One monitor of this size; `setMonitors` splits it.
    explicit XServer(QSize size = {1920, 1080});
    ~XServer();

    /// As programs know it: ":7".
    QByteArray display() const { return display_; }

    /// The environment for programs that are to run on this server.
    QProcessEnvironment environment() const;

    /// Makes this server the display of this process. Needed before a QApplication on "xcb" is made.
    void becomeOurDisplay() const;

    /// The monitors from now on, named "A", "B", "C" … in this order; they must lie within the server's size.
    /// None restores the one of the beginning. Programs are told, but not waited for.
    void setMonitors(const std::vector<QRect> &monitors);

    /// Changes the mode of the screen itself, as the desktop's settings do; it must lie within the server's
    /// size of the beginning. Programs are told, but not waited for.
    void setMode(QSize size);

    /// Starts the window manager, in place of one that runs, and waits until it manages.
    void start(WindowManager manager);
    void stopWindowManager();

    /// Runs a program on this server to its end and gives what it printed; another status than 0 fails the
    /// test.
    QByteArray run(const QString &program, const QStringList &arguments);

    /// Starts a program on this server.
    std::unique_ptr<ChildProcess> launch(const QString &program, const QStringList &arguments);

    /// Input from outside: {"key", "ctrl+alt+super+b"}, {"mousemove", "10", "20", "click", "1"} …
    void xdotool(const QStringList &arguments) { run(QStringLiteral("xdotool"), arguments); }

    /// What the screen shows now: all monitors side by side, which is a lot to look at again and again, or a
    /// part. Null when the part reaches beyond the screen.
    QImage picture(std::optional<QRect> part = {});
    QColor colourAt(QPoint point);

private:
    void startMessageBus();
    void waitForWindowManager(bool withCompositor);

    QTemporaryDir home_;
    std::unique_ptr<ChildProcess> server_;
    std::unique_ptr<ChildProcess> bus_;
    std::unique_ptr<ChildProcess> windowManager_;
    QByteArray display_;
    QByteArray busAddress_;
    std::vector<QRect> monitors_;
    QStringList modes_; ///< That `setMode` made.
};

} // namespace pavonel::test
