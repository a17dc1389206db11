#include "Core/CalendarText.h"

#include <QLocale>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

TEST(CalendarText, begins_with_the_first_day_of_the_users_week) {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(weekdaysInOrder(), (std::vector<int>{1, 2, 3, 4, 5, 6, 7}));
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(weekdaysInOrder(), (std::vector<int>{2, 3, 4, 5, 6, 7, 1}));
    EXPECT_EQ(weekdayName(2), u"Monday"_s);
    QLocale::setDefault(QLocale::c());
}

TEST(CalendarText, completes_an_abbreviated_weekday) {
    EXPECT_EQ(weekdayOf(u"Mon"_s), u"Monday"_s);
    EXPECT_EQ(weekdayOf(u"Sun"_s), u"Sunday"_s);
    EXPECT_EQ(weekdayOf(u"Today"_s), u"Today"_s);
}

TEST(CalendarText, writes_hours_as_the_users_clock_shows_them) {
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(hourText(9), u"09"_s);
    EXPECT_EQ(hourText(23), u"23"_s);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(hourText(0), u"12 AM"_s);
    EXPECT_EQ(hourText(9), u"9 AM"_s);
    EXPECT_EQ(hourText(12), u"12 PM"_s);
    EXPECT_EQ(hourText(23), u"11 PM"_s);
    EXPECT_EQ(hourText(99), u"99"_s);
    QLocale::setDefault(QLocale::c());
}

} // namespace pavonel::test
