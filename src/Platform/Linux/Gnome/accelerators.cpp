#include "Platform/Linux/Gnome/accelerators.h"

#include "Platform/Linux/X11/macKeyPositions.h"

#include <QHash>
#include <QStringList>

#include <string_view>
#include <utility>

namespace pavonel {

namespace {

constexpr std::pair<std::uint32_t, const char *> modifierNames[] = {
    {0x1000, "<Control>"},
    {0x0800, "<Alt>"},
    {0x0200, "<Shift>"},
    {0x0100, "<Super>"},
};

constexpr std::pair<std::string_view, std::string_view> rows[] = {
    {"AD", "qwertyuiop"},
    {"AC", "asdfghjkl"},
    {"AB", "zxcvbnm"},
};

QString keyName(std::uint32_t macKeyCode) {
    const char *position = xkbNameOfMacKey(macKeyCode);
    if (!position)
        return {};
    const std::string_view name(position);
    if (name == "ESC")
        return QStringLiteral("Escape");
    for (const auto &[row, letters] : rows) {
        const bool isInRow = name.size() == row.size() + 2 && name.substr(0, row.size()) == row;
        const auto place =
            isInRow ? static_cast<std::size_t>((name[2] - '0') * 10 + (name[3] - '0')) : std::size_t{0};
        if (place >= 1 && place <= letters.size())
            return QString(QLatin1Char(letters[place - 1]));
    }
    return {};
}

} // namespace

QString gnomeAccelerator(std::uint32_t macKeyCode, std::uint32_t macModifiers) {
    const QString key = keyName(macKeyCode);
    if (key.isEmpty())
        return {};
    QString accelerator;
    for (const auto &[bit, name] : modifierNames) {
        if ((macModifiers & bit) != 0)
            accelerator += QLatin1String(name);
    }
    return accelerator + key;
}

QString plainAccelerator(const QString &accelerator) {
    static const QHash<QString, QString> usualNames{{QStringLiteral("primary"), QStringLiteral("control")},
                                                    {QStringLiteral("ctrl"), QStringLiteral("control")},
                                                    {QStringLiteral("ctl"), QStringLiteral("control")},
                                                    {QStringLiteral("shft"), QStringLiteral("shift")},
                                                    {QStringLiteral("mod1"), QStringLiteral("alt")},
                                                    {QStringLiteral("mod4"), QStringLiteral("super")}};
    QStringList modifiers = accelerator.toLower().split(u'>');
    const QString key = modifiers.takeLast();
    for (QString &each : modifiers) {
        each.remove(u'<');
        each = usualNames.value(each, each);
    }
    modifiers.sort();
    modifiers.removeDuplicates();
    return (modifiers << key).join(u'+');
}

QString spokenAccelerator(const QString &accelerator) {
    QString spoken = accelerator;
    spoken.replace(QStringLiteral("<Control>"), QStringLiteral("Ctrl+"));
    spoken.remove(u'<').replace(u'>', u'+');
    return spoken.section(u'+', 0, -2) + u'+' + spoken.section(u'+', -1).toUpper();
}

} // namespace pavonel
