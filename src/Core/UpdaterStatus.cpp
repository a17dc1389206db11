#include "Core/UpdaterStatus.h"

#include "Core/RelativeTime.h"
#include "Core/Updater.h"

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

struct Status {
    const std::optional<Instant> &lastCheck;
    Instant now;

    QString operator()(const Updater::Available &state) const {
        return u"Version %1 is available"_s.arg(state.version);
    }
    QString operator()(const Updater::Downloading &) const { return {}; }
    QString operator()(const Updater::Failed &state) const { return state.message; }
    QString operator()(const Updater::Idle &) const {
        return lastCheck ? u"Last checked "_s + relativeTime(*lastCheck, now) : u"Not checked yet"_s;
    }
    QString operator()(const Updater::Checking &) const { return u"Checking…"_s; }
    QString operator()(const Updater::UpToDate &) const { return u"You are up to date."_s; }
    QString operator()(const Updater::ReadyToRestart &) const {
        return u"Installing — Pavonel will restart."_s;
    }
};

} // namespace

QString updaterStatus(const Updater &updater, Instant now) {
    return std::visit(Status{updater.lastCheck, now}, updater.state.get());
}

} // namespace pavonel
