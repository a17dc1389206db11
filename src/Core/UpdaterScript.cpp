#include "Core/UpdaterScript.h"

#include <QStringList>

#include <algorithm>

namespace pavonel {

namespace {

QString waitingForTheEndOf(qint64 pid) {
    return QStringLiteral("while kill -0 ") + QString::number(pid) +
           QStringLiteral(" 2>/dev/null; do sleep 0.3; done");
}

} // namespace

bool canBeQuoted(const QString &path) {
    // A colon parts the folders of a search path.
    constexpr QStringView special = u"\"$`\\!:";
    return std::none_of(path.begin(), path.end(), [&](QChar character) {
        return special.contains(character) || character.category() == QChar::Other_Control ||
               character == QChar::ReplacementCharacter; // the name is not text
    });
}

bool isPlainVersion(const QString &version) {
    constexpr qsizetype longest = 64;
    constexpr QStringView signs = u".-+_";
    const auto isPlain = [&](QChar character) {
        return (character.unicode() < 128 && character.isLetterOrNumber()) || signs.contains(character);
    };
    return !version.isEmpty() && version.size() <= longest &&
           std::all_of(version.begin(), version.end(), isPlain);
}

QString replacementScript(qint64 pid, const QString &application, const QString &staged) {
    const QString app = u'"' + application + u'"';
    const QString copy = u'"' + staged + u'"';
    const QStringList lines{
        QStringLiteral("#!/bin/bash"),
        waitingForTheEndOf(pid),
        QStringLiteral("rm -rf ") + app,
        QStringLiteral("cp -R ") + copy + u' ' + app,
        QStringLiteral("xattr -dr com.apple.quarantine ") + app + QStringLiteral(" 2>/dev/null"),
        QStringLiteral("rm -rf ") + copy,
        QStringLiteral("open ") + app,
    };
    return lines.join(u'\n');
}

QString reopeningScript(qint64 pid, Opening opening) {
    const QString open = QStringLiteral("\nopen \"$0\"");
    // Of the two the later one finds the earlier, which then shows its settings.
    return waitingForTheEndOf(pid) + (opening == Opening::showingSettings ? open + open : open);
}

} // namespace pavonel
