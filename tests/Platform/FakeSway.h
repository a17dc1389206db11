#pragma once

#include "support/waitUntil.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>

#include <cstdint>

#include <gtest/gtest.h>

namespace pavonel::test {

/// As either side of sway's socket writes it.
inline QByteArray message(std::uint32_t type, const QByteArray &text) {
    const auto length = static_cast<std::uint32_t>(text.size());
    QByteArray all("i3-ipc");
    all.append(reinterpret_cast<const char *>(&length), sizeof length);
    all.append(reinterpret_cast<const char *>(&type), sizeof type);
    return all + text;
}

/// The socket of a sway that says what a test wants.
class FakeSway {
public:
    FakeSway() {
        EXPECT_TRUE(server_.listen(folder_.filePath(QStringLiteral("ipc"))));
        qputenv("SWAYSOCK", server_.fullServerName().toLocal8Bit());
    }
    ~FakeSway() { qunsetenv("SWAYSOCK"); }

    enum Type : std::uint32_t { runCommand = 0, subscribe = 2, getTree = 4, getConfig = 9 };

    /// The first program that connected.
    QLocalSocket *client() {
        if (!client_ && waitUntil([&] { return server_.hasPendingConnections(); }))
            client_ = server_.nextPendingConnection();
        return client_;
    }
    /// Waits until it has asked for this so often.
    bool isAsked(const QByteArray &question, int times = 1) {
        return waitUntil([&] { return heard().count(question) == times; });
    }
    const QByteArray &heard() { return heard_ += client()->readAll(); }

private:
    QTemporaryDir folder_;
    QLocalServer server_;
    QLocalSocket *client_ = nullptr;
    QByteArray heard_;
};

} // namespace pavonel::test
