#pragma once

#include "Platform/ProcessLauncher.h"

#include <QByteArrayList>

namespace pavonel {

/// The environment of a program that we start, as NAME=VALUE: ours, without what the desktop meant for our
/// own start alone, and with `toolsFolder` in front on the search path or not on it at all.
QByteArrayList launchEnvironment(const QByteArray &toolsFolder, ProcessLauncher::SearchPath searchPath);

} // namespace pavonel
