#include "Platform/Linux/Applications/LinuxInstalledApplications.h"
#include "support/Printing.h"
#include "support/VirtualMainLoop.h"
#include "support/files.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace pavonel {

static void PrintTo(const InstalledApplication &application, std::ostream *out) {
    *out << application.bundleIdentifier.toStdString() << " \"" << application.name.toStdString() << '"';
}

} // namespace pavonel

namespace pavonel::test {

namespace {

/// Applications in the folders of a user and of a system that have nothing else.
class TheInstalledApplications : public ::testing::Test {
protected:
    using Apps = std::vector<InstalledApplication>;

    QTemporaryDir folder_;
    VirtualMainLoop loop_;

    QString path(const QString &name) const { return folder_.filePath(name); }

    void write(const QString &name, const QByteArray &content) const { writeFile(path(name), content); }

    void addApplication(const QString &name, const QByteArray &lines) const {
        write(name, "[Desktop Entry]\nType=Application\n" + lines);
    }

    void addPicture(const QString &name, QSize size, const QColor &colour) const {
        QDir().mkpath(QFileInfo(path(name)).path());
        QImage picture(size, QImage::Format_ARGB32);
        picture.fill(colour);
        ASSERT_TRUE(picture.save(path(name)));
    }

    void addTheme() const {
        write(QStringLiteral("icons/hicolor/index.theme"),
              "[Icon Theme]\nName=hicolor\nDirectories=48x48/apps,scalable/apps\n"
              "[48x48/apps]\nSize=48\nType=Fixed\n"
              "[scalable/apps]\nSize=64\nMinSize=8\nMaxSize=512\nType=Scalable\n");
    }

    LinuxInstalledApplications applications(const QString &locale = QStringLiteral("en_GB")) {
        return LinuxInstalledApplications({{path(QStringLiteral("user")), path(QStringLiteral("system"))},
                                           {path(QStringLiteral("icons"))},
                                           {path(QStringLiteral("pixmaps"))},
                                           {QStringLiteral("Here")},
                                           locale},
                                          loop_);
    }
};

InstalledApplication app(const char *identifier, const char *name) {
    return {QString::fromUtf8(identifier), QString::fromUtf8(name)};
}

} // namespace

TEST_F(TheInstalledApplications, come_in_the_order_of_their_names) {
    addApplication(QStringLiteral("system/org.x.Writer.desktop"), "Name=writer\n");
    addApplication(QStringLiteral("system/sub/b.desktop"), "Name=Browser\n");
    addApplication(QStringLiteral("user/a.desktop"), "Name=Zither\n");
    EXPECT_EQ(applications().all(),
              Apps({app("sub-b", "Browser"), app("org.x.Writer", "writer"), app("a", "Zither")}));
}

TEST_F(TheInstalledApplications, have_their_name_in_the_language_of_the_user) {
    addApplication(QStringLiteral("system/a.desktop"),
                   "Name=Files\nName[de]=Dateien\nName[pt]=Ficheiros\nName[pt_BR]=Arquivos\n");
    EXPECT_EQ(applications(QStringLiteral("de_AT")).all(), Apps{app("a", "Dateien")});
    EXPECT_EQ(applications(QStringLiteral("pt_BR")).all(), Apps{app("a", "Arquivos")});
    EXPECT_EQ(applications(QStringLiteral("fr_FR")).all(), Apps{app("a", "Files")});
    EXPECT_EQ(applications(QString()).all(), Apps{app("a", "Files")});
}

TEST_F(TheInstalledApplications, are_those_of_the_menu_of_this_desktop) {
    addApplication(QStringLiteral("system/shown.desktop"), "Name=Shown\nOnlyShowIn=Other;Here;\n");
    addApplication(QStringLiteral("system/1.desktop"), "Name=a\nNoDisplay=true\n");
    addApplication(QStringLiteral("system/2.desktop"), "Name=b\nHidden=true\n");
    addApplication(QStringLiteral("system/3.desktop"), "Name=c\nOnlyShowIn=Other;\n");
    addApplication(QStringLiteral("system/4.desktop"), "Name=d\nNotShowIn=Here;\n");
    addApplication(QStringLiteral("system/5.desktop"), "Name=e\nTerminal=true\n");
    addApplication(QStringLiteral("system/6.desktop"), "Name=f\nTryExec=/nonexistent/program\n");
    write(QStringLiteral("system/7.desktop"), "[Desktop Entry]\nType=Link\nName=g\n");
    EXPECT_EQ(applications().all(), Apps{app("shown", "Shown")});
}

TEST_F(TheInstalledApplications, of_the_user_outrank_those_of_the_system) {
    addApplication(QStringLiteral("system/a.desktop"), "Name=Old\n");
    addApplication(QStringLiteral("system/b.desktop"), "Name=Taken away\n");
    addApplication(QStringLiteral("user/a.desktop"), "Name=New\n");
    addApplication(QStringLiteral("user/b.desktop"), "Name=Taken away\nHidden=true\n");
    EXPECT_EQ(applications().all(), Apps{app("a", "New")});
}

TEST_F(TheInstalledApplications, that_record_have_the_identifier_that_they_run_under) {
    addApplication(QStringLiteral("system/com.obsproject.Studio.desktop"), "Name=OBS Studio\nExec=obs\n");
    addApplication(QStringLiteral("system/kazam.desktop"), "Name=Kazam\nExec=kazam\n");
    addApplication(QStringLiteral("system/peek.desktop"), "Name=Peek\nExec=peek\n");
    const auto all = applications().all();
    ASSERT_EQ(all.size(), 2U) << "an identifier stands only once";
    EXPECT_EQ(all.back(), app("com.obsproject.obs-studio", "OBS Studio"));
}

TEST_F(TheInstalledApplications, have_names_of_one_line) {
    addApplication(QStringLiteral("system/a.desktop"), "Name= Two\\nlines \\t here \n");
    EXPECT_EQ(applications().all(), Apps{app("a", "Two lines here")});
}

TEST_F(TheInstalledApplications, are_none_where_there_are_no_files_or_only_nonsense) {
    EXPECT_EQ(applications().all(), Apps{});
    write(QStringLiteral("system/empty.desktop"), {});
    write(QStringLiteral("system/noise.desktop"), QByteArrayLiteral("\0\xff\xfe[[[=\n\"\\"));
    write(QStringLiteral("system/headless.desktop"), "Type=Application\nName=x\n");
    write(QStringLiteral("system/long.desktop"), QByteArray(1 << 20, '='));
    addApplication(QStringLiteral("system/nameless.desktop"), "Icon=x\n");
    QDir().mkpath(path(QStringLiteral("system/folder.desktop")));
    ::mkfifo(QFile::encodeName(path(QStringLiteral("system/pipe.desktop"))).constData(), 0600);
    EXPECT_EQ(applications().all(), Apps{});
}

TEST_F(TheInstalledApplications, have_the_icon_of_the_theme) {
    addTheme();
    addPicture(QStringLiteral("icons/hicolor/48x48/apps/writer.png"), {48, 48}, Qt::red);
    addApplication(QStringLiteral("system/a.desktop"), "Name=a\nIcon=writer\n");
    addApplication(QStringLiteral("system/b.desktop"), "Name=b\nIcon=writer.png\n");
    auto apps = applications();
    apps.all();
    for (const char *identifier : {"a", "b"}) {
        const QImage icon = apps.icon(QString::fromLatin1(identifier), 32);
        EXPECT_EQ(icon.size(), QSize(32, 32)) << identifier;
        EXPECT_EQ(icon.pixelColor(16, 16), QColor(Qt::red)) << identifier;
    }
}

TEST_F(TheInstalledApplications, have_a_drawn_icon_at_any_size) {
    addTheme();
    write(QStringLiteral("icons/hicolor/scalable/apps/drawn.svg"),
          "<svg xmlns='http://www.w3.org/2000/svg' width='16' height='16'><rect width='16' height='16' "
          "fill='#00ff00'/></svg>");
    addApplication(QStringLiteral("system/a.desktop"), "Name=a\nIcon=drawn\n");
    auto apps = applications();
    apps.all();
    const QImage icon = apps.icon(QStringLiteral("a"), 96);
    EXPECT_EQ(icon.size(), QSize(96, 96));
    EXPECT_EQ(icon.pixelColor(48, 48), QColor(Qt::green));
}

TEST_F(TheInstalledApplications, have_an_icon_outside_of_all_themes_or_at_a_path) {
    addPicture(QStringLiteral("pixmaps/old.png"), {20, 20}, Qt::blue);
    addPicture(QStringLiteral("somewhere/wide.png"), {200, 100}, Qt::yellow);
    addApplication(QStringLiteral("system/a.desktop"), "Name=a\nIcon=old\n");
    addApplication(QStringLiteral("system/b.desktop"),
                   "Name=b\nIcon=" + path(QStringLiteral("somewhere/wide.png")).toUtf8() + '\n');
    auto apps = applications();
    apps.all();
    EXPECT_EQ(apps.icon(QStringLiteral("a"), 16).pixelColor(8, 8), QColor(Qt::blue));
    EXPECT_EQ(apps.icon(QStringLiteral("b"), 64).size(), QSize(64, 32));
}

TEST_F(TheInstalledApplications, without_a_readable_icon_have_none) {
    write(QStringLiteral("broken.png"), "no picture");
    ::mkfifo(QFile::encodeName(path(QStringLiteral("pipe.png"))).constData(), 0600);
    addApplication(QStringLiteral("system/none.desktop"), "Name=a\n");
    addApplication(QStringLiteral("system/unknown.desktop"), "Name=b\nIcon=nobody-has-this\n");
    addApplication(QStringLiteral("system/relative.desktop"), "Name=c\nIcon=../../broken.png\n");
    for (const char *file : {"broken.png", "pipe.png", "gone.png"}) {
        const QString name = QString::fromLatin1(file);
        addApplication(QStringLiteral("system/%1.desktop").arg(name),
                       "Name=d\nIcon=" + path(name).toUtf8() + '\n');
    }
    auto apps = applications();
    for (const auto &application : apps.all())
        EXPECT_TRUE(apps.icon(application.bundleIdentifier, 48).isNull())
            << qPrintable(application.bundleIdentifier);
    EXPECT_TRUE(apps.icon(QStringLiteral("nobody"), 48).isNull());
    EXPECT_TRUE(apps.icon(QStringLiteral("none"), 0).isNull());
}

} // namespace pavonel::test
