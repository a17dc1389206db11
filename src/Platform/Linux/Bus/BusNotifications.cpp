#include "Platform/Linux/Bus/BusNotifications.h"

#include <QDBusPendingCallWatcher>
#include <QVariantMap>

#include <utility>

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

const auto service = u"org.freedesktop.Notifications"_s;
const auto path = u"/org/freedesktop/Notifications"_s;

/// Each has its place in the list as its key.
QStringList keysAndLabels(const std::vector<Notifications::Button> &buttons) {
    QStringList all;
    for (std::size_t place = 0; place < buttons.size(); ++place)
        all << QString::number(place) << buttons[place].label;
    return all;
}

} // namespace

/// What was handed over. Whoever shows it gives it its number, a moment later.
struct BusNotifications::Sent {
    Notice notice;
    QString shownBy = {}; ///< The unique name on the bus; another desktop has other numbers.
    uint number = 0;
};

class BusNotifications::Handle final : public Shown {
public:
    Handle(BusNotifications &all, std::shared_ptr<Sent> sent) : all_(all), sent_(std::move(sent)) {}
    ~Handle() override { all_.withdraw(sent_->shownBy, sent_->number); }

private:
    BusNotifications &all_;
    std::shared_ptr<Sent> sent_;
};

BusNotifications::BusNotifications(const QDBusConnection &session) : session_(session) {
    session_.connect(service, path, service, u"ActionInvoked"_s, this,
                     SLOT(takeAction(uint, QString, QDBusMessage)));
}

std::unique_ptr<Notifications::Shown> BusNotifications::show(Notice notice) {
    const auto sent = std::make_shared<Sent>(Sent{std::move(notice)});
    std::erase_if(sent_, [](const auto &each) { return each.expired(); });
    sent_.push_back(sent);
    send(sent);
    return std::make_unique<Handle>(*this, sent);
}

/// The text may be taken for markup. It stays until we take it away, or the desktop thinks otherwise.
void BusNotifications::send(const std::shared_ptr<Sent> &sent) {
    constexpr uint inPlaceOfNone = 0;
    constexpr int untilWithdrawn = 0;
    const QVariantMap hints{{u"desktop-entry"_s, u"org.pavonel.Pavonel"_s}};
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, service, u"Notify"_s);
    call << u"Pavonel"_s << inPlaceOfNone << u"org.pavonel.Pavonel"_s << sent->notice.title
         << sent->notice.text.toHtmlEscaped() << keysAndLabels(sent->notice.buttons) << hints
         << untilWithdrawn;
    auto *answer = new QDBusPendingCallWatcher(session_.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, wanted = std::weak_ptr(sent)] {
        answer->deleteLater();
        const QDBusMessage reply = answer->reply();
        if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != u"u")
            return;
        const uint number = reply.arguments().value(0).toUInt();
        if (const auto stillWanted = wanted.lock()) {
            stillWanted->shownBy = reply.service();
            stillWanted->number = number;
        } else {
            withdraw(reply.service(), number);
        }
    });
}

void BusNotifications::withdraw(const QString &shownBy, uint number) {
    if (number == 0)
        return;
    QDBusMessage call = QDBusMessage::createMethodCall(shownBy, path, service, u"CloseNotification"_s);
    session_.send(call << number);
}

/// Of others' notifications everybody is told too.
void BusNotifications::takeAction(uint number, const QString &key, const QDBusMessage &message) {
    for (const auto &each : sent_) {
        const auto sent = each.lock();
        if (!sent || sent->number == 0 || sent->number != number || sent->shownBy != message.service())
            continue;
        bool isPlace = false;
        const std::size_t place = key.toUInt(&isPlace);
        if (isPlace && place < sent->notice.buttons.size())
            sent->notice.buttons[place].action(); // `sent` outlives what it takes away
        return;
    }
}

} // namespace pavonel
