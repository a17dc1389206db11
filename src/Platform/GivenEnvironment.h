#pragma once

#include <QByteArrayList>

namespace pavonel {

/// The environment that this process was started with, as NAME=VALUE: without what it has set for itself.
QByteArrayList givenEnvironment();

/// Sets a variable for this process and its libraries alone. Every change of our own environment comes here.
void setForUsAlone(const char *name, const QByteArray &value);

} // namespace pavonel
