#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace pavonel {

/// What the update feed says of the latest release.
struct Release {
    QString version;
    QString url;    ///< Of the disk image.
    QString sha256; ///< Of the disk image, as hexadecimal digits.
    QString notes;
    std::optional<QString> minimumSystemVersion; ///< Kept, but nothing depends on it.
    std::optional<QString> signature = {};       ///< Of the disk image and the version, by the team.

    bool operator==(const Release &) const = default;
};

/// Reads one JSON object. Absent when a text is missing or something else than a text.
std::optional<Release> decodeRelease(const QByteArray &json);

/// Whether version `a` is newer than `b`: compared number by number, missing ones being 0. What stands
/// between two dots and is no whole number counts as 0.
bool isNewerVersion(const QString &a, const QString &b);

} // namespace pavonel
