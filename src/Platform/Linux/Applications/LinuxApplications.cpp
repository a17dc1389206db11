#include "Platform/Linux/Applications/LinuxApplications.h"

#include "Platform/Linux/Applications/ApplicationIdentity.h"
#include "Platform/Linux/Applications/Recorders.h"

#include <algorithm>
#include <utility>

#include <unistd.h>

namespace pavonel {

namespace {

/// What one question may take: nobody notices a stall that short.
constexpr std::chrono::milliseconds timeBudget{8};

} // namespace

LinuxApplications::LinuxApplications(std::unique_ptr<FrontWindowSource> front,
                                     std::unique_ptr<ScreenCasts> casts, const Folders &folders,
                                     MainLoop &loop)
    : front_(std::move(front)), casts_(std::move(casts)), catalogue_(folders.desktopFiles, loop),
      processes_(
          folders.processes,
          [this](const ProcessFolder &process) { return identify(process, catalogue_.index()); },
          [](const QByteArray &executable) {
              return recorders::isSuspect(executable.mid(executable.lastIndexOf('/') + 1));
          }),
      recorderStarts_(recorders::programs(), folders.programs) {}

QString LinuxApplications::limitation() const {
    return front_ ? front_->limitation()
                  : QStringLiteral("This desktop does not tell which program is in front.");
}

void LinuxApplications::refreshIndex() {
    if (!catalogue_.read(timeBudget))
        return;
    processes_.reconsider();
    knownWindow_ = {};
}

/// A file is opened some moments before its process shows it, so two looks follow.
void LinuxApplications::refreshProcesses() {
    processes_.refresh(timeBudget);
    if (recorderStarts_.anyNew())
        searches_ = 2;
    if (searches_ == 0)
        return;
    --searches_;
    processes_.searchUrgent();
}

std::vector<Application> LinuxApplications::running() {
    refreshIndex();
    refreshProcesses();
    auto applications = processes_.applications();
    const auto isServer = [](const Application &application) {
        return application.bundleIdentifier == recorders::screenSharing();
    };
    isServed_ = std::any_of(applications.begin(), applications.end(), isServer);
    if (isServed_ && !isSharing())
        std::erase_if(applications, isServer);
    if (casts_ && casts_->anyLive())
        applications.push_back({0, recorders::screenRecording()});
    return applications;
}

bool LinuxApplications::isSharing() {
    const auto servers = processes_.processesOf(recorders::screenSharing());
    return std::any_of(servers.begin(), servers.end(),
                       [this](ProcessId server) { return viewers_.anyAt(processes_.folder(server)); });
}

std::optional<Application> LinuxApplications::frontmost() {
    const auto window = front_ ? front_->frontWindow() : std::nullopt;
    if (!window || window->processId == ::getpid())
        return {};
    refreshIndex();
    if (*window != knownWindow_) {
        knownIdentifier_ = identifierOf(*window);
        knownWindow_ = *window;
    }
    return Application{window->processId, knownIdentifier_};
}

/// The class outranks the program, since one program can show the windows of several applications; only what
/// records stays a recorder.
QString LinuxApplications::identifierOf(const FrontWindow &window) const {
    QString ofProcess;
    if (window.processId > 0)
        ofProcess = identify(processes_.folder(window.processId), catalogue_.index());
    if (recorders::isOne(ofProcess))
        return ofProcess;
    const QString ofClass =
        catalogue_.index().forWindow(window.windowClass, window.windowInstance, ofProcess);
    return ofClass.isEmpty() ? ofProcess : ofClass;
}

} // namespace pavonel
