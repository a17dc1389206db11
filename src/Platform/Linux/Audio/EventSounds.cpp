#include "Platform/Linux/Audio/EventSounds.h"

#include <QDir>
#include <QMap>
#include <QStandardPaths>

namespace pavonel {

namespace {

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
    QString file = ownSounds(files_).value(name);
    if (file.isEmpty())
        file = themeSounds().value(name);
    const QString program = player(files_);
    if (file.isEmpty() || program.isEmpty())
        return;
    // To start a program takes its time, and a break that begins has screens to paint.
    playing_ = std::async([this, program, file] { launcher_.launch(program, {file}); });
    if (playing_.wait_for(std::chrono::seconds(0)) == std::future_status::deferred)
        playing_.get();
}

QStringList EventSounds::names() {
    const SoundFiles own = ownSounds(files_);
    QStringList names = own.keys();
    for (const QString &name : themeSounds().keys()) {
        if (!own.contains(name))
            names.append(name);
    }
    return names;
}

QString EventSounds::limitation() const {
    return player(files_).isEmpty() ? QStringLiteral("The program that plays sounds is missing.") : QString();
}

} // namespace pavonel
