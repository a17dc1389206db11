#pragma once

#include <QColor>
#include <QRect>
#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

struct xcb_connection_t;

namespace pavonel::test {

/// A visible window as anybody on the X server sees it.
struct SeenWindow {
    std::uint32_t id = 0;
    QString title;
    QRect frame; ///< Without what a window manager draws around it; on the whole desktop.
};

/// Looks at an X server from outside, without a window manager's help.
class WindowTree {
public:
    explicit WindowTree(const QByteArray &display);
    ~WindowTree();

    /// All windows that are mapped, with all their ancestors, and have a title; the lowest first.
    std::vector<SeenWindow> visible();

    /// From 0 to 1, as it asks compositors for; 1 when it asks for nothing.
    double opacity(const SeenWindow &window);

    /// Opens a window that asks the window manager for fullscreen, filled with `colour`. It goes with this
    /// object.
    std::uint32_t openFullscreen(const QString &title, const QRect &frame, const QColor &colour);

private:
    void collect(std::uint32_t window, std::vector<SeenWindow> &seen);
    std::uint32_t atom(const char *name);
    QString title(std::uint32_t window);

    struct Disconnect {
        void operator()(xcb_connection_t *connection) const;
    };
    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    std::uint32_t root_ = 0;
};

} // namespace pavonel::test
