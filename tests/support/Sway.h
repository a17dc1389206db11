#pragma once

#include "support/XServer.h"

#include <QJsonDocument>
#include <QTemporaryDir>

#include <memory>

namespace pavonel::test {

class VirtualInput;

/// A sway of the test's own, inside a virtual X server, with outputs side by side, a pointer and a keyboard,
/// and a private home for all that runs on it. It can be made before the application object, so that Qt
/// itself can run on it (`becomeOurDisplay`). Everything it started ends with it. What cannot be had fails
/// the test.
class Sway {
public:
    /// The outputs are called "X11-1", "X11-2" …
    explicit Sway(int outputs = 2);
    ~Sway();

    static constexpr QSize outputSize{1024, 768};

    /// Behind all windows; nothing of Pavonel's has this colour.
    static QColor background() { return Qt::magenta; }

    /// The environment for programs that are to run on this compositor; there is no X server in it.
    QProcessEnvironment environment() const;

    /// Makes this compositor the display of this process. Needed before a QApplication on "wayland" is made.
    void becomeOurDisplay() const;

    /// The path of the socket on which programs find it.
    QString socket() const { return socket_; }

    /// Carries out a command of sway's configuration; one that fails fails the test.
    void command(const QString &command);

    /// What `swaymsg -t` answers: "get_outputs", "get_tree", "get_seats" …
    QJsonDocument ask(const QString &type);

    /// As pulling its cable does.
    void removeOutput(const QString &name);

    /// To the right of the others, with the next number that no output had so far.
    void addOutput();

    VirtualInput &input() { return *input_; }

    /// Moves the pointer to a point of the layout and clicks there.
    void click(QPoint point);
    void pointAt(QPoint point);

    std::unique_ptr<ChildProcess> launch(const QString &program, const QStringList &arguments);

    /// What the outputs show now, all side by side, or one of them.
    QImage picture(const QString &output = {});

    /// The compositor goes away from under its programs.
    void end();

private:
    QByteArray run(const QString &program, const QStringList &arguments);
    QSize layout();

    XServer screen_; ///< On which the outputs are windows: only such ones can be taken away.
    QTemporaryDir home_;
    QTemporaryDir runtime_;
    QString socket_;
    QString ipc_;
    std::unique_ptr<ChildProcess> process_;
    std::unique_ptr<VirtualInput> input_;
};

} // namespace pavonel::test
