#pragma once

#include <QByteArray>
#include <QByteArrayList>

namespace pavonel {

/// The base name of the program that a command line stands for: that of the script where an interpreter runs
/// one, that of the command behind `env`. Empty when there is none.
QByteArray programName(const QByteArrayList &arguments);

} // namespace pavonel
