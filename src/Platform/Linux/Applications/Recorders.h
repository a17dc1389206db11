#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

namespace pavonel {

/// Programs of this system that record or share the screen, under the identifiers by which Pavonel knows
/// them.
namespace recorders {

/// For a program by its base name and its command line; empty for any other program.
QString identifierOf(const QByteArray &program, const QByteArrayList &arguments);

/// The base names of all programs that can be one, but for interpreters.
QByteArrayList programs();

/// Whether a program could turn out to be one: known by its base name, with the command line unread.
bool isSuspect(const QByteArray &program);

/// Whether `identifierOf` gives this identifier to some program.
bool isOne(const QString &identifier);

/// The identifier of a program that shows the screen to a viewer elsewhere.
QString screenSharing();

/// The identifier of a program that records the screen.
QString screenRecording();

} // namespace recorders

} // namespace pavonel
