#include "Core/PlannedBreak.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const char *const wholeRecord = R"({"id": "6F9619FF-8B86-D011-B42D-00CF4FC964FF", "label": "Walk", "hour": 15,
    "minute": 5, "duration": 600.5, "weekdays": [1, 7], "enabled": false})";

QJsonObject objectOf(const char *json) {
    return QJsonDocument::fromJson(json).object();
}

bool decodes(const QJsonObject &object) {
    return decodePlannedBreaks(QJsonDocument(QJsonArray{object}).toJson()).has_value();
}

} // namespace

TEST(PlannedBreak, a_new_record_encodes_to_its_seven_members) {
    const PlannedBreak record;
    const auto json = encodePlannedBreaks({record});
    ASSERT_TRUE(json);
    const auto array = QJsonDocument::fromJson(*json).array();
    ASSERT_EQ(array.size(), 1);
    const QJsonObject object = array[0].toObject();
    EXPECT_EQ(object.size(), 7);
    EXPECT_EQ(object[u"id"].toString(), record.id.toString(QUuid::WithoutBraces).toUpper());
    EXPECT_EQ(object[u"label"], QStringLiteral("Lunch"));
    EXPECT_EQ(object[u"hour"], 12);
    EXPECT_EQ(object[u"minute"], 30);
    EXPECT_EQ(object[u"duration"], 1800);
    EXPECT_EQ(object[u"weekdays"], (QJsonArray{2, 3, 4, 5, 6}));
    EXPECT_EQ(object[u"enabled"], true);
}

TEST(PlannedBreak, new_records_have_identities_of_their_own) {
    EXPECT_NE(PlannedBreak().id, PlannedBreak().id);
}

TEST(PlannedBreak, records_that_differ_in_their_id_alone_are_different) {
    const PlannedBreak record;
    PlannedBreak other = record;
    EXPECT_EQ(record, other);
    other.id = QUuid::createUuid();
    EXPECT_NE(record, other);
}

TEST(PlannedBreak, a_whole_record_decodes) {
    const auto records = decodePlannedBreaks(QByteArray("[") + wholeRecord + "]");
    ASSERT_TRUE(records);
    ASSERT_EQ(records->size(), 1U);
    const PlannedBreak &record = records->front();
    EXPECT_EQ(record.id, QUuid(QStringLiteral("6f9619ff-8b86-d011-b42d-00cf4fc964ff")));
    EXPECT_EQ(record.label, QStringLiteral("Walk"));
    EXPECT_EQ(record.hour, 15);
    EXPECT_EQ(record.minute, 5);
    EXPECT_EQ(record.duration, 600.5);
    EXPECT_EQ(record.weekdays, (std::set<int>{1, 7}));
    EXPECT_FALSE(record.enabled);
}

TEST(PlannedBreak, one_record_without_a_member_fails_the_whole_array) {
    for (const QString &member : objectOf(wholeRecord).keys()) {
        QJsonObject broken = objectOf(wholeRecord);
        broken.remove(member);
        const QJsonArray array{objectOf(wholeRecord), broken};
        EXPECT_FALSE(decodePlannedBreaks(QJsonDocument(array).toJson())) << member.toStdString();
    }
}

TEST(PlannedBreak, a_member_of_a_wrong_type_fails) {
    const QJsonObject whole = objectOf(wholeRecord);
    ASSERT_TRUE(decodes(whole));
    const QJsonArray values{QJsonValue(), true, 1.5, QStringLiteral("text"), QJsonArray{QStringLiteral("a")},
                            QJsonObject()};
    for (const QString &member : whole.keys()) {
        for (const QJsonValue value : values) {
            const bool isRight = value.type() == whole[member].type() && value.type() != QJsonValue::Array &&
                                 member != u"id" && member != u"hour" && member != u"minute";
            QJsonObject changed = whole;
            changed[member] = value;
            EXPECT_EQ(decodes(changed), isRight) << member.toStdString() << " of type " << value.type();
        }
    }
}

TEST(PlannedBreak, an_identity_must_be_in_canonical_form) {
    for (const char *id : {"", "6F9619FF8B86D011B42D00CF4FC964FF", "{6F9619FF-8B86-D011-B42D-00CF4FC964FF}",
                           "6F9619FF-8B86-D011-B42D-00CF4FC964FG", "6F9619FF-8B86-D011-B42D-00CF4FC964F"}) {
        QJsonObject object = objectOf(wholeRecord);
        object[u"id"] = QString::fromLatin1(id);
        EXPECT_FALSE(decodes(object)) << id;
    }
}

TEST(PlannedBreak, members_that_we_do_not_know_are_ignored) {
    QJsonObject object = objectOf(wholeRecord);
    object[u"colour"] = QStringLiteral("red");
    EXPECT_TRUE(decodes(object));
}

TEST(PlannedBreak, no_range_is_enforced) {
    QJsonObject object = objectOf(wholeRecord);
    object[u"hour"] = -4;
    object[u"minute"] = 99;
    object[u"duration"] = -1;
    object[u"weekdays"] = QJsonArray{0, 8, 8};
    const auto records = decodePlannedBreaks(QJsonDocument(QJsonArray{object}).toJson());
    ASSERT_TRUE(records);
    EXPECT_EQ(records->front().hour, -4);
    EXPECT_EQ(records->front().weekdays, (std::set<int>{0, 8}));
}

TEST(PlannedBreak, what_is_no_array_of_records_decodes_to_nothing) {
    for (const char *json :
         {"", "null", "{}", "3", "[3]", "[null]", "[[]]", "[{}]", "[", "\xff\xfe", "[1e999]"})
        EXPECT_FALSE(decodePlannedBreaks(json)) << json;
    EXPECT_TRUE(decodePlannedBreaks("[]")->empty());
}

TEST(PlannedBreak, a_number_too_large_for_any_duration_decodes_to_nothing) {
    const QByteArray json = QByteArray(wholeRecord).replace("600.5", "1e999");
    EXPECT_FALSE(decodePlannedBreaks("[" + json + "]"));
}

TEST(PlannedBreak, a_duration_that_is_no_number_cannot_be_encoded) {
    PlannedBreak record;
    record.duration = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(encodePlannedBreaks({PlannedBreak{}, record}));
}

TEST(PlannedBreak, a_list_comes_back_in_its_order) {
    PlannedBreaks records(3);
    records[0].label = QStringLiteral("\"quoted\"\n👋 عربى");
    records[1].weekdays.clear();
    records[2].duration = 0.25;
    EXPECT_EQ(decodePlannedBreaks(encodePlannedBreaks(records).value()), records);
}

} // namespace pavonel::test
