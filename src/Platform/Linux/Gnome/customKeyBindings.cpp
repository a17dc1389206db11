#include "Platform/Linux/Gnome/customKeyBindings.h"

#include "Platform/GivenEnvironment.h"
#include "Platform/Linux/Gnome/accelerators.h"

#include <QProcess>
#include <QRegularExpression>

#include <algorithm>
#include <optional>
#include <utility>

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

const auto schema = u"org.gnome.settings-daemon.plugins.media-keys"_s;
const auto listKey = u"custom-keybindings"_s;
const auto folder = u"/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/"_s;
const auto ourFolders = folder + u"pavonel-"_s;

constexpr int longest = 2'000; // milliseconds that one question may take

/// What it wrote; absent when it failed or took too long.
std::optional<QString> gsettings(const QStringList &arguments) {
    QStringList environment;
    for (const QByteArray &variable : givenEnvironment())
        environment.append(QString::fromLocal8Bit(variable));
    QProcess process;
    process.setEnvironment(environment);
    process.setStandardErrorFile(QProcess::nullDevice());
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(u"gsettings"_s, arguments);
    if (!process.waitForFinished(longest) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        return std::nullopt;
    return QString::fromUtf8(process.readAllStandardOutput());
}

QString schemaAt(const QString &path) {
    return schema + u".custom-keybinding:"_s + path;
}

/// The strings in a value as GNOME writes it, each in its quotes.
QStringList quotedIn(const QString &value) {
    static const QRegularExpression quoted(uR"('(?:[^'\\]|\\.)*'|"(?:[^"\\]|\\.)*")"_s);
    QStringList found;
    for (auto matches = quoted.globalMatch(value); matches.hasNext();)
        found.append(matches.next().captured());
    return found;
}

QString unquoted(const QString &text) {
    return text.mid(1, text.size() - 2);
}

QString quoted(const QString &text) {
    return u'\'' + text + u'\'';
}

QString pathOf(const CustomKeyBinding &binding) {
    return ourFolders + binding.action + u'/';
}

/// All that has keys in GNOME's settings, ours left out: in one question, and one more for each custom one.
QStringList acceleratorsOfOthers(const QStringList &paths) {
    QStringList found;
    for (const QString &each : quotedIn(gsettings({u"list-recursively"_s}).value_or(QString()))) {
        if (each.startsWith(u"'<"))
            found.append(plainAccelerator(unquoted(each)));
    }
    for (const QString &path : paths) {
        if (!path.startsWith(ourFolders))
            found.append(plainAccelerator(
                unquoted(gsettings({u"get"_s, schemaAt(path), u"binding"_s}).value_or(QString()).trimmed())));
    }
    return found;
}

bool write(const CustomKeyBinding &binding) {
    const QString at = schemaAt(pathOf(binding));
    const std::pair<QString, QString> values[] = {
        {u"name"_s, u"Pavonel: "_s + binding.title},
        {u"command"_s, u"gapplication action org.pavonel.Pavonel "_s + binding.action},
        {u"binding"_s, binding.accelerator},
    };
    return std::ranges::all_of(values, [&](const auto &each) {
        return gsettings({u"set"_s, at, each.first, quoted(each.second)}).has_value();
    });
}

} // namespace

CustomKeyBindings keepCustomKeyBindings(const std::vector<CustomKeyBinding> &wanted) {
    const auto listed = gsettings({u"get"_s, schema, listKey});
    if (!listed)
        return {};
    const QStringList before = quotedIn(*listed);
    QStringList after;
    QStringList unwanted;
    for (const QString &each : before)
        (unquoted(each).startsWith(ourFolders) ? unwanted : after).append(each);
    CustomKeyBindings result{true, !unwanted.isEmpty(), {}};

    QStringList others;
    if (!wanted.empty()) {
        QStringList paths;
        std::ranges::transform(after, std::back_inserter(paths), unquoted);
        others = acceleratorsOfOthers(paths);
    }
    for (const CustomKeyBinding &each : wanted) {
        if (others.contains(plainAccelerator(each.accelerator))) {
            result.taken.append(each.accelerator);
            continue;
        }
        result.areKept = write(each) && result.areKept;
        after.append(quoted(pathOf(each)));
        unwanted.removeAll(after.last());
    }
    if (after != before)
        result.areKept =
            gsettings({u"set"_s, schema, listKey, u'[' + after.join(u", "_s) + u']'}) && result.areKept;
    for (const QString &each : unwanted)
        gsettings({u"reset-recursively"_s, schemaAt(unquoted(each))});
    return result;
}

} // namespace pavonel
