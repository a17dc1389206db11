#include "Platform/Linux/Applications/LinuxInstalledApplications.h"

#include "Platform/ForeignFile.h"
#include "Platform/Linux/Applications/DesktopFileCatalogue.h"
#include "Platform/Linux/Applications/DesktopFileListing.h"
#include "Platform/Linux/Applications/ProgramName.h"
#include "Platform/Linux/Applications/Recorders.h"
#include "Platform/Linux/DesktopEntry.h"

#include <QBuffer>
#include <QCollator>
#include <QFileInfo>
#include <QIcon>
#include <QImage>
#include <QImageReader>
#include <QLocale>
#include <QSet>
#include <QStandardPaths>

#include <algorithm>

namespace pavonel {

namespace {

/// For what a window is about to show; disks that answer take much less.
constexpr std::chrono::milliseconds timeout{2000};

using Environment = LinuxInstalledApplications::Environment;

bool intersects(const QStringList &one, const QStringList &other) {
    return std::ranges::any_of(one, [&](const QString &text) { return other.contains(text); });
}

bool isInstalled(const DesktopEntry &entry) {
    const QString program = entry.text("TryExec");
    return program.isEmpty() || !QStandardPaths::findExecutable(program).isEmpty();
}

/// As the menu decides it. What runs in a terminal is left out: then the terminal is the program in front.
bool isForTheMenu(const DesktopEntry &entry, const QStringList &desktops) {
    if (entry.text("Type") != u"Application" || entry.isTrue("Hidden") || entry.isTrue("NoDisplay") ||
        entry.isTrue("Terminal"))
        return false;
    if (entry.has("OnlyShowIn") && !intersects(entry.list("OnlyShowIn"), desktops))
        return false;
    return !intersects(entry.list("NotShowIn"), desktops) && isInstalled(entry);
}

QString nameFor(const DesktopEntry &entry, const QString &locale) {
    const QByteArray full = locale.toUtf8();
    for (const QByteArray &language : {full, full.split('_').first()}) {
        if (const QString name = entry.text("Name[" + language + ']'); !name.isEmpty())
            return name.simplified();
    }
    return entry.text("Name").simplified();
}

/// Recorders run under identifiers that Pavonel knows them by.
QString identifierAtRunTime(const QString &identifier, const DesktopEntry &entry) {
    QByteArrayList command;
    for (const QString &word : entry.command())
        command.append(word.toLocal8Bit());
    const QString recorder = recorders::identifierOf(programName(command), command);
    return recorder.isEmpty() ? identifier : recorder;
}

QImage decoded(const QByteArray &file, int side) {
    QBuffer content;
    content.setData(file);
    content.open(QIODevice::ReadOnly);
    QImageReader reader(&content);
    if (const QSize stored = reader.size(); !stored.isEmpty())
        reader.setScaledSize(stored.scaled(side, side, Qt::KeepAspectRatio));
    return reader.read();
}

/// Icons of a theme are named without a suffix, but many files give one.
QString themeName(const QString &icon) {
    for (const char *suffix : {".png", ".svg", ".xpm"}) {
        if (icon.endsWith(QLatin1String(suffix)))
            return icon.chopped(4);
    }
    return icon;
}

QStringList withoutDuplicates(QStringList texts) {
    texts.removeDuplicates();
    return texts;
}

/// Also makes it see what came or went since the last time.
void setUpIconSearch(const Environment &environment) {
    QIcon::setThemeSearchPaths(withoutDuplicates(environment.iconThemes + QIcon::themeSearchPaths()));
    QIcon::setFallbackSearchPaths(withoutDuplicates(environment.icons + QIcon::fallbackSearchPaths()));
    if (QIcon::themeName().isEmpty())
        QIcon::setThemeName(QStringLiteral("hicolor"));
}

} // namespace

Environment Environment::ofThisDesktop() {
    const auto folders = [](const char *name) {
        return QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, QLatin1String(name),
                                         QStandardPaths::LocateDirectory);
    };
    const QStringList languages = QLocale().uiLanguages();
    return {DesktopFileCatalogue::standardFolders(), folders("icons"), folders("pixmaps"),
            qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts),
            languages.value(0).replace(u'-', u'_')};
}

LinuxInstalledApplications::Found LinuxInstalledApplications::find(const Environment &environment) {
    Found found;
    QSet<QString> seen;
    for (const ListedDesktopFile &file : listDesktopFiles(environment.desktopFiles, [](const auto &) {})) {
        if (seen.contains(file.identifier))
            continue;
        seen.insert(file.identifier);
        const auto entry = DesktopEntry::parse(readDesktopFile(file.path));
        if (!entry || !isForTheMenu(*entry, environment.desktops))
            continue;
        const QString identifier = identifierAtRunTime(file.identifier, *entry);
        const QString name = nameFor(*entry, environment.locale);
        if (name.isEmpty() || found.icons.contains(identifier))
            continue;
        found.applications.push_back({identifier, name});
        found.icons.insert(identifier, entry->text("Icon"));
    }
    QCollator order;
    order.setCaseSensitivity(Qt::CaseInsensitive);
    std::ranges::stable_sort(found.applications, [&](const auto &one, const auto &other) {
        return order.compare(one.name, other.name) < 0;
    });
    return found;
}

/// Empty while an earlier search waits for its disk.
std::vector<InstalledApplication> LinuxInstalledApplications::all() {
    found_ = {};
    if (search_.isPending())
        return {};
    search_ = BackgroundTask::start(loop_, [this, environment = environment_]() -> BackgroundTask::Action {
        return [this, found = find(environment)] { found_ = found; };
    });
    search_.await(timeout);
    if (!search_.isPending())
        setUpIconSearch(environment_);
    return found_.applications;
}

QImage LinuxInstalledApplications::imageIn(const QString &path, int side) {
    if (reading_.isPending())
        return {}; // the disk of an earlier one does not answer
    const auto read = std::make_shared<QImage>();
    reading_ = BackgroundTask::start(loop_, [read, path, side]() -> BackgroundTask::Action {
        constexpr qint64 largest = 1 << 24; // bytes
        const auto file = readForeignFile(path, largest);
        return [read, icon = file ? decoded(*file, side) : QImage()] { *read = icon; };
    });
    reading_.await(timeout);
    return *read;
}

QImage LinuxInstalledApplications::icon(const QString &bundleIdentifier, int side) {
    const QString icon = found_.icons.value(bundleIdentifier);
    if (icon.isEmpty() || side <= 0)
        return {};
    if (QFileInfo(icon).isAbsolute())
        return imageIn(icon, side);
    const QString name = themeName(icon);
    return name.contains(u'/') ? QImage() : QIcon::fromTheme(name).pixmap(QSize(side, side), 1.0).toImage();
}

} // namespace pavonel
