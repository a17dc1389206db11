#pragma once

#include "Platform/Linux/Applications/FrontWindow.h"
#include "Platform/WindowList.h"

#include <QPointF>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace pavonel {

struct FullscreenWindow {
    ProcessId owner = 0; ///< 0 where it is not told, as of the window in front.
    std::optional<QPointF> middle;
};

/// Something that tells of the windows on a desktop on which windows are not for everybody to see.
class WindowSource {
public:
    WindowSource() = default;
    WindowSource(const WindowSource &) = delete;
    WindowSource &operator=(const WindowSource &) = delete;
    virtual ~WindowSource() = default;

    /// False while it cannot; then the rest is empty.
    virtual bool isTelling() = 0;

    /// Absent when no window is in front, or one of our own.
    virtual std::optional<FrontWindow> front() = 0;

    /// Those that can be seen.
    virtual std::vector<FullscreenWindow> fullscreen() = 0;
};

/// Several of these in order of preference. What a desktop offers comes and goes, so each question goes to
/// the first that tells now.
class WindowSources {
public:
    explicit WindowSources(std::vector<std::unique_ptr<WindowSource>> sources)
        : sources_(std::move(sources)) {}

    /// Null where none does.
    WindowSource *telling() const;

private:
    std::vector<std::unique_ptr<WindowSource>> sources_;
};

/// Windows that are fullscreen, each as large as its screen, whatever the desktop's own points are.
class ReportedWindowList final : public WindowList {
public:
    explicit ReportedWindowList(std::shared_ptr<WindowSources> sources) : sources_(std::move(sources)) {}
    std::vector<OnScreenWindow> onScreenWindows() override;
    QString limitation() const override;

private:
    std::shared_ptr<WindowSources> sources_;
};

class ReportedFrontWindow final : public FrontWindowSource {
public:
    explicit ReportedFrontWindow(std::shared_ptr<WindowSources> sources) : sources_(std::move(sources)) {}
    std::optional<FrontWindow> frontWindow() override;
    QString limitation() const override;

private:
    std::shared_ptr<WindowSources> sources_;
};

} // namespace pavonel
