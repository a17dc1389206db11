#include "UI/Theme.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

struct Row {
    int id;
    const char *name;
    double first[3];
    double last[3];
};

constexpr Row table[]{
    {0, "Night", {0.05, 0.07, 0.13}, {0.10, 0.13, 0.24}},
    {1, "Dusk", {0.16, 0.11, 0.28}, {0.39, 0.18, 0.33}},
    {2, "Forest", {0.04, 0.16, 0.14}, {0.08, 0.29, 0.24}},
    {3, "Ocean", {0.03, 0.14, 0.24}, {0.05, 0.31, 0.42}},
    {4, "Sand", {0.26, 0.18, 0.12}, {0.45, 0.31, 0.19}},
    {5, "Plain black", {0, 0, 0}, {0, 0, 0}},
};

void expectColor(const QColor &color, const double (&wanted)[3]) {
    constexpr double exact = 1e-4;
    EXPECT_NEAR(color.redF(), wanted[0], exact);
    EXPECT_NEAR(color.greenF(), wanted[1], exact);
    EXPECT_NEAR(color.blueF(), wanted[2], exact);
    EXPECT_EQ(color.alphaF(), 1);
}

} // namespace

TEST(Theme, there_are_six_with_their_names_and_colours_in_this_order) {
    ASSERT_EQ(Theme::gradients().size(), std::size(table));
    for (std::size_t i = 0; i < std::size(table); ++i) {
        const Background &theme = Theme::gradients()[i];
        SCOPED_TRACE(table[i].name);
        EXPECT_EQ(theme.id, table[i].id);
        EXPECT_EQ(theme.name, QString::fromUtf8(table[i].name));
        expectColor(theme.colors.front(), table[i].first);
        expectColor(theme.colors.back(), table[i].last);
    }
}

TEST(Theme, the_list_is_never_empty) {
    EXPECT_FALSE(Theme::gradients().empty());
}

TEST(Theme, a_number_below_the_list_names_night_and_one_above_it_plain_black) {
    EXPECT_EQ(Theme::gradient(-3).name, QStringLiteral("Night"));
    EXPECT_EQ(Theme::gradient(99).name, QStringLiteral("Plain black"));
    EXPECT_EQ(Theme::gradient(std::numeric_limits<int>::min()).id, 0);
    EXPECT_EQ(Theme::gradient(std::numeric_limits<int>::max()).id, 5);
}

TEST(Theme, a_number_in_the_list_names_its_position) {
    for (int style = 0; style < 6; ++style)
        EXPECT_EQ(Theme::gradient(style).id, style);
}

} // namespace pavonel::test
