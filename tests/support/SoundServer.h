#pragma once

#include "support/ChildProcess.h"
#include "support/MessageBus.h"

#include <QTemporaryDir>

#include <memory>
#include <vector>

namespace pavonel::test {

/// A sound server of the test's own with devices that lead nowhere: the source "mic" and the sink "spk", both
/// the default ones. Private folders and a private bus; everything it started ends with it.
class SoundServer {
public:
    enum class Kind { pulseAudio, pipeWire };

    /// Not running yet. From here on this process would talk to this server only.
    explicit SoundServer(Kind kind);
    ~SoundServer();

    /// Starts it, again after a `kill`, and waits until the devices are there. Failing that fails the test.
    void start();

    void addSource(const QString &name);

    /// Ends it without warning.
    void kill();

    std::unique_ptr<ChildProcess> record(const QString &source = QStringLiteral("mic"));
    std::unique_ptr<ChildProcess> play(const QString &sink = QStringLiteral("spk"));

    /// Plays as the program of this identifier would.
    std::unique_ptr<ChildProcess> playAs(const QString &applicationId);

    /// What `pactl` prints; empty when it fails.
    QByteArray pactl(const QStringList &arguments);

    /// Whether the server itself lists the device as running: "sources" or "sinks".
    bool isRunning(const QString &list, const QString &device);

    QProcessEnvironment environment() const;

private:
    void startPulseAudio();
    void startPipeWire();
    void launch(const QString &program, const QStringList &arguments = {});
    std::unique_ptr<ChildProcess> stream(const QString &program, const QString &device);

    Kind kind_;
    QTemporaryDir home_;
    MessageBus bus_;
    std::vector<std::unique_ptr<ChildProcess>> programs_;
};

} // namespace pavonel::test
