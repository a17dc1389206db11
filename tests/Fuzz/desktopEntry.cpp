#include "Platform/Linux/DesktopEntry.h"

#include "Fuzz/Target.h"
#include "Platform/Linux/Applications/DesktopFiles.h"

namespace pavonel::fuzz {

namespace {

/// What we write into somebody's entry is read back as it was.
void checkWriting(DesktopEntry entry, const QString &text) {
    const QStringList command{QStringLiteral("/opt/%1 \"$`\\").arg(text), text};
    entry.setText("Name", text);
    entry.setCommand(command);
    const auto again = DesktopEntry::parse(entry.content());
    require(again && again->text("Name") == text && again->command() == command);
}

} // namespace

void desktopEntry(const QByteArray &input) {
    const auto entry = DesktopEntry::parse(input);
    DesktopFileIndex index;
    index.add(QStringLiteral("org.example.Any"), parseDesktopFile(input));
    if (!entry)
        return;
    static_cast<void>(index.forWindow(entry->text("StartupWMClass"), entry->text("Name"), {}));
    static_cast<void>(entry->list("OnlyShowIn"));
    static_cast<void>(entry->command());
    require(DesktopEntry::parse(entry->content()).has_value());
    checkWriting(*entry, QStringLiteral("Pavonel"));
}

} // namespace pavonel::fuzz
