#include "Platform/Linux/Gnome/GnomeExtension.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusPendingCallWatcher>

#include <limits>
#include <utility>

namespace pavonel {

namespace {

const QString path = QStringLiteral("/org/pavonel/Shell");

/// A place that was told longer ago says nothing.
constexpr qint64 freshness = 1000; // milliseconds

/// No desktop is larger, in either direction; no name of a program is longer.
constexpr int farthest = 1'000'000;
constexpr qsizetype longest = 1024;

bool isSane(int number) {
    return -farthest <= number && number <= farthest;
}

std::optional<GnomeExtension::Front> frontIn(const QDBusMessage &message) {
    if (message.signature() != u"(uss(iiii)b)")
        return std::nullopt;
    const auto argument = message.arguments().value(0).value<QDBusArgument>();
    GnomeExtension::Front front;
    uint process = 0;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    argument.beginStructure();
    argument >> process >> front.windowClass >> front.windowInstance;
    argument.beginStructure();
    argument >> x >> y >> width >> height;
    argument.endStructure();
    argument >> front.isFullscreen;
    argument.endStructure();
    const bool isWindow =
        width > 0 && height > 0 && isSane(x) && isSane(y) && isSane(width) && isSane(height);
    if (!isWindow || front.windowClass.size() > longest || front.windowInstance.size() > longest ||
        process > static_cast<uint>(std::numeric_limits<std::int32_t>::max()))
        return std::nullopt;
    front.processId = static_cast<std::int32_t>(process);
    front.middle = {x + width / 2, y + height / 2};
    return front;
}

std::optional<QPoint> pointIn(const QDBusMessage &message) {
    if (message.signature() != u"(ii)")
        return std::nullopt;
    const auto argument = message.arguments().value(0).value<QDBusArgument>();
    int x = 0;
    int y = 0;
    argument.beginStructure();
    argument >> x >> y;
    argument.endStructure();
    return isSane(x) && isSane(y) ? std::optional(QPoint(x, y)) : std::nullopt;
}

std::uint32_t numberIn(const QDBusMessage &message) {
    return message.signature() == u"u" ? message.arguments().value(0).toUInt() : 0;
}

} // namespace

const QString GnomeExtension::service = QStringLiteral("org.pavonel.Shell");

GnomeExtension::GnomeExtension(const QDBusConnection &session)
    : session_(session), watcher_(service, session_, QDBusServiceWatcher::WatchForOwnerChange) {
    if (!session_.isConnected())
        return;
    session_.connect(service, path, service, QStringLiteral("FrontChanged"), this,
                     SLOT(noticeFront(QDBusMessage)));
    session_.connect(service, path, service, QStringLiteral("Pressed"), this,
                     SLOT(noticePressed(QDBusMessage)));
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) { begin(owner); });
    begin(session_.interface()->serviceOwner(service).value());
}

/// Asked only while the settings are open.
bool GnomeExtension::isShellThere() const {
    return session_.isConnected() &&
           session_.interface()->isServiceRegistered(QStringLiteral("org.gnome.Shell")).value();
}

QString GnomeExtension::advice() const {
    if (!isShellThere())
        return {};
    return QStringLiteral(" Pavonel's extension of GNOME adds that; its switch is under Advanced.");
}

void GnomeExtension::begin(const QString &owner) {
    owner_ = owner;
    front_.reset();
    pointer_.reset();
    isAskingPointer_ = false;
    if (!owner_.isEmpty())
        ask("Front", {}, [this](const QDBusMessage &reply) { front_ = frontIn(reply); });
    Q_EMIT presenceChanged();
}

/// An answer that comes after its giver has gone is none.
void GnomeExtension::ask(const char *method, const QVariantList &arguments,
                         std::function<void(const QDBusMessage &)> done) {
    QDBusMessage call = QDBusMessage::createMethodCall(owner_, path, service, QString::fromLatin1(method));
    call.setArguments(arguments);
    auto *answer = new QDBusPendingCallWatcher(session_.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this,
            [this, answer, done = std::move(done), asked = owner_] {
                answer->deleteLater();
                if (asked == owner_)
                    done(answer->reply());
            });
}

void GnomeExtension::noticeFront(const QDBusMessage &message) {
    if (message.service() == owner_)
        front_ = frontIn(message);
}

void GnomeExtension::noticePressed(const QDBusMessage &message) {
    const std::uint32_t action = numberIn(message);
    if (message.service() == owner_ && action != 0)
        Q_EMIT pressed(action);
}

std::optional<QPoint> GnomeExtension::pointer() {
    if (!isPresent())
        return std::nullopt;
    if (!std::exchange(isAskingPointer_, true)) {
        ask("Pointer", {}, [this](const QDBusMessage &reply) {
            isAskingPointer_ = false;
            pointer_ = pointIn(reply);
            sincePointer_.start();
        });
    }
    return pointer_ && !sincePointer_.hasExpired(freshness) ? pointer_ : std::nullopt;
}

void GnomeExtension::grab(const QString &accelerator, std::function<void(std::uint32_t)> done) {
    ask("Grab", {accelerator},
        [done = std::move(done)](const QDBusMessage &reply) { done(numberIn(reply)); });
}

void GnomeExtension::ungrab(std::uint32_t action) {
    ask("Ungrab", {action}, [](const QDBusMessage &) {});
}

} // namespace pavonel
