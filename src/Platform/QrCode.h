#pragma once

#include <QByteArray>

namespace pavonel {

/// A square of dark and light modules for a camera to read, without the light margin that it needs all
/// around.
struct QrCode {
    int side = 0;    ///< In modules; 0 for a text that is too long.
    QByteArray dark; ///< Row by row, 1 for a dark module and 0 for a light one.

    bool isDark(int x, int y) const { return dark[y * side + x] != 0; }

    /// The smallest that holds the text and can be read when a seventh of it cannot be seen.
    static QrCode of(const QByteArray &text);
};

} // namespace pavonel
