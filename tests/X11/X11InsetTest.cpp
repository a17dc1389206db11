#include "Platform/Inset.h"
#include "X11/LayeredWindows.h"

namespace pavonel::test {

namespace {

constexpr QColor moving(240, 220, 30);
constexpr QRect place(300, 200, 80, 60);

class X11InsetTest : public X11WindowLayersTest {
protected:
    X11InsetTest() {
        large = overlay(QtScreens().all().front());
        EXPECT_TRUE(getsPainted(*large));
        inset = layers.inset(*large->windowHandle(), place);
    }
    ~X11InsetTest() override {
        inset.reset();
        large.reset();
    }

    void fill(const QRect &part, const QColor &colour) {
        QPainter(&inset->picture()).fillRect(part, colour);
        inset->show(part);
    }
    static bool becomes(QPoint point, const QColor &colour) {
        return waitUntil([&] { return server().colourAt(point) == colour; });
    }

    std::unique_ptr<Layered> large;
    std::unique_ptr<Inset> inset;
};

} // namespace

TEST_F(X11InsetTest, shows_its_picture_in_its_place_in_the_window) {
    ASSERT_TRUE(inset);
    fill(inset->picture().rect(), moving);
    for (const QPoint corner : {place.topLeft(), place.bottomRight()})
        EXPECT_TRUE(becomes(corner, moving));
    EXPECT_TRUE(becomes(place.topLeft() - QPoint(1, 1), ours));
    EXPECT_TRUE(becomes(place.bottomRight() + QPoint(1, 1), ours));
}

TEST_F(X11InsetTest, nothing_is_seen_before_it_is_shown_and_all_of_it_the_first_time) {
    inset->picture().fill(moving);
    settle();
    EXPECT_TRUE(becomes(place.center(), ours));
    inset->show({0, 0, 1, 1});
    EXPECT_TRUE(becomes(place.bottomRight(), moving));
}

TEST_F(X11InsetTest, brings_only_the_part_that_changed) {
    fill(inset->picture().rect(), moving);
    ASSERT_TRUE(becomes(place.center(), moving));
    inset->picture().fill(theirs);
    inset->show({10, 10, 20, 20});
    EXPECT_TRUE(becomes(place.topLeft() + QPoint(10, 10), theirs));
    EXPECT_TRUE(becomes(place.topLeft() + QPoint(29, 29), theirs));
    EXPECT_TRUE(becomes(place.topLeft() + QPoint(30, 30), moving));
}

TEST_F(X11InsetTest, the_window_is_neither_painted_for_it_nor_over_it) {
    fill(inset->picture().rect(), moving);
    ASSERT_TRUE(becomes(place.center(), moving));
    large->repaint();
    const int paints = large->paints;
    settle();
    EXPECT_TRUE(becomes(place.center(), moving));
    fill({0, 0, 5, 5}, theirs);
    EXPECT_TRUE(becomes(place.topLeft(), theirs));
    EXPECT_EQ(large->paints, paints);
}

TEST_F(X11InsetTest, is_whole_again_when_what_covered_it_goes) {
    fill(inset->picture().rect(), moving);
    ASSERT_TRUE(becomes(place.center(), moving));
    settle();
    const auto locker = other.open({0, 0, 5760, 1080}, Qt::black, XClient::Kind::unmanaged);
    settle();
    other.raise(locker);
    ASSERT_TRUE(becomes(place.center(), Qt::black));
    fill({0, 0, 5, 5}, theirs); // while nobody sees it
    other.close(locker);
    EXPECT_TRUE(becomes(place.topLeft(), theirs));
    EXPECT_TRUE(becomes(place.center(), moving));
}

TEST_F(X11InsetTest, leaves_the_window_as_it_was_when_it_goes) {
    fill(inset->picture().rect(), moving);
    ASSERT_TRUE(becomes(place.center(), moving));
    large->repaint();
    inset.reset();
    EXPECT_TRUE(becomes(place.center(), ours));
}

TEST_F(X11InsetTest, leaves_clicks_to_the_window) {
    fill(inset->picture().rect(), moving);
    ASSERT_TRUE(becomes(place.center(), moving));
    server().xdotool({QStringLiteral("mousemove"), QString::number(place.center().x()),
                      QString::number(place.center().y()), QStringLiteral("click"), QStringLiteral("1")});
    EXPECT_TRUE(waitUntil([&] { return large->clicks == 1; }));
}

TEST_F(X11InsetTest, may_be_shown_in_a_window_that_is_gone) {
    fill(inset->picture().rect(), moving);
    large.reset();
    fill(inset->picture().rect(), theirs);
    inset.reset();
    settle();
    EXPECT_TRUE(connection->isAlive());
}

} // namespace pavonel::test
