#include "UI/SettingsWindow/Pages/Stats/WeekChart.h"

#include "support/FakePlatform.h"
#include "support/Printing.h"
#include "support/Styled.h"
#include "support/waitUntil.h"

#include <QAccessible>
#include <QApplication>
#include <QHoverEvent>

#include <limits>
#include <utility>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

constexpr Seconds hour = 3600;

Day day(Seconds screen, Seconds breaks) {
    Day record;
    record.screenSeconds = screen;
    record.breakSeconds = breaks;
    return record;
}

class WeekChartTest : public ::testing::Test {
protected:
    FakePlatform platform;
    Styled styled{platform};
    WeekChart chart;

    WeekChartTest() { chart.resize(516, chart.sizeHint().height()); }

    void show(const std::vector<Day> &days) {
        const QStringList names{u"Mon"_s, u"Tue"_s, u"Wed"_s, u"Thu"_s, u"Fri"_s, u"Sat"_s, u"Sun"_s};
        std::vector<LabelledDay> week;
        for (const Day &record : days)
            week.push_back({names[static_cast<qsizetype>(week.size())], record});
        chart.setDays(week);
    }
};

constexpr Seconds infinite = std::numeric_limits<Seconds>::infinity();
constexpr Seconds notANumber = std::numeric_limits<Seconds>::quiet_NaN();

} // namespace

TEST_F(WeekChartTest, draws_all_days_at_one_scale) {
    show({day(8 * hour, hour), day(4 * hour, hour), day(2 * hour, 0)});
    const double eight = chart.bar(0).screen.height();
    EXPECT_GT(eight, 60);
    EXPECT_NEAR(chart.bar(1).screen.height(), eight / 2, 1);
    EXPECT_NEAR(chart.bar(2).screen.height(), eight / 4, 1);
    EXPECT_NEAR(chart.bar(0).breaks.height(), eight / 8, 1);
}

TEST_F(WeekChartTest, stands_a_bar_upon_its_breaks) {
    show({day(8 * hour, hour), day(8 * hour, 0)});
    EXPECT_LT(chart.bar(0).screen.bottom(), chart.bar(0).breaks.top());
    EXPECT_EQ(chart.bar(1).screen.bottom(), chart.bar(0).breaks.bottom()) << "without breaks upon the ground";
}

TEST_F(WeekChartTest, keeps_its_days_side_by_side_within_its_width) {
    show(std::vector<Day>(7, day(hour, hour)));
    for (std::size_t index = 0; index < 7; ++index) {
        EXPECT_TRUE(QRectF(chart.rect()).contains(chart.bar(index).screen)) << index;
        if (index > 0) {
            EXPECT_GT(chart.bar(index).screen.left(), chart.bar(index - 1).screen.right());
        }
    }
}

TEST_F(WeekChartTest, a_day_that_has_little_can_still_be_seen_beside_a_giant_one) {
    show({day(20 * hour, 2 * hour), day(60, 20), day(0, 0)});
    EXPECT_GE(chart.bar(1).screen.height(), 3);
    EXPECT_GE(chart.bar(1).breaks.height(), 3);
    EXPECT_EQ(chart.bar(2).screen.height(), 0);
    EXPECT_TRUE(QRectF(chart.rect()).contains(chart.bar(0).screen));
}

TEST_F(WeekChartTest, the_first_minutes_of_a_week_do_not_fill_it) {
    show({day(5 * 60, 20)});
    EXPECT_LT(chart.bar(0).screen.height(), 20);
}

TEST_F(WeekChartTest, draws_nonsense_as_the_nearest_time_that_a_day_can_have) {
    show({day(-5, -1), day(notANumber, notANumber), day(1e300, infinite), day(hour, 60)});
    for (std::size_t index = 0; index < 4; ++index) {
        EXPECT_TRUE(QRectF(chart.rect()).contains(chart.bar(index).screen) ||
                    chart.bar(index).screen.isEmpty());
        EXPECT_GE(chart.bar(index).breaks.height(), 0);
    }
    EXPECT_FALSE(chart.grab().isNull());
    EXPECT_TRUE(chart.accessibleDescription().startsWith(u"Monday: 0s at the screen, 0s on breaks. "_s));
}

TEST_F(WeekChartTest, without_days_is_an_empty_chart) {
    show({});
    EXPECT_FALSE(chart.grab().isNull());
    EXPECT_EQ(chart.accessibleDescription(), QString());
}

TEST_F(WeekChartTest, tells_a_screen_reader_of_every_day_in_a_sentence) {
    show({day(5.5 * hour, 20 * 60), day(0, 0)});
    EXPECT_EQ(chart.accessibleDescription(),
              u"Monday: 5h 30m at the screen, 20m on breaks. Tuesday: 0s at the screen, 0s on breaks."_s);
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(&chart);
    EXPECT_EQ(accessible->role(), QAccessible::Chart);
    EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty());
}

TEST_F(WeekChartTest, shows_the_figures_of_the_day_under_the_pointer) {
    show({day(5 * hour, hour), day(3 * hour, hour)});
    const QImage before = chart.grab().toImage();
    const QPointF within = chart.bar(0).screen.center();
    QHoverEvent enter(QEvent::HoverMove, within, within, QPointF(-1, -1));
    QApplication::sendEvent(&chart, &enter);
    EXPECT_NE(chart.grab().toImage(), before);
    QHoverEvent leave(QEvent::HoverLeave, QPointF(-1, -1), QPointF(-1, -1), within);
    QApplication::sendEvent(&chart, &leave);
    EXPECT_EQ(chart.grab().toImage(), before);
}

TEST_F(WeekChartTest, keeps_telling_of_the_day_under_the_pointer_while_time_is_counted) {
    show({day(5 * hour, hour), day(3 * hour, hour)});
    const QPointF within = chart.bar(1).screen.center();
    QHoverEvent enter(QEvent::HoverMove, within, within, QPointF(-1, -1));
    QApplication::sendEvent(&chart, &enter);
    const QImage before = chart.grab().toImage();
    show({day(5 * hour, hour), day(3 * hour + 1, hour)});
    EXPECT_EQ(chart.grab().toImage(), before);
    show({day(5 * hour, hour), day(3 * hour + 60, hour)});
    EXPECT_NE(chart.grab().toImage(), before) << "a minute more is told";
    show({day(5 * hour, hour)});
    EXPECT_FALSE(chart.grab().isNull()) << "that day is no more";
}

TEST_F(WeekChartTest, is_not_painted_anew_for_what_cannot_be_seen) {
    struct Paints : QObject {
        int count = 0;
        bool eventFilter(QObject *, QEvent *event) override {
            count += event->type() == QEvent::Paint;
            return false;
        }
    } paints;
    chart.installEventFilter(&paints);
    show({day(5 * hour, hour)});
    chart.show();
    int before = 0;
    waitUntil([&] { return paints.count > 0 && std::exchange(before, paints.count) == paints.count; });
    show({day(5 * hour + 1, hour)});
    QApplication::processEvents();
    EXPECT_EQ(paints.count, before);
    show({day(5 * hour + 60, hour)});
    QApplication::processEvents();
    EXPECT_EQ(paints.count, before + 1);
}

} // namespace pavonel::test
