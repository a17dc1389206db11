#pragma once

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>

#include <vector>

namespace pavonel::test {

/// Our own visible windows of this title, one that only fades out not among them.
inline std::vector<QWidget *> shownWindows(const char *title) {
    std::vector<QWidget *> found;
    const auto windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (window->isVisible() && window->isEnabled() && window->windowTitle() == QString::fromUtf8(title))
            found.push_back(window);
    }
    return found;
}

/// The same with those that fade out.
inline std::vector<QWidget *> visibleWindows(const char *title) {
    std::vector<QWidget *> found;
    const auto windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (window->isVisible() && window->windowTitle() == QString::fromUtf8(title))
            found.push_back(window);
    }
    return found;
}

/// The only shown window of this title; null when there is none or more than one.
inline QWidget *shownWindow(const char *title) {
    const auto found = shownWindows(title);
    return found.size() == 1 ? found.front() : nullptr;
}

/// The children of this class, which may lack the Q_OBJECT that findChildren() asks for.
template <class Child> std::vector<Child *> childrenOf(const QWidget *parent) {
    std::vector<Child *> found;
    const auto children = parent->findChildren<QWidget *>();
    for (QWidget *child : children) {
        if (auto *one = dynamic_cast<Child *>(child))
            found.push_back(one);
    }
    return found;
}

/// Where the contents of a window are on the desktop, without the room around them for its shadow.
inline QRect slabOf(const QWidget *panel) {
    return panel->contentsRect().translated(panel->pos());
}

/// As when a screen comes, goes or changes; which ones there are is for the fake to say.
inline void tellThatScreensChanged() {
    Q_EMIT qGuiApp->screenRemoved(QGuiApplication::primaryScreen());
}

inline void sendMouse(QWidget &target, QEvent::Type type) {
    const QPointF middle = QRectF(target.rect()).center();
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, middle, target.mapToGlobal(middle), Qt::LeftButton, held, Qt::NoModifier);
    QApplication::sendEvent(&target, &event);
}

inline void click(QWidget &target) {
    sendMouse(target, QEvent::MouseButtonPress);
    sendMouse(target, QEvent::MouseButtonRelease);
}

} // namespace pavonel::test
