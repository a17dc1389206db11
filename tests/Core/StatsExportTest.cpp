#include "Core/StatsExport.h"

#include "support/Printing.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

using Format = StatsExport::Format;

constexpr char header[] = "date,micro,long,planned,skipped,screenSeconds,breakSeconds\n";

StatsExport exported(const QByteArray &json, Format format = Format::csv) {
    return StatsExport::of({json, false}, format);
}

constexpr char twoDays[] =
    R"({"2026-03-10": {"micro": 1, "long": 2, "planned": 3, "skipped": 4, "screenSeconds": 5.5, "breakSeconds": 6},
        "2026-03-09": {"micro": 0, "long": 0, "planned": 0, "skipped": 0, "screenSeconds": 99999, "breakSeconds": 0}})";

} // namespace

TEST(StatsExport, csv_has_a_row_for_each_day_in_their_order) {
    const StatsExport made = exported(twoDays);
    EXPECT_EQ(made.text, QByteArray(header) + "2026-03-09,0,0,0,0,99999,0\n"
                                              "2026-03-10,1,2,3,4,6,6\n");
    EXPECT_EQ(made.complaints, QStringList());
}

TEST(StatsExport, json_has_an_object_for_each_day_in_their_order) {
    const QJsonArray days = QJsonDocument::fromJson(exported(twoDays, Format::json).text).array();
    ASSERT_EQ(days.size(), 2);
    EXPECT_EQ(days[0].toObject().value(u"date").toString(), QStringLiteral("2026-03-09"));
    EXPECT_EQ(days[1].toObject(), (QJsonObject{{QStringLiteral("date"), QStringLiteral("2026-03-10")},
                                               {QStringLiteral("micro"), 1},
                                               {QStringLiteral("long"), 2},
                                               {QStringLiteral("planned"), 3},
                                               {QStringLiteral("skipped"), 4},
                                               {QStringLiteral("screenSeconds"), 6},
                                               {QStringLiteral("breakSeconds"), 6}}));
}

TEST(StatsExport, a_damaged_record_is_named_by_whole_characters_of_its_key) {
    const QByteArray key = "x" + QByteArray("🫖").repeated(100);
    EXPECT_EQ(
        exported("{\"" + key + "\": 1}").complaints,
        QStringList{
            QStringLiteral("the record of \"x%1\" is damaged").arg(QStringLiteral("🫖").repeated(39))});
}

TEST(StatsExport, before_the_first_day_there_are_none) {
    for (const StoredEntry &entry : {StoredEntry{}, StoredEntry{QByteArray("{}"), false}}) {
        EXPECT_EQ(StatsExport::of(entry, Format::csv).text, header);
        EXPECT_EQ(QJsonDocument::fromJson(StatsExport::of(entry, Format::json).text).array().size(), 0);
        EXPECT_EQ(StatsExport::of(entry, Format::csv).complaints, QStringList());
    }
}

TEST(StatsExport, dates_are_in_iso_form_in_whichever_digits_they_were_kept) {
    const StatsExport made = exported(
        QString::fromUtf8(
            R"({"٢٠٢٦-٠٣-٠٩": {"micro": 1, "long": 0, "planned": 0, "skipped": 0, "screenSeconds": 0, "breakSeconds": 0}})")
            .toUtf8());
    EXPECT_EQ(made.text, QByteArray(header) + "2026-03-09,1,0,0,0,0,0\n");
}

TEST(StatsExport, a_day_that_is_not_whole_is_left_out_and_complained_of) {
    const char *const damaged[] = {
        R"("2026-03-10": {"micro": 1})",
        R"("2026-03-10": 7)",
        R"("2026-03-10": {"micro": 1.5, "long": 0, "planned": 0, "skipped": 0, "screenSeconds": 0, "breakSeconds": 0})",
        R"("2026-03-10": {"micro": 1, "long": 0, "planned": 0, "skipped": 0, "screenSeconds": 1e300, "breakSeconds": 0})",
        R"("2026-13-41": {"micro": 1, "long": 0, "planned": 0, "skipped": 0, "screenSeconds": 0, "breakSeconds": 0})",
        R"("": {"micro": 1, "long": 0, "planned": 0, "skipped": 0, "screenSeconds": 0, "breakSeconds": 0})",
    };
    for (const char *day : damaged) {
        const StatsExport made = exported(QByteArray("{") + day +
                                          R"(, "2026-03-09": {"micro": 2, "long": 0, "planned": 0,
                                              "skipped": 0, "screenSeconds": 0, "breakSeconds": 0}})");
        EXPECT_EQ(made.text, QByteArray(header) + "2026-03-09,2,0,0,0,0,0\n") << day;
        EXPECT_EQ(made.complaints.size(), 1) << day;
    }
}

TEST(StatsExport, statistics_that_cannot_be_read_are_complained_of) {
    const StoredEntry looks[] = {{QByteArray("{\"2026-03-09\": {"), false},
                                 {QByteArray("[]"), false},
                                 {QStringLiteral("text"), false},
                                 {{}, true}};
    for (const StoredEntry &entry : looks) {
        const StatsExport made = StatsExport::of(entry, Format::csv);
        EXPECT_EQ(made.text, header);
        EXPECT_EQ(made.complaints.size(), 1);
    }
}

} // namespace pavonel::test
