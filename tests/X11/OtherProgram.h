#pragma once

#include "X11/server.h"
#include "support/ChildProcess.h"
#include "support/XClient.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <memory>

#include <gtest/gtest.h>

namespace pavonel::test {

/// A running program with windows, and a folder of desktop files that may name it.
class OtherProgram {
protected:
    OtherProgram() : other(std::make_unique<XClient>(server().display())) {
        player = run(QStringLiteral("pavonel-test-player"));
    }

    /// Starts another program that is called so.
    std::unique_ptr<ChildProcess> run(const QString &name) {
        const QString path = folder.filePath(name);
        QFile::copy(QFileInfo(QStringLiteral("/usr/bin/sleep")).canonicalFilePath(), path);
        return std::make_unique<ChildProcess>(path, QStringList{QStringLiteral("300")});
    }

    void install(const QString &identifier, const QByteArray &lines) {
        writeFile(folder.filePath(identifier + QStringLiteral(".desktop")),
                  "[Desktop Entry]\nType=Application\n" + lines);
    }

    /// A window of the player, in front.
    xcb_window_t open(const QRect &at, XClient::Kind kind = XClient::Kind::normal) {
        const xcb_window_t window = other->open(at, Qt::black, kind);
        setProcess(window);
        setClass(window, QByteArrayLiteral("player\0Player\0"));
        other->activate(window);
        EXPECT_TRUE(waitUntil([&] { return other->activeWindow() == window; }));
        return window;
    }
    void setProcess(xcb_window_t window) {
        const auto process = static_cast<std::uint32_t>(player->process().processId());
        xcb_change_property(other->xcb(), XCB_PROP_MODE_REPLACE, window, other->atom("_NET_WM_PID"),
                            XCB_ATOM_CARDINAL, 32, 1, &process);
    }
    void setMachine(xcb_window_t window, const QByteArray &name) {
        xcb_change_property(other->xcb(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLIENT_MACHINE,
                            XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(name.size()), name.constData());
    }
    void setClass(xcb_window_t window, const QByteArray &value) {
        xcb_change_property(other->xcb(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING,
                            8, static_cast<std::uint32_t>(value.size()), value.constData());
    }

    QTemporaryDir folder;
    std::unique_ptr<ChildProcess> player;
    std::unique_ptr<XClient> other;
};

} // namespace pavonel::test
