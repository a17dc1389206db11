#pragma once

#include "support/ChildProcess.h"
#include "support/MessageBus.h"
#include "support/MockLogind.h"

#include <QDBusConnection>
#include <QImage>
#include <QTemporaryDir>

#include <memory>

namespace pavonel::test {

/// A GNOME Shell of the test's own, without a screen, with two outputs side by side, an X server beside it,
/// and a private home. Everything it started ends with it. What cannot be had fails the test.
class GnomeShell {
public:
    /// Our extension: in its folder and switched on by the user, in its folder, or neither.
    enum class Extension { missing, disabled, enabled };

    explicit GnomeShell(Extension extension = Extension::missing);
    ~GnomeShell();

    /// Whether this machine has all that it takes. Where it has not, the tests are left out.
    static bool isThere();

    static constexpr QSize outputSize{1280, 800};

    /// Behind all windows; nothing of Pavonel's has this colour.
    static QColor background() { return Qt::magenta; }

    /// The environment for programs that are to run on it.
    QProcessEnvironment environment() const;

    /// Where its settings are: a program that shares this folder shares them.
    QString settingsFolder() const { return home_.filePath(QStringLiteral(".config/glib-2.0")); }

    /// Runs this in the Shell and gives its value as JSON.
    QString eval(const QString &script);

    /// Presses and releases keys, all together; "Escape", "Control_L", "b", as X calls them.
    void press(const QStringList &keys);
    void pointAt(QPoint point);
    void click(QPoint point);

    /// Whether what is clicked there goes to the window of this title: a window is seen a moment before.
    bool takesClicks(const QString &title, QPoint point);

    /// Only the first output stays, or both are there again.
    void setOutputs(int count);

    /// Whether a window of this title is open.
    bool hasWindow(const QString &title);

    /// Whether the keys go to the window of this title.
    bool hasFocus(const QString &title);

    /// What the outputs show now, side by side.
    QImage picture();

    /// Other programs' notifications are taken by a program of their own, which the bus would start
    /// elsewhere.
    [[nodiscard]] std::unique_ptr<ChildProcess> startNotifications();

    QDBusConnection bus() const { return connection_; }

private:
    void prepareHome(Extension extension);
    void logIn();
    void startShell();
    void makeDevices();
    void act(const QString &script);

    MockLogind logind_;
    QTemporaryDir home_;
    MessageBus bus_;
    QDBusConnection connection_;
    std::unique_ptr<ChildProcess> process_;
    QString display_;
    QString authority_;
};

} // namespace pavonel::test
