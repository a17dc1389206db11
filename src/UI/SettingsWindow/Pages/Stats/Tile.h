#pragma once

#include <QString>

class QWidget;

namespace pavonel {

class Look;

/// A large number with a caption. Stands beside others of its kind, in a grid.
struct Tile {
    QString value;
    QString label;

    QWidget *make(Look &look) const;
};

} // namespace pavonel
