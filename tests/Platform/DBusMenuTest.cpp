#include "Platform/Linux/Tray/DBusMenu.h"

#include "Platform/Linux/Tray/NotifierItem.h"
#include "support/MessageBus.h"
#include "support/waitUntil.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QMetaMethod>

#include <limits>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QString limitsExceeded = QStringLiteral("org.freedesktop.DBus.Error.LimitsExceeded");
const QString unknownMethod = QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod");
const QString invalidArguments = QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs");

QVariant eventsOf(int count, int id) {
    return QVariant::fromValue(
        QList<DBusMenuEvent>(count, {id, QStringLiteral("clicked"), QDBusVariant(0), 0}));
}

class DBusMenuTest : public ::testing::Test {
protected:
    DBusMenuTest() {
        menu.setMaker([this] {
            Menu items;
            items.push_back({MenuItem::Kind::label, status, {}, {}, {}});
            items.push_back({MenuItem::Kind::separator, {}, {}, {}, {}});
            Menu pauses;
            pauses.push_back(
                {MenuItem::Kind::command, QStringLiteral("1_hour"), {}, [this] { ++paused; }, {}});
            items.push_back({MenuItem::Kind::submenu, QStringLiteral("Pause"), {}, {}, pauses});
            items.push_back(
                {MenuItem::Kind::command, QStringLiteral("Settings…"), QStringLiteral(","), {}, {}});
            return items;
        });
    }

    DBusMenuLayout layout(int parent = 0, int depth = -1, const QStringList &names = {}) {
        return menu.layout(parent, depth, names);
    }

    QString status = QStringLiteral("Micro break: 19:58");
    int paused = 0;
    DBusMenu menu;
};

} // namespace

TEST_F(DBusMenuTest, items_carry_only_what_differs_from_the_defaults) {
    const auto items = layout().children;
    ASSERT_EQ(items.size(), 4);
    EXPECT_EQ(items[0].properties,
              QVariantMap({{QStringLiteral("label"), status}, {QStringLiteral("enabled"), false}}));
    EXPECT_EQ(items[1].properties, QVariantMap({{QStringLiteral("type"), QStringLiteral("separator")}}));
    EXPECT_EQ(items[2].properties,
              QVariantMap({{QStringLiteral("label"), QStringLiteral("Pause")},
                           {QStringLiteral("children-display"), QStringLiteral("submenu")}}));
    EXPECT_EQ(items[2].children[0].properties,
              QVariantMap({{QStringLiteral("label"), QStringLiteral("1__hour")}}))
        << "a single underscore would mark an access key";
    const auto shortcut = items[3].properties[QStringLiteral("shortcut")].value<QList<QStringList>>();
    EXPECT_EQ(shortcut, QList<QStringList>({{QStringLiteral("Control"), QStringLiteral("comma")}}));
}

TEST_F(DBusMenuTest, depth_and_property_names_limit_the_answer) {
    EXPECT_TRUE(layout(0, 0).children.isEmpty());
    EXPECT_TRUE(layout(0, 1).children[2].children.isEmpty());
    EXPECT_EQ(layout(0, 1, {QStringLiteral("enabled")}).children[0].properties.keys(),
              QStringList{QStringLiteral("enabled")});
    EXPECT_EQ(layout(4711).id, 0) << "an unknown item";
}

TEST_F(DBusMenuTest, the_menu_is_made_anew_when_it_is_about_to_show) {
    layout();
    const uint before = menu.revision();
    int updates = 0;
    QObject::connect(&menu, &DBusMenu::LayoutUpdated, &menu, [&] { ++updates; });
    EXPECT_FALSE(menu.aboutToShow(0)) << "nothing changed";
    EXPECT_EQ(updates, 0) << "nothing is sent";
    status = QStringLiteral("Micro break: 19:57");
    EXPECT_TRUE(menu.aboutToShow(0));
    EXPECT_EQ(updates, 1);
    EXPECT_EQ(layout().children[0].properties[QStringLiteral("label")].toString(), status);
    EXPECT_GT(menu.revision(), before);
}

TEST_F(DBusMenuTest, a_click_on_a_menu_that_was_read_earlier_still_does_what_its_text_says) {
    const int id = layout().children[2].children[0].id;
    status = QStringLiteral("Micro break: 19:57");
    menu.aboutToShow(0);
    menu.take(id, QStringLiteral("clicked"));
    EXPECT_EQ(paused, 0) << "the host gets its answer first";
    QCoreApplication::processEvents();
    EXPECT_EQ(paused, 1);
}

TEST_F(DBusMenuTest, events_that_mean_nothing_do_nothing) {
    const auto items = layout().children;
    menu.take(items[2].children[0].id, QStringLiteral("hovered"));
    menu.take(items[0].id, QStringLiteral("clicked"));
    menu.take(4711, QStringLiteral("clicked"));
    QCoreApplication::processEvents();
    EXPECT_EQ(paused, 0);
}

/// The menu as hosts have it.
class DBusMenuOnTheBus : public DBusMenuTest {
protected:
    DBusMenuOnTheBus() {
        layout();
        EXPECT_TRUE(ours.registerObject(NotifierItem::menuPath, &menu, QDBusConnection::ExportAllContents));
    }
    ~DBusMenuOnTheBus() override {
        for (const char *name : {"menu", "host"})
            QDBusConnection::disconnectFromBus(QString::fromLatin1(name));
    }

    QDBusMessage answer(const QDBusMessage &question) {
        const QDBusPendingCall call = host.asyncCall(question);
        EXPECT_TRUE(waitUntil([&] { return call.isFinished(); }));
        return call.reply();
    }

    QDBusMessage answer(const char *method, const QVariantList &arguments) {
        auto question = QDBusMessage::createMethodCall(ours.baseService(), NotifierItem::menuPath,
                                                       QStringLiteral("com.canonical.dbusmenu"),
                                                       QString::fromLatin1(method));
        question.setArguments(arguments);
        return answer(question);
    }

    MessageBus bus;
    QDBusConnection ours = QDBusConnection::connectToBus(bus.address(), QStringLiteral("menu"));
    QDBusConnection host = QDBusConnection::connectToBus(bus.address(), QStringLiteral("host"));
};

TEST_F(DBusMenuOnTheBus, answers_for_groups_name_the_items_that_are_unknown) {
    const auto events = answer("EventGroup", {eventsOf(1, 4711)}).arguments();
    ASSERT_EQ(events.size(), 1);
    EXPECT_EQ(qdbus_cast<QList<int>>(events[0]), QList<int>{4711});
    status = QStringLiteral("Micro break: 19:57");
    const auto shown = answer("AboutToShowGroup", {QVariant::fromValue(QList<int>{0, 4711})}).arguments();
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(qdbus_cast<QList<int>>(shown[0]), QList<int>{0});
    EXPECT_EQ(qdbus_cast<QList<int>>(shown[1]), QList<int>{4711});
}

TEST_F(DBusMenuOnTheBus, the_interface_is_described_as_it_is_served) {
    const auto question = QDBusMessage::createMethodCall(
        ours.baseService(), NotifierItem::menuPath, QStringLiteral("org.freedesktop.DBus.Introspectable"),
        QStringLiteral("Introspect"));
    const QString description = answer(question).arguments().value(0).toString();
    for (int i = DBusMenu::staticMetaObject.methodOffset(); i < DBusMenu::staticMetaObject.methodCount();
         ++i) {
        const QString name = QString::fromLatin1(DBusMenu::staticMetaObject.method(i).name());
        EXPECT_TRUE(description.contains(QStringLiteral("name=\"%1\"").arg(name))) << qPrintable(name);
    }
    EXPECT_TRUE(description.contains(QStringLiteral("type=\"a(isvu)\" direction=\"in\"")));
}

/// Questions of a size that no host asks, as they come over the bus.
class AbsurdQuestion : public DBusMenuOnTheBus, public ::testing::WithParamInterface<int> {
protected:
    /// The name of the error with which it is answered; empty when it is taken.
    QString error(const char *method, const QVariantList &arguments) {
        return answer(method, arguments).errorName();
    }
};

INSTANTIATE_TEST_SUITE_P(Sizes, AbsurdQuestion, ::testing::Values(3, 200'000));

TEST_P(AbsurdQuestion, is_answered_with_an_error_and_a_sensible_one_is_not) {
    const bool absurd = GetParam() > 3;
    const QString expected = absurd ? limitsExceeded : QString();
    const QVariant ids = QVariant::fromValue(QList<int>(GetParam(), 1));
    const QStringList none;
    const QStringList names(GetParam(), QStringLiteral("label"));
    const int depth = absurd ? std::numeric_limits<int>::min() : -1;
    const QVariant data = QVariant::fromValue(QDBusVariant(names));
    EXPECT_EQ(error("GetGroupProperties", {ids, none}), expected);
    EXPECT_EQ(error("GetGroupProperties", {QVariant::fromValue(QList<int>{1}), names}), expected);
    EXPECT_EQ(error("GetLayout", {0, -1, names}), expected);
    EXPECT_EQ(error("GetLayout", {0, depth, none}), expected);
    EXPECT_EQ(error("AboutToShowGroup", {ids}), expected);
    EXPECT_EQ(error("EventGroup", {eventsOf(GetParam(), 4711)}), expected);
    EXPECT_EQ(error("Event", {4711, QStringLiteral("clicked"), data, 0U}), expected);
}

TEST_F(DBusMenuOnTheBus, a_question_with_more_than_it_takes_is_refused) {
    const QString &expected = invalidArguments;
    const QStringList more(200'000, QStringLiteral("label"));
    EXPECT_EQ(answer("AboutToShow", {0, more}).errorName(), expected);
    EXPECT_EQ(answer("GetProperty", {0, QStringLiteral("label"), more}).errorName(), expected);
    EXPECT_EQ(answer("Event", {more}).errorName(), expected);
}

TEST_F(DBusMenuOnTheBus, a_call_of_the_item_with_more_than_it_takes_is_refused) {
    int shown = 0;
    NotifierItem item({}, [&](QPoint) { ++shown; });
    const QString path = QStringLiteral("/StatusNotifierItem");
    ASSERT_TRUE(ours.registerObject(path, &item, QDBusConnection::ExportAllContents));
    const QStringList more(200'000, QStringLiteral("label"));
    const auto error = [&](const char *method, QVariantList arguments) {
        auto call = QDBusMessage::createMethodCall(ours.baseService(), path,
                                                   QStringLiteral("org.kde.StatusNotifierItem"),
                                                   QString::fromLatin1(method));
        call.setArguments(arguments);
        return answer(call).errorName();
    };
    const QVariant vertical = QStringLiteral("vertical");
    for (const auto &[method, second] : {std::pair<const char *, QVariant>{"Activate", 0},
                                         {"ContextMenu", 0},
                                         {"SecondaryActivate", 0},
                                         {"Scroll", vertical}}) {
        EXPECT_EQ(error(method, {0, second}), QString()) << method;
        EXPECT_EQ(error(method, {0, second, more}), unknownMethod) << method;
    }
    EXPECT_EQ(shown, 2);
}

TEST(NotifierItem, tells_its_hosts_of_a_label_only_when_it_changed) {
    NotifierItem item({}, [](QPoint) {});
    int labels = 0;
    int toolTips = 0;
    QObject::connect(&item, &NotifierItem::XAyatanaNewLabel, &item, [&] { ++labels; });
    QObject::connect(&item, &NotifierItem::NewToolTip, &item, [&] { ++toolTips; });
    item.setLabel(QStringLiteral("20m"));
    item.setLabel(QStringLiteral("20m"));
    EXPECT_EQ(labels, 1);
    EXPECT_EQ(toolTips, 1);
    EXPECT_EQ(item.toolTip().text, QStringLiteral("20m"));
}

} // namespace pavonel::test
