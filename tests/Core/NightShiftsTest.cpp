#include "support/NightShifts.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

std::unique_ptr<UserDefaults> storeInMemory(MainLoop &) {
    return std::make_unique<FakeDefaults>();
}

} // namespace

// Each holds one change of the clocks; the whole year is a fixture.

TEST(NightShifts, a_leap_day_is_worked_through) {
    const NightShifts shifts{"UTC", QDate(2028, 2, 27), 4};
    EXPECT_EQ(work(shifts, storeInMemory), expected(shifts));
}

TEST(NightShifts, a_night_of_23_hours_is_worked_through) {
    const NightShifts shifts{"Europe/Berlin", QDate(2028, 3, 24), 4};
    EXPECT_EQ(work(shifts, storeInMemory), expected(shifts));
}

TEST(NightShifts, a_night_of_25_hours_is_worked_through) {
    const NightShifts shifts{"America/New_York", QDate(2028, 11, 3), 4};
    EXPECT_EQ(work(shifts, storeInMemory), expected(shifts));
}

TEST(NightShifts, a_change_of_half_an_hour_is_worked_through) {
    const NightShifts shifts{"Australia/Lord_Howe", QDate(2028, 9, 29), 4};
    EXPECT_EQ(work(shifts, storeInMemory), expected(shifts));
}

TEST(NightShifts, a_month_of_nights_has_the_totals_that_it_must_have) {
    const NightShifts shifts{"Europe/Berlin", QDate(2028, 2, 26), 31};
    EXPECT_EQ(work(shifts, storeInMemory), expected(shifts));
}

} // namespace pavonel::test
