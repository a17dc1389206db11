#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

#include <gtest/gtest.h>

namespace pavonel::test {

/// Makes the folders above it too; fails the test when that is not possible.
inline void writeFile(const QString &path, const QByteArray &content) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QFile::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(content), content.size()) << path.toStdString();
}

/// Empty when there is none to read.
inline QByteArray readFile(const QString &path) {
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace pavonel::test
