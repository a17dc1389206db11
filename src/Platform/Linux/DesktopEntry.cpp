#include "Platform/Linux/DesktopEntry.h"

#include <QFile>

#include <algorithm>
#include <utility>

namespace pavonel {

namespace {

const QByteArray groupHeader = "[Desktop Entry]";

struct Escape {
    char16_t letter;
    char16_t meaning;
};
constexpr Escape escapes[] = {{u's', u' '}, {u'n', u'\n'}, {u't', u'\t'}, {u'r', u'\r'}, {u'\\', u'\\'}};

QString unescaped(const QString &value) {
    QString text;
    for (qsizetype n = 0; n < value.size(); ++n) {
        const QChar next = n + 1 < value.size() ? value[n + 1] : QChar();
        const auto *escape = std::find_if(std::begin(escapes), std::end(escapes),
                                          [next](const Escape &one) { return next == one.letter; });
        if (value[n] == u'\\' && escape != std::end(escapes)) {
            text += escape->meaning;
            ++n;
        } else {
            text += value[n];
        }
    }
    return text;
}

QString escaped(const QString &text) {
    QString value;
    for (const QChar letter : text) {
        const auto *escape = std::find_if(std::begin(escapes), std::end(escapes),
                                          [letter](const Escape &one) { return letter == one.meaning; });
        if (escape == std::end(escapes) || (letter == u' ' && !value.isEmpty()))
            value += letter;
        else
            value.append(u'\\').append(escape->letter); // a blank only where it would be lost
    }
    return value;
}

/// Takes the next argument off a command line. False when a quote has no end.
bool takeArgument(QStringView &line, QString &argument) {
    bool quoted = false;
    argument.clear();
    while (!line.isEmpty() && (quoted || line.front() != u' ')) {
        const QChar letter = line.front();
        line = line.sliced(1);
        if (letter == u'"') {
            quoted = !quoted;
        } else if (quoted && letter == u'\\' && !line.isEmpty()) {
            argument += line.front();
            line = line.sliced(1);
        } else {
            argument += letter;
        }
    }
    return !quoted;
}

/// "%%" is a percent sign, every other code stands for something that is not given here.
QString withoutFieldCodes(const QString &argument) {
    QString text;
    for (qsizetype n = 0; n < argument.size(); ++n) {
        if (argument[n] != u'%')
            text += argument[n];
        else if (++n < argument.size() && argument[n] == u'%')
            text += u'%';
    }
    return text;
}

QString quoted(const QString &argument) {
    QString text;
    for (const QChar letter : argument) {
        if (letter == u'%')
            text += u'%';
        else if (letter == u'"' || letter == u'`' || letter == u'$' || letter == u'\\')
            text += u'\\';
        text += letter;
    }
    const QStringView reserved = u" \t\n\"'\\><~|&;$*?#()`";
    const bool needsQuotes = std::any_of(argument.begin(), argument.end(),
                                         [reserved](QChar letter) { return reserved.contains(letter); });
    return needsQuotes ? u'"' + text + u'"' : text;
}

} // namespace

DesktopEntry::DesktopEntry(QByteArrayList lines, qsizetype groupBegin)
    : lines_(std::move(lines)), groupBegin_(groupBegin) {
    const auto next = std::find_if(lines_.cbegin() + groupBegin_, lines_.cend(),
                                   [](const QByteArray &line) { return line.startsWith('['); });
    groupEnd_ = next - lines_.cbegin();
}

DesktopEntry::DesktopEntry() : DesktopEntry({groupHeader}, 1) {}

std::optional<DesktopEntry> DesktopEntry::parse(const QByteArray &content) {
    QByteArrayList lines = content.split('\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    for (qsizetype n = 0; n < lines.size(); ++n) {
        if (lines[n].trimmed() == groupHeader)
            return DesktopEntry(std::move(lines), n + 1);
    }
    return {};
}

std::optional<DesktopEntry> DesktopEntry::read(const QString &path) {
    QFile file(path);
    if (!file.open(QFile::ReadOnly))
        return {};
    return parse(file.readAll());
}

QByteArray DesktopEntry::content() const {
    return lines_.join('\n') + '\n';
}

qsizetype DesktopEntry::find(const QByteArray &key) const {
    for (qsizetype n = groupBegin_; n < groupEnd_; ++n) {
        const qsizetype sign = lines_[n].indexOf('=');
        if (sign > 0 && lines_[n].left(sign).trimmed() == key)
            return n;
    }
    return -1;
}

QString DesktopEntry::text(const QByteArray &key) const {
    const qsizetype at = find(key);
    if (at < 0)
        return {};
    const QByteArray &line = lines_[at];
    return unescaped(QString::fromUtf8(line.sliced(line.indexOf('=') + 1).trimmed()));
}

QStringList DesktopEntry::list(const QByteArray &key) const {
    return text(key).split(u';', Qt::SkipEmptyParts);
}

QStringList DesktopEntry::command() const {
    const QString exec = text("Exec");
    QStringView line(exec);
    QStringList arguments;
    while (!(line = line.trimmed()).isEmpty()) {
        QString argument;
        if (!takeArgument(line, argument))
            return {};
        const QString given = withoutFieldCodes(argument);
        if (!given.isEmpty() || argument.isEmpty())
            arguments.append(given);
    }
    return arguments;
}

void DesktopEntry::setText(const QByteArray &key, const QString &value) {
    const QByteArray line = key + '=' + escaped(value).toUtf8();
    const qsizetype at = find(key);
    if (at >= 0) {
        lines_[at] = line;
        return;
    }
    qsizetype end = groupEnd_;
    while (end > groupBegin_ && lines_[end - 1].trimmed().isEmpty())
        --end; // blank lines part this group from the next
    lines_.insert(end, line);
    ++groupEnd_;
}

void DesktopEntry::setCommand(const QStringList &command) {
    QStringList arguments;
    for (const QString &argument : command)
        arguments.append(quoted(argument));
    setText("Exec", arguments.join(u' '));
}

void DesktopEntry::remove(const QByteArray &key) {
    for (qsizetype at = find(key); at >= 0; at = find(key)) {
        lines_.removeAt(at);
        --groupEnd_;
    }
}

} // namespace pavonel
