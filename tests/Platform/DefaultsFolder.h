#pragma once

#include "Platform/Posix/FileDefaults.h"
#include "support/VirtualMainLoop.h"
#include "support/files.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <optional>

#include <gtest/gtest.h>

namespace pavonel::test {

/// A key of the store.
inline const QString strictMode = QStringLiteral("strictMode");

/// A store under virtual time in a folder of its own.
struct DefaultsFolder : ::testing::Test {
    QTemporaryDir home;
    QString folder = home.filePath(QStringLiteral("config/pavonel"));
    QString path = folder + QStringLiteral("/defaults.json");
    VirtualMainLoop loop;
    std::optional<FileDefaults> store;

    /// Writes without a thread, so that what is due has been done when time has passed.
    FileDefaults &open() { return store.emplace(path, loop, FileDefaults::Writing::onTheCallersThread); }

    /// What the next start of the program finds.
    FileDefaults &reopen() {
        store.reset();
        return open();
    }

    void put(const QByteArray &content) const { writeFile(path, content); }

    QByteArray content() const { return readFile(path); }

    QJsonObject object() const { return QJsonDocument::fromJson(content()).object(); }

    QStringList files() const {
        return QDir(folder).entryList(
            QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System, QDir::Name);
    }
};

template <class T> T get(const UserDefaults &store, const char *key) {
    const auto value = store.value(QString::fromUtf8(key));
    return value && std::holds_alternative<T>(*value) ? std::get<T>(*value) : T{};
}

} // namespace pavonel::test
