#include "Platform/Linux/Gnome/GnomeKeyBindings.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <chrono>
#include <utility>

namespace pavonel {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const auto shell = u"org.gnome.Shell"_s;
const auto screenSaver = u"org.gnome.ScreenSaver"_s;
const auto screenSaverPath = u"/org/gnome/ScreenSaver"_s;

/// The Shell starts our extension only once it sees us, and again when the screen is unlocked.
constexpr auto moment = 3s;

/// Quitting waits so long for what is on its way.
constexpr auto timeout = 2s;

} // namespace

GnomeKeyBindings::GnomeKeyBindings(const QDBusConnection &session, MainLoop &loop, Wanted wanted)
    : session_(session), loop_(loop), wanted_(std::move(wanted)) {
    settle_.setSingleShot(true);
    settle_.setInterval(moment);
    connect(&settle_, &QTimer::timeout, this, &GnomeKeyBindings::settle);
    session_.connect(shell, screenSaverPath, screenSaver, u"ActiveChanged"_s, this, SLOT(followLock(bool)));
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, &GnomeKeyBindings::giveBack);
    review();
}

bool GnomeKeyBindings::areHeeded() const {
    const auto *daemon = session_.interface();
    return kept_.areKept && daemon &&
           daemon->isServiceRegistered(u"org.gnome.SettingsDaemon.MediaKeys"_s).value();
}

void GnomeKeyBindings::followLock(bool isLocked) {
    if (!isLocked)
        review();
}

void GnomeKeyBindings::settle() {
    auto question = QDBusMessage::createMethodCall(shell, screenSaverPath, screenSaver, u"GetActive"_s);
    question.setAutoStartService(false);
    auto *answer = new QDBusPendingCallWatcher(session_.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<bool> isLocked = *answer;
        if (isLocked.isError() || !isLocked.value())
            keep();
    });
}

void GnomeKeyBindings::keep() {
    again_ = task_.isPending();
    if (again_)
        return;
    auto wanted = wanted_();
    hasAny_ = !wanted.empty();
    task_ = BackgroundTask::start(loop_, [this, wanted = std::move(wanted)]() -> BackgroundTask::Action {
        return [this, kept = keepCustomKeyBindings(wanted)] { take(kept); };
    });
}

void GnomeKeyBindings::take(const CustomKeyBindings &kept) {
    kept_ = kept;
    if (again_)
        keep();
    else if (kept.wereOurs && !hasAny_)
        Q_EMIT gone();
}

void GnomeKeyBindings::giveBack() {
    settle_.stop();
    again_ = false;
    task_.await(timeout);
    if (hasAny_)
        keepCustomKeyBindings({});
}

} // namespace pavonel
