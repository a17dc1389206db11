#include "Platform/ProgramCode.h"

#include "support/files.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// What of the program's files is in memory; in KiB.
int codeInMemory() {
    const QString status = QString::fromUtf8(readFile(QStringLiteral("/proc/self/status")));
    const QRegularExpression line(QStringLiteral("RssFile:\\s+(\\d+)"));
    return line.match(status).captured(1).toInt();
}

/// Code of several libraries.
QString work() {
    QStringList words{QStringLiteral("long"), QStringLiteral("break")};
    words.sort();
    return QRegularExpression(QStringLiteral("o")).match(words.join(u' ')).captured() + QString::number(2.5);
}

} // namespace

TEST(ProgramCode, goes_out_of_memory_and_runs_again) {
    const QString before = work();
    const int inMemory = codeInMemory();
    returnCode();
    EXPECT_LT(codeInMemory(), inMemory * 3 / 4);
    EXPECT_EQ(work(), before);
}

} // namespace pavonel::test
