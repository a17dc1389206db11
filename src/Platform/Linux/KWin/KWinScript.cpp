#include "Platform/Linux/KWin/KWinScript.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QStandardPaths>

#include <chrono>
#include <utility>

namespace pavonel {

namespace {

/// KWin takes an old script out a moment after it said so, and refuses the new one until then.
constexpr std::chrono::milliseconds moment{100};
constexpr int mostAttempts = 20;

/// Calls `done` with the answer, be it an error, unless `owner` is gone by then.
template <class Done>
void ask(const QDBusConnection &bus, const QDBusMessage &question, QObject *owner, Done done) {
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), owner);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, owner, [watcher, done] {
        watcher->deleteLater();
        done(watcher->reply());
    });
}

QString nameOfFile() {
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) +
           QStringLiteral("/pavonel-XXXXXX.js");
}

} // namespace

const QString KWinScript::service = QStringLiteral("org.kde.KWin");

KWinScript::KWinScript(const QDBusConnection &bus, QString name, const QByteArray &text)
    : bus_(bus), name_(std::move(name)), file_(nameOfFile()) {
    if (!file_.open() || file_.write(text) != text.size() || !file_.flush())
        qWarning("No script for KWin could be written: %s", qUtf8Printable(file_.errorString()));
    again_.setSingleShot(true);
    again_.setInterval(moment);
    again_.callOnTimeout(this, &KWinScript::insert);
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, &KWinScript::unload);
}

KWinScript::~KWinScript() {
    unload();
}

QDBusMessage KWinScript::scripting(const char *method) const {
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, QStringLiteral("/Scripting"),
                                       QStringLiteral("org.kde.kwin.Scripting"), QString::fromLatin1(method));
    call.setAutoStartService(false);
    return call;
}

void KWinScript::load() {
    attempts_ = 0;
    QDBusMessage call = scripting("unloadScript");
    call << name_;
    ask(bus_, call, this, [this](const QDBusMessage &) { insert(); });
}

void KWinScript::insert() {
    QDBusMessage call = scripting("loadScript");
    call << file_.fileName() << name_;
    ask(bus_, call, this, [this](const QDBusMessage &answer) {
        bool isNumber = false;
        const int number = answer.arguments().value(0).toInt(&isNumber);
        if (answer.type() == QDBusMessage::ReplyMessage && isNumber && number >= 0)
            run(number);
        else if (++attempts_ < mostAttempts)
            again_.start();
    });
}

/// Plasma 6 keeps its scripts elsewhere than Plasma 5.
void KWinScript::run(int number) {
    for (const QString &path :
         {QStringLiteral("/Scripting/Script%1").arg(number), QStringLiteral("/%1").arg(number)}) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            service, path, QStringLiteral("org.kde.kwin.Script"), QStringLiteral("run"));
        call.setAutoStartService(false);
        ask(bus_, call, this, [](const QDBusMessage &) {});
    }
}

void KWinScript::unload() {
    again_.stop();
    QDBusMessage call = scripting("unloadScript");
    call << name_;
    bus_.send(call);
}

} // namespace pavonel
