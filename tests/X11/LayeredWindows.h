#pragma once

#include "Platform/Linux/X11/X11WindowLayers.h"
#include "Platform/Qt/QtScreens.h"
#include "X11/server.h"
#include "support/XClient.h"
#include "support/waitUntil.h"

#include <QKeyEvent>
#include <QPainter>
#include <QWidget>

#include <gtest/gtest.h>

namespace pavonel::test {

inline constexpr QColor ours(20, 40, 160);
inline constexpr QColor theirs(200, 30, 30);

/// A window made as the contract of WindowLayers says.
class Layered final : public QWidget {
public:
    Layered(WindowLayers &layers, WindowLayer layer, const Screen &screen, const QRect &at,
            const QColor &colour = ours)
        : colour_(colour) {
        setWindowFlags(layers.windowFlags(layer));
        setGeometry(at);
        winId();
        layers.show(*windowHandle(), layer, screen);
    }

    int keyPresses = 0;
    int paints = 0;
    int clicks = 0;
    xcb_window_t id() const { return static_cast<xcb_window_t>(winId()); }

private:
    void keyPressEvent(QKeyEvent *) override { ++keyPresses; }
    void mousePressEvent(QMouseEvent *) override { ++clicks; }
    void paintEvent(QPaintEvent *) override {
        ++paints;
        QPainter(this).fillRect(rect(), colour_);
    }
    QColor colour_;
};

/// Breaks and panels on the test's server, with another program beside them.
class X11WindowLayersTest : public testing::Test {
protected:
    X11WindowLayersTest()
        : connection(X11Connection::open(server().display())), layers(connection), other(server().display()) {
    }
    ~X11WindowLayersTest() override { leaveServerAsFound(); }

    std::vector<std::unique_ptr<Layered>> showOverlays() {
        std::vector<std::unique_ptr<Layered>> overlays;
        for (const Screen &screen : QtScreens().all())
            overlays.push_back(overlay(screen));
        return overlays;
    }
    std::unique_ptr<Layered> overlay(const Screen &screen) {
        return std::make_unique<Layered>(layers, WindowLayer::overlay, screen, screen.frame.toRect());
    }
    std::unique_ptr<Layered> panel(const QRect &at) {
        return std::make_unique<Layered>(layers, WindowLayer::panel, QtScreens().all().front(), at,
                                         Qt::green);
    }

    /// Asks only where the manager does not do it by itself, so that no request is still on its way
    /// afterwards.
    void bringToFront(xcb_window_t window) {
        ASSERT_TRUE(waitUntil([&] {
            const bool inFront = other.focused() == window && other.activeWindow() == window;
            if (!inFront)
                other.activate(window);
            return inFront;
        }));
    }
    bool becomesTop(const Layered &widget) {
        return waitUntil([&] { return other.topAt(middle(widget)) == widget.id(); });
    }
    bool getsPainted(const Layered &widget) {
        return waitUntil([&] { return server().colourAt(middle(widget)) == ours; });
    }
    static QPoint middle(const Layered &widget) { return widget.geometry().center(); }

    /// Until all that the server has told so far is acted upon.
    void settle() {
        for (int round = 0; round < 3; ++round) {
            connection->number(connection->root(), "_NET_ACTIVE_WINDOW"); // a reply comes after all events
            int turns = 0;
            waitUntil([&] { return ++turns > 3; });
        }
    }

    std::shared_ptr<X11Connection> connection;
    X11WindowLayers layers;
    XClient other;
};

class UnderEveryManager : public X11WindowLayersTest, public testing::WithParamInterface<WindowManager> {
protected:
    UnderEveryManager() { server().start(GetParam()); }
};

} // namespace pavonel::test
