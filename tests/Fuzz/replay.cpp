#include "Fuzz/Target.h"

#include <QDirIterator>
#include <QFile>

#include <gtest/gtest.h>

namespace pavonel::fuzz {

namespace {

class Seeds : public ::testing::TestWithParam<Target> {};

QString folderOf(const Target &target) {
    return QStringLiteral(PAVONEL_SOURCE_DIR "/tests/Fuzz/seeds/") + QLatin1String(target.name);
}

} // namespace

TEST_P(Seeds, are_all_decoded_without_harm) {
    int seeds = 0;
    for (QDirIterator files(folderOf(GetParam()), QDir::Files); files.hasNext(); ++seeds) {
        QFile file(files.next());
        ASSERT_TRUE(file.open(QFile::ReadOnly));
        SCOPED_TRACE(file.fileName().toStdString());
        GetParam().run(file.readAll());
    }
    EXPECT_GT(seeds, 0);
}

INSTANTIATE_TEST_SUITE_P(Of, Seeds, ::testing::ValuesIn(targets()),
                         [](const auto &target) { return std::string(target.param.name); });

} // namespace pavonel::fuzz
