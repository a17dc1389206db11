#include "Platform/Linux/KWin/KWinWindows.h"

#include "Platform/Linux/Bus/refuse.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRectF>

#include <cmath>

#include <unistd.h>

namespace pavonel {

namespace {

using namespace Qt::StringLiterals;

const auto path = u"/org/pavonel/Pavonel/KWin"_s;

/// KWin of Plasma 5 and 6 call the same things by different names.
constexpr char text[] = R"(
function tell(window) {
    const place = window ? window.frameGeometry : {};
    callDBus("%1", "%2", "org.pavonel.KWin", "Front", JSON.stringify(!window ? {} : {
        id: "" + window.internalId,
        application: "" + (window.desktopFileName || window.resourceClass),
        instance: "" + window.resourceName,
        process: window.pid,
        isFullscreen: window.fullScreen,
        x: place.x, y: place.y, width: place.width, height: place.height
    }));
}
let front = null;
function tellChange() { tell(front); }
function follow(window) {
    if (front)
        front.fullScreenChanged.disconnect(tellChange);
    front = window;
    if (front)
        front.fullScreenChanged.connect(tellChange);
    tell(front);
}
(workspace.windowActivated || workspace.clientActivated).connect(follow);
(workspace.windowRemoved || workspace.clientRemoved).connect(function (window) {
    if (window === front)
        front = null;
});
follow(workspace.activeWindow || workspace.activeClient || null);
)";

/// Absent where the numbers make no rectangle; JSON has no others than finite ones.
std::optional<QPointF> middleOf(const QJsonObject &window) {
    const QJsonValue x = window["x"_L1];
    const QJsonValue y = window["y"_L1];
    const double width = window["width"_L1].toDouble();
    const double height = window["height"_L1].toDouble();
    constexpr double farthest = 1e6;
    if (!x.isDouble() || !y.isDouble() || !(width > 0 && height > 0) ||
        std::abs(x.toDouble()) + std::abs(y.toDouble()) + width + height > farthest)
        return {};
    return QRectF(x.toDouble(), y.toDouble(), width, height).center();
}

/// 0 for what is no process of a user's.
ProcessId processOf(const QJsonObject &window) {
    const int process = window["process"_L1].toInt();
    return process > 1 ? process : 0;
}

} // namespace

KWinWindows::KWinWindows(const QDBusConnection &bus)
    : bus_(bus), watcher_(KWinScript::service, bus_, QDBusServiceWatcher::WatchForOwnerChange) {
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) { follow(owner); });
    auto question = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                                   u"org.freedesktop.DBus"_s, u"GetNameOwner"_s);
    question << KWinScript::service;
    const auto *call = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *answered) {
        answered->deleteLater();
        const QDBusPendingReply<QString> owner = *answered;
        if (kwin_.isEmpty() && !owner.isError())
            follow(owner.value());
    });
}

KWinWindows::~KWinWindows() {
    if (script_)
        bus_.unregisterObject(path);
}

/// A KWin that was started again does not have our script any more.
void KWinWindows::follow(const QString &owner) {
    kwin_ = owner;
    front_.reset();
    fullscreen_.reset();
    if (script_ && !kwin_.isEmpty())
        script_->load();
}

void KWinWindows::subscribe() {
    if (script_ || kwin_.isEmpty())
        return;
    bus_.registerObject(path, this, QDBusConnection::ExportAllSlots);
    script_ = std::make_unique<KWinScript>(bus_, u"pavonel"_s,
                                           QString::fromLatin1(text).arg(bus_.baseService(), path).toUtf8());
    script_->load();
}

std::optional<FrontWindow> KWinWindows::front() {
    subscribe();
    return front_;
}

std::vector<FullscreenWindow> KWinWindows::fullscreen() {
    subscribe();
    return fullscreen_ ? std::vector{*fullscreen_} : std::vector<FullscreenWindow>();
}

void KWinWindows::Front(const QString &json) {
    if (!calledFromDBus())
        return;
    if (message().service() != kwin_)
        return refuse(message(), bus_, QDBusError::errorString(QDBusError::AccessDenied),
                      u"Only KWin is heard here."_s);
    const QJsonObject window = QJsonDocument::fromJson(json.toUtf8()).object();
    const ProcessId process = processOf(window);
    front_.reset();
    fullscreen_.reset();
    if (window.isEmpty() || process == ::getpid())
        return;
    front_ = FrontWindow{qHash(window["id"_L1].toString()), process, window["application"_L1].toString(),
                         window["instance"_L1].toString()};
    if (window["isFullscreen"_L1].toBool())
        fullscreen_ = FullscreenWindow{process, middleOf(window)};
}

} // namespace pavonel
