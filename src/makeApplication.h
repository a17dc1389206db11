#pragma once

#include <QApplication>

#include <optional>

namespace pavonel {

/// Makes the application object. Where Qt finds no window system that it can use, tells why in one line and
/// ends the process.
void makeApplication(std::optional<QApplication> &application, int &argc, char **argv);

} // namespace pavonel
