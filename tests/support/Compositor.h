#pragma once

#include "support/VirtualInput.h"

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QProcessEnvironment>
#include <QSize>

namespace pavonel::test {

/// A Wayland compositor of the test's own, with outputs side by side, a pointer and a keyboard, and a private
/// home for all that runs on it. Everything it started ends with it. What cannot be had fails the test.
class Compositor {
public:
    Compositor() = default;
    Compositor(const Compositor &) = delete;
    Compositor &operator=(const Compositor &) = delete;
    virtual ~Compositor() = default;

    static constexpr QSize outputSize{1024, 768};

    /// Behind all windows; nothing of Pavonel's has this colour.
    static QColor background() { return Qt::magenta; }

    /// The environment for programs that are to run on this compositor; there is no X server in it.
    virtual QProcessEnvironment environment() const = 0;

    virtual VirtualInput &input() = 0;

    /// Moves the pointer to a point of the layout.
    virtual void pointAt(QPoint point) = 0;
    void click(QPoint point) {
        pointAt(point);
        input().click();
    }

    /// What the outputs show now, all side by side.
    virtual QImage picture() = 0;

    /// The compositor goes away from under its programs.
    virtual void end() = 0;
};

/// What a program inherits that knows of no desktop.
QProcessEnvironment withoutDesktop();

/// Qt (6.4) never frees what it bound in the compositor's registry. A file in the folder tells so the leak
/// checker of programs that run in this environment.
void overlookLeaksOfQt(QProcessEnvironment &environment, const QString &folder);

} // namespace pavonel::test
