#include "Core/ActivityMonitor.h"

#include "Core/Settings.h"
#include "Platform/Applications.h"
#include "Platform/AudioDevices.h"
#include "Platform/IdleTime.h"
#include "Platform/Screens.h"
#include "Platform/WindowList.h"

#include <QSet>

#include <algorithm>
#include <cmath>

namespace pavonel {

namespace {

/// Applications whose mere running counts as screen sharing or recording. Versioned identifiers match only
/// that version.
const QSet<QString> &recordingBundleIDs() {
    static const QSet<QString> identifiers{
        QStringLiteral("com.obsproject.obs-studio"),  QStringLiteral("com.linebreak.CleanShotX"),
        QStringLiteral("com.loom.desktop"),           QStringLiteral("com.telestream.screenflow10"),
        QStringLiteral("com.techsmith.camtasia2023"), QStringLiteral("com.apple.ScreenSharing"),
        QStringLiteral("com.apple.screencaptureui"),
    };
    return identifiers;
}

/// Only the size counts, so a window as large as any screen is fullscreen wherever it stands.
bool hasSizeOf(const QRectF &bounds, const QRectF &screen) {
    constexpr double tolerance = 2.0; // points
    return std::abs(bounds.width() - screen.width()) < tolerance &&
           std::abs(bounds.height() - screen.height()) < tolerance;
}

} // namespace

Seconds ActivityMonitor::idleSeconds() const {
    return sensors_.idleTime.idleSeconds();
}

std::optional<PauseReason> ActivityMonitor::currentPauseReason(const Settings &settings) const {
    if (settings.pauseOnMicrophone && sensors_.audioDevices.isDefaultInputRunning())
        return PauseReason::microphone;
    if (settings.pauseOnScreenSharing && isRecordingAppActive())
        return PauseReason::screenSharing;
    if (settings.pauseOnFullscreen && isFrontmostFullscreen())
        return PauseReason::fullscreen;
    if (settings.pauseOnAudio && sensors_.audioDevices.isDefaultOutputRunning())
        return PauseReason::audio;
    if (isFocusAppInFront(settings))
        return PauseReason::deepFocus;
    return {};
}

bool ActivityMonitor::mayBeHeldUntold(const Settings &settings) const {
    return settings.pauseOnScreenSharing && sensors_.applications.mayRunMore();
}

bool ActivityMonitor::isRecordingAppActive() const {
    const auto running = sensors_.applications.running();
    return std::any_of(running.begin(), running.end(), [](const Application &application) {
        return recordingBundleIDs().contains(application.bundleIdentifier);
    });
}

bool ActivityMonitor::isFrontmostFullscreen() const {
    const auto front = sensors_.applications.frontmost();
    if (!front)
        return false;
    const auto windows = sensors_.windowList.onScreenWindows();
    if (windows.empty())
        return false;
    const auto screens = sensors_.screens.all();
    return std::any_of(windows.begin(), windows.end(), [&](const OnScreenWindow &window) {
        if (window.owner != front->processId || window.layer != 0 || !window.bounds)
            return false;
        return std::any_of(screens.begin(), screens.end(),
                           [&](const Screen &screen) { return hasSizeOf(*window.bounds, screen.frame); });
    });
}

bool ActivityMonitor::isFocusAppInFront(const Settings &settings) const {
    const QStringList &focusApps = settings.deepFocusApps;
    if (focusApps.isEmpty())
        return false;
    const auto front = sensors_.applications.frontmost();
    return front && !front->bundleIdentifier.isEmpty() && focusApps.contains(front->bundleIdentifier);
}

} // namespace pavonel
