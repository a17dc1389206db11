#include "Core/Updater.h"

#include <QCoreApplication>
#include <QFile>

#include <utility>

namespace pavonel {

namespace {

constexpr Seconds requestTimeout = 60;
constexpr Seconds timeToQuit = 0.4;

} // namespace

const QString Updater::automaticKey = QStringLiteral("autoUpdate");
const QString Updater::lastCheckKey = QStringLiteral("lastUpdateCheck");
const QString Updater::teamID = QStringLiteral("PAVONELORG");

std::optional<QUrl> Updater::feedAddress() {
    constexpr const char *variable = "PAVONEL_UPDATE_FEED";
    if (!qEnvironmentVariableIsSet(variable))
        return QUrl(QStringLiteral("https://pavonel.org/updates.json"));
    const QUrl address(qEnvironmentVariable(variable), QUrl::StrictMode);
    return address.isValid() ? std::optional(address) : std::nullopt;
}

Updater::Updater(const HeadlessPlatform &platform, QUrl manifest)
    : platform_(platform), manifest_(std::move(manifest)) {
    const auto stored = platform_.defaults->value(lastCheckKey);
    if (const auto *date = stored ? std::get_if<Instant>(&*stored) : nullptr)
        lastCheck = *date;
}

bool Updater::automatic() const {
    const auto stored = platform_.defaults->value(automaticKey);
    const auto *wanted = stored ? std::get_if<bool>(&*stored) : nullptr;
    return !wanted || *wanted;
}

QString Updater::currentVersion() const {
    return platform_.installation->version().value_or(QStringLiteral("0"));
}

void Updater::checkInBackground() {
    if (!automatic())
        return;
    // The clock may have been set back; a check that lies ahead is as good as one today.
    if (lastCheck.get() && secondsBetween(*lastCheck.get(), platform_.mainLoop->now()) < dayLength)
        return;
    check(CheckKind::silent);
}

void Updater::check(CheckKind kind) {
    if (std::holds_alternative<Downloading>(state.get()))
        return;
    state = Checking{};
    HttpRequest request;
    request.method = "GET";
    request.url = manifest_;
    request.timeout = requestTimeout;
    platform_.http->send(request, [this, kind, post = poster()](const auto &response) {
        post([this, kind, response] { receive(kind, response); });
    });
}

Updater::Poster Updater::poster() const {
    return [&loop = *platform_.mainLoop, watch = lifetime_.watch()](MainLoop::Action action) {
        loop.post(watch.guard(std::move(action)));
    };
}

/// The status of the response does not matter: what is no release does not decode.
void Updater::receive(CheckKind kind, const std::optional<HttpResponse> &response) {
    const Instant now = platform_.mainLoop->now();
    lastCheck = now;
    platform_.defaults->set(lastCheckKey, now);
    const auto offered = response ? decodeRelease(response->data) : std::nullopt;
    if (offered)
        release_ = offered;
    const bool isInstalling = std::holds_alternative<Downloading>(state.get()) ||
                              std::holds_alternative<ReadyToRestart>(state.get());
    if (!isInstalling) // which began after this check and goes on
        state = outcome(kind, offered);
}

Updater::State Updater::outcome(CheckKind kind, const std::optional<Release> &offered) const {
    if (offered && isNewer(offered->version, currentVersion()))
        return Available{offered->version, offered->notes};
    if (kind == CheckKind::silent)
        return Idle{};
    if (offered)
        return UpToDate{};
    return Failed{QStringLiteral("Could not reach the update server.")};
}

void Updater::install() {
    if (!release_)
        return;
    const QUrl image(release_->url, QUrl::StrictMode);
    if (!image.isValid())
        return;
    using ImageSignature = UpdaterInstall::ImageSignature;
    const UpdaterInstall install(platform_, *release_, teamID,
                                 platform_.installation->wereImagesSigned() ? ImageSignature::required
                                                                            : ImageSignature::welcome);
    if (const auto objection = install.objection(manifest_)) {
        state = Failed{objection->message};
        return;
    }
    state = Downloading{0};
    HttpDownload download;
    download.url = image;
    download.folder = install.folder();
    platform_.http->download(
        download, [this, install, post = poster(), watch = lifetime_.watch()](const auto &file) {
            if (watch.isOver()) {
                if (file)
                    QFile::remove(*file);
                return;
            }
            const UpdaterInstall::Notices notices{
                [&] { post([this] { platform_.installation->keepThatImagesAreSigned(); }); },
                [&] { post([this] { state = ReadyToRestart{}; }); }, [&] { post([this] { quitSoon(); }); }};
            const auto failure = file ? install.installFrom(*file, notices)
                                      : Failure{QStringLiteral("The download did not finish.")};
            if (failure)
                post([this, failure] { state = Failed{failure->message}; });
        });
}

bool Updater::isReplaced() const {
    return !platform_.installation->successor().isEmpty();
}

bool Updater::giveWay(Opening opening) {
    if (!isReplaced())
        return false;
    const QStringList command{QStringLiteral("-c"),
                              reopeningScript(QCoreApplication::applicationPid(), opening),
                              platform_.installation->successor()};
    if (!platform_.processes->launch(QStringLiteral("/bin/bash"), command,
                                     ProcessLauncher::SearchPath::ownToolsFirst))
        return false;
    platform_.mainLoop->quit(0);
    return true;
}

void Updater::quitSoon() {
    quitting_ = platform_.mainLoop->after(timeToQuit, [this] { platform_.mainLoop->quit(0); });
}

} // namespace pavonel
