#include "Platform/Qt/ProgramFiles.h"

#include "support/ToolFixture.h"

namespace pavonel::test {

namespace {

class ProgramFilesTest : public ToolFixture {
protected:
    void add(const char *name) const { write(QString::fromLatin1(name), ""); }
    QString at(const char *name) const { return path(QString::fromLatin1(name)); }
};

} // namespace

TEST_F(ProgramFilesTest, tools_and_sounds_lie_beside_the_program) {
    addTool(QStringLiteral("osascript"), "");
    add("program/resources/sounds/Glass.wav");
    EXPECT_EQ(files().program(), at("program/pavonel"));
    EXPECT_EQ(files().tool(QStringLiteral("osascript")), at("program/libexec/pavonel/osascript"));
    EXPECT_EQ(files().soundsFolder(), at("program/resources/sounds"));
}

TEST_F(ProgramFilesTest, of_an_installed_program_they_lie_under_its_prefix) {
    const QString tool = addScript(QStringLiteral("usr/libexec/pavonel/osascript"), "");
    add("usr/share/pavonel/sounds/Glass.wav");
    const ProgramFiles installed(at("usr/bin/pavonel"));
    EXPECT_EQ(installed.tool(QStringLiteral("osascript")), tool);
    EXPECT_EQ(installed.soundsFolder(), at("usr/share/pavonel/sounds"));
}

TEST_F(ProgramFilesTest, what_is_no_tool_of_ours_is_none) {
    add("program/libexec/pavonel/notes");
    addScript(QStringLiteral("program/outside"), "");
    for (const char *name : {"", ".", "..", "notes", "missing", "../../outside", "/bin/true"})
        EXPECT_EQ(files().tool(QString::fromLatin1(name)), QString()) << name;
}

} // namespace pavonel::test
