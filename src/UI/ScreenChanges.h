#pragma once

#include <QObject>

#include <functional>

class QScreen;

namespace pavonel {

/// Tells when a screen has come, gone, or changed its size, its place, or the part that no panel takes.
class ScreenChanges final : public QObject {
public:
    explicit ScreenChanges(std::function<void()> changed);

private:
    void watch(const QScreen *screen);

    std::function<void()> changed_;
};

} // namespace pavonel
