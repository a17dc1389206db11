#pragma once

#include "Platform/ProcessLauncher.h"

#include <QByteArrayList>

namespace pavonel {

/// The environment of a program that we start, as NAME=VALUE: the one that we were given, without what the
/// desktop meant for our own start alone. With our own tools first, nothing in it leads a shell astray: the
/// search path is `toolsFolder` and the system's folders, and what it was is in PAVONEL_PATH.
QByteArrayList launchEnvironment(const QByteArray &toolsFolder, ProcessLauncher::SearchPath searchPath);

} // namespace pavonel
