#pragma once

#include "support/Compositor.h"
#include "support/WlrInput.h"
#include "support/XServer.h"

#include <QJsonDocument>
#include <QTemporaryDir>

#include <memory>

namespace pavonel::test {

/// A sway inside a virtual X server. It can be made before the application object, so that Qt itself can run
/// on it (`becomeOurDisplay`).
class Sway final : public Compositor {
public:
    /// The outputs are called "X11-1", "X11-2" …
    explicit Sway(int outputs = 2);
    ~Sway() override;

    QProcessEnvironment environment() const override;

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
    /// False, where sway ends over it (1.10 does when there was none).
    [[nodiscard]] bool addOutput();

    VirtualInput &input() override { return *input_; }
    void pointAt(QPoint point) override;

    std::unique_ptr<ChildProcess> launch(const QString &program, const QStringList &arguments);

    QImage picture() override { return picture({}); }
    /// What one output shows now.
    QImage picture(const QString &output);

    void end() override;

private:
    QByteArray run(const QString &program, const QStringList &arguments);
    QSize layout();

    XServer screen_; ///< On which the outputs are windows: only such ones can be taken away.
    QTemporaryDir home_;
    QTemporaryDir runtime_;
    QString socket_;
    QString ipc_;
    std::unique_ptr<ChildProcess> process_;
    std::unique_ptr<WlrInput> input_;
};

} // namespace pavonel::test
