#pragma once

#include <QString>

class QWidget;

namespace pavonel {

class Visuals;

/// A large number with a caption. Stands beside others of its kind, in a grid.
struct Tile {
    QString value;
    QString label;

    QWidget *make(Visuals &visuals) const;
};

} // namespace pavonel
