#include "Platform/Linux/Applications/LinuxApplications.h"
#include "Platform/Linux/Applications/LinuxInstalledApplications.h"
#include "Platform/Linux/Audio/EventSounds.h"
#include "Platform/Linux/Audio/PulseAudioDevices.h"
#include "Platform/Linux/AutostartLoginItem.h"
#include "Platform/Linux/Bus/BusNotifications.h"
#include "Platform/Linux/Bus/BusRunningPavonel.h"
#include "Platform/Linux/Bus/BusSingleInstance.h"
#include "Platform/Linux/Bus/KGlobalAccelHotKeys.h"
#include "Platform/Linux/Bus/LockAwareIdleTime.h"
#include "Platform/Linux/Bus/LogindPowerEvents.h"
#include "Platform/Linux/Bus/MutterIdleTime.h"
#include "Platform/Linux/Bus/PortalAppearance.h"
#include "Platform/Linux/Bus/PortalHotKeys.h"
#include "Platform/Linux/DetachedLauncher.h"
#include "Platform/Linux/Fetch/FetchClient.h"
#include "Platform/Linux/FirstIdleTime.h"
#include "Platform/Linux/Gnome/GnomeExtension.h"
#include "Platform/Linux/Gnome/GnomeExtensionSwitch.h"
#include "Platform/Linux/Gnome/GnomeHotKeys.h"
#include "Platform/Linux/Gnome/GnomePointer.h"
#include "Platform/Linux/Gnome/GnomeWindows.h"
#include "Platform/Linux/KWin/KWinWindows.h"
#include "Platform/Linux/LinuxInstallation.h"
#include "Platform/Linux/PipeWire/PipeWireScreenCasts.h"
#include "Platform/Linux/Sway/SwayHotKeys.h"
#include "Platform/Linux/Sway/SwayWindows.h"
#include "Platform/Linux/Tray/TrayStatusItem.h"
#include "Platform/Linux/Wayland/ForeignToplevels.h"
#include "Platform/Linux/Wayland/LayerShellOffer.h"
#include "Platform/Linux/Wayland/LossOfCompositor.h"
#include "Platform/Linux/Wayland/WaylandConnection.h"
#include "Platform/Linux/Wayland/WaylandIdleTime.h"
#include "Platform/Linux/Wayland/WaylandInsets.h"
#include "Platform/Linux/Wayland/WaylandWindowLayers.h"
#include "Platform/Linux/X11/X11Connection.h"
#include "Platform/Linux/X11/X11HotKeys.h"
#include "Platform/Linux/X11/X11IdleTime.h"
#include "Platform/Linux/X11/X11Screens.h"
#include "Platform/Linux/X11/X11WindowLayers.h"
#include "Platform/Linux/X11/X11Windows.h"
#include "Platform/Platform.h"
#include "Platform/Posix/BorrowedDefaults.h"
#include "Platform/Posix/FileDefaults.h"
#include "Platform/Posix/SignalTermination.h"
#include "Platform/Posix/ToolProcesses.h"
#include "Platform/Qt/QtMainLoop.h"
#include "Platform/Qt/QtPointer.h"
#include "Platform/Qt/QtScreens.h"
#include "Platform/Qt/QtWindowLayers.h"
#include "Platform/Qt/StoreFile.h"

#include <QDBusConnection>
#include <QDir>
#include <QGuiApplication>
#include <QStandardPaths>

namespace pavonel {

namespace {

/// A relative `XDG_CONFIG_HOME` counts as none, as its standard demands.
QString configFolder() {
    QString folder = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (!QDir::isAbsolutePath(folder))
        folder = QDir::homePath() + QStringLiteral("/.config");
    return folder;
}

QString storePath() {
    return configFolder() + QStringLiteral("/pavonel/defaults.json");
}

/// Held by the process to which the store belongs.
QString lockPath() {
    return configFolder() + QStringLiteral("/pavonel/lock");
}

QString cacheFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
           QStringLiteral("/pavonel");
}

/// In a Wayland session the X server that is there only stands in for one.
std::shared_ptr<X11Connection> x11Connection() {
    return QGuiApplication::platformName() == u"xcb" ? X11Connection::open() : nullptr;
}

/// An X server inside a Wayland session knows only of the input that X windows get.
bool seesAllInput(const std::shared_ptr<X11Connection> &x) {
    return x && !x->isInsideWayland();
}

/// Whatever Qt's windows are on.
std::shared_ptr<WaylandConnection> waylandConnection(const std::shared_ptr<X11Connection> &x) {
    return wayland::isOffered() && !seesAllInput(x) ? WaylandConnection::open() : nullptr;
}

std::unique_ptr<Screens> screens(const std::shared_ptr<X11Connection> &x,
                                 const std::shared_ptr<WorkedOn> &workedOn) {
    if (x)
        return std::make_unique<X11Screens>(x);
    return std::make_unique<QtScreens>(workedOn);
}

std::unique_ptr<Pointer> pointer(const std::shared_ptr<X11Connection> &x,
                                 const std::shared_ptr<GnomeExtension> &gnome) {
    if (seesAllInput(x))
        return std::make_unique<QtPointer>();
    return std::make_unique<GnomePointer>(gnome);
}

/// In the order in which they are preferred.
std::unique_ptr<IdleTime> idleTime(const std::shared_ptr<X11Connection> &x,
                                   const std::shared_ptr<WaylandConnection> &wayland) {
    if (seesAllInput(x)) {
        if (auto service = x11::makeIdleTime(x))
            return service;
    }
    std::vector<std::unique_ptr<IdleTime>> sources;
    if (wayland)
        sources.push_back(std::make_unique<WaylandIdleTime>(wayland));
    sources.push_back(std::make_unique<MutterIdleTime>(QDBusConnection::sessionBus()));
    return std::make_unique<FirstIdleTime>(std::move(sources));
}

/// In the order in which they are preferred.
std::shared_ptr<WindowSources> windowSources(const std::shared_ptr<WaylandConnection> &wayland,
                                             const std::shared_ptr<GnomeExtension> &gnome) {
    std::vector<std::unique_ptr<WindowSource>> sources;
    if (auto sway = SwayWindows::make())
        sources.push_back(std::move(sway));
    sources.push_back(std::make_unique<KWinWindows>(QDBusConnection::sessionBus()));
    sources.push_back(std::make_unique<GnomeWindows>(gnome));
    if (wayland)
        sources.push_back(std::make_unique<ForeignToplevels>(wayland));
    return std::make_shared<WindowSources>(std::move(sources));
}

/// Both ask about the same windows.
void installWindowSensors(Platform &platform, const std::shared_ptr<X11Connection> &x,
                          const std::shared_ptr<WaylandConnection> &wayland,
                          const std::shared_ptr<GnomeExtension> &gnome) {
    std::unique_ptr<FrontWindowSource> front;
    if (seesAllInput(x)) {
        const auto windows = std::make_shared<X11Windows>(x);
        front = std::make_unique<X11FrontWindow>(windows);
        platform.windowList = std::make_unique<X11WindowList>(windows);
    } else {
        const auto sources = windowSources(wayland, gnome);
        front = std::make_unique<ReportedFrontWindow>(sources);
        platform.windowList = std::make_unique<ReportedWindowList>(sources);
    }
    platform.applications =
        std::make_unique<LinuxApplications>(std::move(front), std::make_unique<PipeWireScreenCasts>(),
                                            LinuxApplications::Folders(), *platform.mainLoop);
}

std::unique_ptr<WindowLayers> windowLayers(const std::shared_ptr<X11Connection> &x,
                                           const std::shared_ptr<WorkedOn> &workedOn) {
    if (x)
        return std::make_unique<X11WindowLayers>(x);
    if (auto layers = WaylandWindowLayers::make(workedOn))
        return layers;
    if (!QGuiApplication::platformName().startsWith(u"wayland"))
        return std::make_unique<QtWindowLayers>();
    return std::make_unique<QtWindowLayers>(
        [insets = std::make_shared<WaylandInsets>()](QWindow &window, const QRect &points) {
            return insets->make(window, points);
        });
}

/// In the order in which they are preferred.
std::unique_ptr<HotKeyService> hotKeys(const std::shared_ptr<X11Connection> &x,
                                       const std::shared_ptr<GnomeExtension> &gnome, MainLoop &loop) {
    if (seesAllInput(x)) {
        if (auto service = X11HotKeys::make(x))
            return service;
    }
    if (auto plasma = KGlobalAccelHotKeys::make(QDBusConnection::sessionBus()))
        return makeHotKeyService(std::move(plasma));
    if (auto sway = SwayHotKeys::make())
        return makeHotKeyService(std::move(sway));
    if (gnome->isShellThere())
        return std::make_unique<GnomeHotKeys>(QDBusConnection::sessionBus(), gnome, loop);
    return makeHotKeyService(std::make_shared<PortalHotKeys>(QDBusConnection::sessionBus()));
}

std::unique_ptr<StatusItem> statusItem(MainLoop &loop, Appearance &appearance,
                                       const std::shared_ptr<X11Connection> &x) {
    return std::make_unique<TrayStatusItem>(QDBusConnection::sessionBus(),
                                            cacheFolder() + QStringLiteral("/menubar"), loop, appearance, x);
}

HeadlessPlatform allButTheStore() {
    const ProgramFiles files = ProgramFiles::ofThisProgram();
    HeadlessPlatform platform;
    platform.mainLoop = std::make_unique<QtMainLoop>();
    platform.processes = std::make_unique<DetachedLauncher>(files);
    platform.tools = std::make_unique<ToolProcesses>(files);
    platform.installation = makeInstallation();
    platform.http = std::make_unique<FetchClient>(files);
    return platform;
}

} // namespace

std::unique_ptr<SingleInstance> makeSingleInstance() {
    return std::make_unique<BusSingleInstance>(QDBusConnection::sessionBus(), lockPath());
}

std::unique_ptr<RunningPavonel> findRunningPavonel() {
    return std::make_unique<BusRunningPavonel>(QDBusConnection::sessionBus());
}

std::unique_ptr<LoginItem> makeLoginItem() {
    auto item = std::make_unique<AutostartLoginItem>(ProgramFiles::ofThisProgram().program(), configFolder());
    item->takeOverEarlierEntry();
    return item;
}

std::unique_ptr<Installation> makeInstallation() {
    return std::make_unique<LinuxInstallation>(
        ProgramFiles::ofThisProgram(), cacheFolder() + QStringLiteral("/tmp"),
        configFolder() + QStringLiteral("/pavonel/updates-are-signed"));
}

StoredEntry readStoredEntry(const QString &key) {
    return readStoredEntryFrom(storePath(), key);
}

HeadlessPlatform makeHeadlessPlatform() {
    HeadlessPlatform platform = allButTheStore();
    platform.defaults = std::make_unique<BorrowedDefaults>(storePath(), lockPath(), *platform.mainLoop);
    return platform;
}

std::unique_ptr<Platform> makePlatform() {
    const auto x11 = x11Connection();
    const auto wayland = waylandConnection(x11);
    auto platform = std::make_unique<Platform>();
    static_cast<HeadlessPlatform &>(*platform) = allButTheStore();
    platform->defaults = std::make_unique<FileDefaults>(storePath(), *platform->mainLoop);
    platform->termination = LossOfCompositor::watch(std::make_unique<SignalTermination>());
    platform->power = std::make_unique<LogindPowerEvents>(QDBusConnection::systemBus());
    const auto workedOn = std::make_shared<WorkedOn>();
    platform->screens = screens(x11, workedOn);
    const auto gnome = std::make_shared<GnomeExtension>(QDBusConnection::sessionBus());
    platform->pointer = pointer(x11, gnome);
    platform->idleTime = std::make_unique<LockAwareIdleTime>(
        idleTime(x11, wayland), QDBusConnection::systemBus(), QDBusConnection::sessionBus());
    platform->audioDevices = std::make_unique<PulseAudioDevices>();
    installWindowSensors(*platform, x11, wayland, gnome);
    platform->installedApplications = std::make_unique<LinuxInstalledApplications>(
        LinuxInstalledApplications::Environment::ofThisDesktop(), *platform->mainLoop);
    platform->windowLayers = windowLayers(x11, workedOn);
    platform->notifications = std::make_unique<BusNotifications>(QDBusConnection::sessionBus());
    platform->hotKeys = hotKeys(x11, gnome, *platform->mainLoop);
    platform->sounds = std::make_unique<EventSounds>(ProgramFiles::ofThisProgram(), *platform->mainLoop);
    platform->loginItem = makeLoginItem();
    platform->desktopExtension = std::make_unique<GnomeExtensionSwitch>(QDBusConnection::sessionBus(), gnome);
    platform->appearance = std::make_unique<PortalAppearance>(QDBusConnection::sessionBus());
    platform->statusItem = statusItem(*platform->mainLoop, *platform->appearance, x11);
    return platform;
}

} // namespace pavonel
