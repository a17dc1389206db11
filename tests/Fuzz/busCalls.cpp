#include "Fuzz/Source.h"
#include "Fuzz/Target.h"
#include "Fuzz/onlyOne.h"
#include "Platform/Linux/Bus/BusSingleInstance.h"
#include "Platform/Linux/Bus/OurName.h"
#include "Platform/Linux/Tray/DBusMenu.h"
#include "Platform/Linux/Tray/NotifierItem.h"
#include "support/MessageBus.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QTemporaryDir>

namespace pavonel::fuzz {

namespace {

struct Method {
    QString path;
    QString interface;
    QString name;
    const char *arguments; ///< Each as a letter of `argument`.
};

const QString &menu = NotifierItem::menuPath;
const QString item = QStringLiteral("/StatusNotifierItem");

QList<Method> allMethods() {
    const QString application = QStringLiteral("org.freedesktop.Application");
    const QString status = QStringLiteral("org.pavonel.Pavonel1");
    const QString dbusmenu = QStringLiteral("com.canonical.dbusmenu");
    const QString notifier = QStringLiteral("org.kde.StatusNotifierItem");
    const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");
    const QString &launcher = ourName::path;
    return {
        {launcher, application, QStringLiteral("Activate"), "m"},
        {launcher, application, QStringLiteral("Open"), "lm"},
        {launcher, application, QStringLiteral("ActivateAction"), "svm"},
        {launcher, status, QStringLiteral("Postpone"), "u"},
        {launcher, status, QStringLiteral("Pause"), "u"},
        {launcher, status, QStringLiteral("Resume"), ""},
        {launcher, properties, QStringLiteral("Get"), "ss"},
        {menu, dbusmenu, QStringLiteral("GetLayout"), "iil"},
        {menu, dbusmenu, QStringLiteral("GetGroupProperties"), "nl"},
        {menu, dbusmenu, QStringLiteral("GetProperty"), "is"},
        {menu, dbusmenu, QStringLiteral("Event"), "isau"},
        {menu, dbusmenu, QStringLiteral("EventGroup"), "e"},
        {menu, dbusmenu, QStringLiteral("AboutToShow"), "i"},
        {menu, dbusmenu, QStringLiteral("AboutToShowGroup"), "n"},
        {menu, properties, QStringLiteral("GetAll"), "s"},
        {item, notifier, QStringLiteral("Activate"), "ii"},
        {item, notifier, QStringLiteral("ContextMenu"), "ii"},
        {item, notifier, QStringLiteral("Scroll"), "is"},
        {item, properties, QStringLiteral("Set"), "ssa"},
    };
}

Menu someMenu() {
    const MenuItem command{MenuItem::Kind::command, QStringLiteral("Pause"), {}, [] {}, {}};
    return {command, MenuItem{MenuItem::Kind::submenu, QStringLiteral("More"), {}, {}, {command, command}}};
}

/// The program's side of a bus of its own, and another program's.
class Bus {
public:
    Bus() {
        menu_.setMaker(someMenu);
        require(instance_.claim() == SingleInstance::Role::first);
        require(ours_.registerObject(menu, &menu_, QDBusConnection::ExportAllContents));
        require(ours_.registerObject(item, &item_, QDBusConnection::ExportAllContents));
        instance_.onReopen([] {});
        instance_.onAction([](OutsideAction) {});
    }

    /// Every call is answered, if only with an error.
    void call(const Method &method, const QVariantList &arguments) {
        auto message =
            QDBusMessage::createMethodCall(ourName::service, method.path, method.interface, method.name);
        message.setArguments(arguments);
        constexpr int timeout = 600'000; // milliseconds; a fuzzer may be the last to be given a processor
        const QDBusMessage answer = theirs_.call(message, QDBus::BlockWithGui, timeout);
        require(answer.type() == QDBusMessage::ReplyMessage || answer.type() == QDBusMessage::ErrorMessage);
        require(answer.errorName() != u"org.freedesktop.DBus.Error.NoReply");
        require(ours_.isConnected());
        QCoreApplication::processEvents();
    }

private:
    QTemporaryDir folder_;
    test::MessageBus bus_;
    QDBusConnection ours_ = QDBusConnection::connectToBus(bus_.address(), QStringLiteral("ours"));
    QDBusConnection theirs_ = QDBusConnection::connectToBus(bus_.address(), QStringLiteral("theirs"));
    BusSingleInstance instance_{ours_, folder_.filePath(QStringLiteral("lock"))};
    DBusMenu menu_;
    NotifierItem item_{folder_.path(), [](QPoint) {}};
};

QStringList texts(Source &source) {
    QStringList list;
    for (int left = source.byte() % 8; left > 0; --left)
        list.append(source.text());
    return list;
}

constexpr char letters[] = "iubsnlavme";

QVariant argument(char letter, Source &source, int depth);

QVariantMap map(Source &source, int depth) {
    QVariantMap entries;
    for (int left = source.byte() % 4; left > 0; --left)
        entries.insert(source.text(),
                       argument(letters[source.byte() % (sizeof letters - 1)], source, depth + 1));
    return entries;
}

QVariantList anything(Source &source, int depth) {
    QVariantList list;
    for (int left = source.byte() % 4; left > 0; --left)
        list.append(argument(letters[source.byte() % (sizeof letters - 1)], source, depth + 1));
    return list;
}

QVariant argument(char letter, Source &source, int depth) {
    constexpr int deepest = 6;
    switch (depth < deepest ? letter : 'i') {
    case 'u':
        return static_cast<uint>(source.number());
    case 'b':
        return source.rest(source.byte());
    case 's':
        return source.text();
    case 'n':
        return QVariant::fromValue(QList<int>(source.byte() % 8, source.number()));
    case 'l':
        return texts(source);
    case 'a': {
        const QVariantList inner = anything(source, depth);
        return QVariant::fromValue(QDBusVariant(inner.isEmpty() ? QVariant(0) : inner.first()));
    }
    case 'v':
        return anything(source, depth);
    case 'm':
        return map(source, depth);
    case 'e': {
        const DBusMenuEvent event{source.number(), source.text(), QDBusVariant(0), 0};
        return QVariant::fromValue(QList<DBusMenuEvent>(source.byte() % 8, event));
    }
    default:
        return source.number();
    }
}

} // namespace

/// Calls, each beginning with a byte for the method; its highest bit says that the arguments are others than
/// it has.
void busCalls(const QByteArray &input) {
    static const QList<Method> methods = allMethods();
    auto &bus = onlyOne<Bus>();
    Source source(input);
    for (int calls = 0; calls < 8 && !source.isEmpty(); ++calls) {
        const int chosen = source.byte();
        const Method &method = methods.at((chosen & 0x7f) % methods.size());
        QVariantList arguments;
        if (chosen & 0x80)
            arguments = anything(source, 0);
        else
            for (const char *letter = method.arguments; *letter; ++letter)
                arguments.append(argument(*letter, source, 0));
        bus.call(method, arguments);
    }
}

} // namespace pavonel::fuzz
