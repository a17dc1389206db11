#pragma once

#include <QString>

namespace pavonel {

/// The script that waits for the end of process `pid` and then puts `staged` in the place of `application`.
/// Both paths must be ones that `canBeQuoted` accepts.
QString replacementScript(qint64 pid, const QString &application, const QString &staged);

/// How a program that takes another one's place is opened: as at login, or as by a user who wants its
/// settings.
enum class Opening { silent, showingSettings };

/// The script that waits for the end of process `pid` and then opens the application that is its first
/// argument.
QString reopeningScript(qint64 pid, Opening opening);

/// Whether a path means itself between two double quotes in a shell, and on the shell's search path.
bool canBeQuoted(const QString &path);

/// Whether a version can be part of a file name and of the script.
bool isPlainVersion(const QString &version);

} // namespace pavonel
