#include "Platform/Linux/Audio/EventSounds.h"

#include "Platform/Linux/DetachedLauncher.h"

#include <QDir>
#include <QStandardPaths>

namespace pavonel {

namespace {

/// For the names, before the settings show; disks that answer take much less.
constexpr std::chrono::milliseconds timeout{1000};

using SoundFiles = QMap<QString, QString>; // from the sound's name to its path, in the order of names

void addMissing(SoundFiles &sounds, const QString &folder) {
    const QStringList playable{QStringLiteral("*.oga"), QStringLiteral("*.ogg"), QStringLiteral("*.wav")};
    for (const QFileInfo &file : QDir(folder).entryInfoList(playable, QDir::Files)) {
        if (!sounds.contains(file.completeBaseName()))
            sounds.insert(file.completeBaseName(), file.absoluteFilePath());
    }
}

SoundFiles ownSounds(const ProgramFiles &files) {
    SoundFiles sounds;
    addMissing(sounds, files.soundsFolder());
    return sounds;
}

SoundFiles themeSounds() {
    const auto base = QStringLiteral("freedesktop"); // the theme that the others fall back to
    const QStringList roots = QStandardPaths::locateAll(
        QStandardPaths::GenericDataLocation, QStringLiteral("sounds"), QStandardPaths::LocateDirectory);
    SoundFiles sounds;
    for (const QString &root : roots) {
        QStringList themes = QDir(root).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        themes.removeAll(base);
        for (const QString &theme : themes)
            addMissing(sounds, root + u'/' + theme + QStringLiteral("/stereo"));
    }
    for (const QString &root : roots)
        addMissing(sounds, root + u'/' + base + QStringLiteral("/stereo"));
    return sounds;
}

QString player(const ProgramFiles &files) {
    return files.tool(QStringLiteral("play-sound"));
}

} // namespace

void EventSounds::play(const QString &name) {
    if (const QString own = ownSounds(files_).value(name); !own.isEmpty())
        return start(own);
    if (search_.isPending())
        return;
    search_ = BackgroundTask::start(loop_, [this, name]() -> BackgroundTask::Action {
        return [this, file = themeSounds().value(name)] { start(file); };
    });
}

/// To start a program takes its time, and a break that begins has screens to paint.
void EventSounds::start(const QString &file) {
    const QString program = player(files_);
    if (file.isEmpty() || program.isEmpty())
        return;
    start_ = BackgroundTask::start(loop_, [files = files_, program, file]() -> BackgroundTask::Action {
        DetachedLauncher(files).launch(program, {file});
        return {};
    });
}

void EventSounds::searchThemes() {
    if (search_.isPending())
        return;
    search_ = BackgroundTask::start(loop_, [this]() -> BackgroundTask::Action {
        return [this, found = themeSounds()] { themes_ = found; };
    });
    search_.await(timeout);
}

QStringList EventSounds::names() {
    const SoundFiles own = ownSounds(files_);
    searchThemes();
    QStringList names = own.keys();
    for (const QString &name : themes_.keys()) {
        if (!own.contains(name))
            names.append(name);
    }
    return names;
}

QString EventSounds::limitation() const {
    return player(files_).isEmpty() ? QStringLiteral("The program that plays sounds is missing.") : QString();
}

} // namespace pavonel
