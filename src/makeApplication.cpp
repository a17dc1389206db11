#include "makeApplication.h"

#include "Platform/GivenEnvironment.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>
#include <QSemaphore>
#include <QStyle>
#include <QThreadPool>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace pavonel {

namespace {

/// What Qt tells while it looks for a window system: shown once it found one, else the ground for our line.
struct Told {
    std::string messages;
    QString missingPlugin;
    QString unusablePlugin;
};

Told told;

QFileInfoList platformPlugins() {
    QStringList folders{qEnvironmentVariable("QT_QPA_PLATFORM_PLUGIN_PATH")};
    for (const QString &path : QCoreApplication::libraryPaths())
        folders.append(path + QStringLiteral("/platforms"));
    folders.removeAll(QString());
    QFileInfoList plugins;
    for (const QString &folder : folders)
        plugins.append(QDir(folder).entryInfoList(QDir::Files));
    return plugins;
}

/// Why the dynamic linker refuses the plugin of this name; empty when it does not.
QString linkersComplaint(const QString &name) {
    for (const QFileInfo &file : platformPlugins()) {
        const QJsonObject about = QPluginLoader(file.filePath()).metaData();
        if (!about[u"MetaData"][u"Keys"].toArray().contains(name))
            continue;
        QLibrary plugin(file.filePath());
        return plugin.load() ? QString() : plugin.errorString();
    }
    return {};
}

QString reason(const QString &fatal) {
    if (!told.unusablePlugin.isEmpty()) {
        const QString complaint = linkersComplaint(told.unusablePlugin);
        return complaint.isEmpty()
                   ? QStringLiteral("no display can be opened; start it from within a desktop session")
                   : complaint;
    }
    if (!told.missingPlugin.isEmpty())
        return QStringLiteral(
                   "Qt has no platform plugin \"%1\" here; QT_QPA_PLATFORM or -platform chooses one")
            .arg(told.missingPlugin);
    return fatal.section(u'\n', 0, 0);
}

/// Qt names each plugin that is of no use: with a warning where there is none of this name.
void note(QtMsgType type, const QString &text) {
    QString &plugin = type == QtWarningMsg ? told.missingPlugin : told.unusablePlugin;
    if (plugin.isEmpty())
        plugin = text.section(u'"', 1, 1);
}

/// Qt ends the process with several lines and an abort where it finds no window system; a person needs one
/// line.
void listen(QtMsgType type, const QMessageLogContext &context, const QString &text) {
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "pavonel: %s\n", reason(text).toLocal8Bit().constData());
        std::_Exit(EXIT_FAILURE);
    }
    if (context.category && std::strcmp(context.category, "qt.qpa.plugin") == 0)
        note(type, text);
    told.messages += qFormatLogMessage(type, context, text).toLocal8Bit().toStdString() + '\n';
}

/// Qt hands large fills to threads of a pool and waits for them: for ever where one cannot be started for
/// want of memory, under a break screen that stays. Newer versions (6.8) leave it when told to; for older
/// ones the pool gets its only thread now, and keeps it.
void paintWithoutNewThreads() {
    setForUsAlone("QT_NO_GUI_THREADPOOL", "1");
    QThreadPool &pool = *QThreadPool::globalInstance();
    pool.setMaxThreadCount(1);
    pool.setExpiryTimeout(-1);
    QSemaphore hasStarted;
    pool.start([&hasStarted] { hasStarted.release(); });
    constexpr int longest = 60'000; // milliseconds
    if (!hasStarted.tryAcquire(1, longest)) {
        std::fputs("pavonel: there is no memory for the thread that paints\n", stderr);
        std::_Exit(EXIT_FAILURE);
    }
}

} // namespace

void makeApplication(std::optional<QApplication> &application, int &argc, char **argv) {
    qInstallMessageHandler(listen);
    QApplication::setStyle(
        QStringLiteral("Fusion")); // our windows draw themselves; no desktop's style is loaded
    application.emplace(argc, argv);
    QApplication::style()->setParent(&*application); // it was made first, and so belongs to nobody
    qInstallMessageHandler(nullptr);
    std::fputs(told.messages.c_str(), stderr);
    paintWithoutNewThreads();
    QApplication::setApplicationName(QStringLiteral("pavonel"));
    QGuiApplication::setDesktopFileName(
        QStringLiteral("org.pavonel.Pavonel")); // by which desktops find our name and icon
    QApplication::setApplicationVersion(QStringLiteral(PAVONEL_VERSION));
    QApplication::setQuitOnLastWindowClosed(false);
}

} // namespace pavonel
