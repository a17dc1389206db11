#include "UI/Controls/Button.h"
#include "UI/SettingsWindow/Rows/Rows.h"
#include "UI/Style/FocusRing.h"
#include "support/OpenSettings.h"

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

struct SettingsFinish : testing::Test {
    OpenSettings open;

    /// Where the widget ends, from the left of the window.
    int rightOf(const QWidget &widget) const {
        return widget.mapTo(open.window(), QPoint(widget.width(), 0)).x();
    }
    QWidget &widget(QAccessible::Role role, const QString &name) const {
        auto *found = open.widget<QWidget>(role, name);
        EXPECT_NE(found, nullptr) << qPrintable(name);
        return *found;
    }
};

int darkest(QWidget &row) {
    const QImage picture = row.grab().toImage();
    int lightness = 255;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            lightness = std::min(lightness, picture.pixelColor(x, y).lightness());
    }
    return lightness;
}

} // namespace

TEST_F(SettingsFinish, the_symbols_and_controls_at_the_right_end_at_one_edge) {
    const int air = besideSymbol();
    open.scenario.plan(12, 30, 1800);
    open.show(Page::planned);
    const int edge = rightOf(widget(QAccessible::SpinBox, u"Duration"_s)) - FocusRing::room;
    EXPECT_EQ(rightOf(widget(QAccessible::Button, u"Remove Lunch"_s)) - air, edge);
    open.settings.messages = QStringList{u"Look up"_s};
    open.show(Page::appearance);
    EXPECT_EQ(rightOf(widget(QAccessible::Button, u"Remove Look up"_s)) - air, edge);
    EXPECT_EQ(rightOf(widget(QAccessible::Button, u"Add the message"_s)) - air, edge);
    open.updater.state = Updater::Downloading{0.5};
    open.show(Page::advanced);
    EXPECT_EQ(rightOf(widget(QAccessible::ProgressBar, u"Download"_s)), edge);
    EXPECT_EQ(rightOf(widget(QAccessible::CheckBox, u"Check automatically"_s)) - FocusRing::room, edge);
}

TEST_F(SettingsFinish, the_update_card_keeps_its_height_from_state_to_state) {
    open.show(Page::advanced);
    const auto height = [&](const Updater::State &state) {
        open.updater.state = state;
        open.settle();
        QApplication::processEvents();
        return widget(QAccessible::Grouping, u"Updates"_s).height();
    };
    const int idle = height(Updater::Idle{});
    EXPECT_EQ(height(Updater::Checking{}), idle);
    EXPECT_EQ(height(Updater::Downloading{0.1}), idle);
    EXPECT_EQ(height(Updater::ReadyToRestart{}), idle);
    EXPECT_EQ(height(Updater::UpToDate{}), idle);
}

TEST_F(SettingsFinish, a_disabled_row_is_pale_as_a_whole) {
    bool on = true;
    double seconds = 60;
    QString text = u"Tea"_s;
    const ValueBinding<bool> isOn([&] { return on; }, [&](bool value) { on = value; });
    const ValueBinding<double> value([&] { return seconds; }, [&](double to) { seconds = to; });
    const ValueBinding<QString> words([&] { return text; }, [&](const QString &to) { text = to; });
    const QWidgetList rows{switchRow(u"Enabled"_s, isOn, u"A note"_s),
                           stepRow(u"Every"_s, value, {0, 120}, 60),
                           pickerRow(u"Break starts"_s, words, {u"Tea"_s}), labeledField(u"Script"_s, words)};
    for (QWidget *each : rows) {
        const std::unique_ptr<QWidget> row(each);
        row->setPalette(visuals().toolkitPalette());
        row->resize(400, 80);
        EXPECT_LT(darkest(*row), 60);
        row->setEnabled(false);
        EXPECT_GT(darkest(*row), 110);
    }
}

} // namespace pavonel::test
