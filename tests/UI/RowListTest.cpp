#include "UI/SettingsWindow/Rows/RowList.h"

#include "UI/Controls/Button.h"
#include "UI/Controls/ScrollArea.h"
#include "support/FakePlatform.h"
#include "support/Printing.h"
#include "support/Styled.h"
#include "support/windows.h"

#include <QApplication>
#include <QScrollBar>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr int height = 40;

class RowListTest : public ::testing::Test {
protected:
    FakePlatform platform;
    Styled styled{platform};
    QStringList made;
    RowList *rows = new RowList(height, [this](const QString &key) {
        made.append(key);
        return Button::ofSymbol(QStringLiteral("plus"), key);
    });
    QWidget window;
    ScrollArea *area = nullptr;

    RowListTest() {
        auto *column = new QWidget;
        auto *lines = new QVBoxLayout(column);
        lines->setContentsMargins({});
        lines->addWidget(rows);
        lines->addStretch();
        area = new ScrollArea(column);
        auto *whole = new QVBoxLayout(&window);
        whole->setContentsMargins({});
        whole->addWidget(area);
        window.resize(300, 400);
        window.show();
        window.activateWindow();
        QApplication::processEvents();
    }

    static QStringList numbered(int count) {
        QStringList keys;
        for (int index = 0; index < count; ++index)
            keys.append(QString::number(index));
        return keys;
    }

    void show(const QStringList &keys) {
        rows->setKeys(keys);
        QApplication::processEvents(); // the list tells the column,
        QApplication::processEvents(); // the column tells what scrolls it
    }

    int existing() const { return static_cast<int>(childrenOf<Button>(rows).size()); }

    void scrollTo(int y) {
        area->verticalScrollBar()->setValue(y);
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

} // namespace

TEST_F(RowListTest, makes_every_row_of_a_short_list_and_keeps_their_order) {
    show(numbered(20));
    for (std::size_t index = 0; index < 20; ++index) {
        ASSERT_NE(rows->rowAt(index), nullptr);
        EXPECT_EQ(rows->rowAt(index)->y(), static_cast<int>(index) * height);
    }
}

TEST_F(RowListTest, of_a_long_list_makes_only_the_rows_near_the_visible_part) {
    show(numbered(1000));
    EXPECT_EQ(rows->height(), 1000 * height);
    EXPECT_LT(existing(), 40);
    scrollTo(500 * height);
    ASSERT_NE(rows->rowAt(505), nullptr);
    EXPECT_TRUE(rows->rowAt(505)->isVisible());
    EXPECT_EQ(rows->rowAt(0), nullptr);
    EXPECT_LT(existing(), 100);
}

TEST_F(RowListTest, makes_no_row_of_a_long_list_before_it_is_shown) {
    QWidget page;
    RowList unseen(height, [](const QString &) { return new QWidget; });
    unseen.setParent(&page);
    unseen.setKeys(numbered(1000));
    for (std::size_t index = 0; index < 1000; ++index)
        ASSERT_EQ(unseen.rowAt(index), nullptr);
}

TEST_F(RowListTest, keeps_a_row_for_as_long_as_its_key_is_there) {
    show(numbered(5));
    const QWidget *third = rows->rowAt(2);
    show({QStringLiteral("new"), QStringLiteral("2"), QStringLiteral("0")});
    EXPECT_EQ(rows->rowAt(1), third);
    EXPECT_EQ(third->y(), height);
    EXPECT_EQ(made.count(QStringLiteral("2")), 1);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(existing(), 3);
}

TEST_F(RowListTest, keeps_the_row_with_the_keyboard_however_far_it_is) {
    show(numbered(1000));
    rows->rowAt(1)->setFocus(Qt::TabFocusReason);
    scrollTo(800 * height);
    ASSERT_NE(rows->rowAt(1), nullptr);
    EXPECT_EQ(window.focusWidget(), rows->rowAt(1));
}

TEST_F(RowListTest, leads_the_keyboard_through_the_rows_in_their_order) {
    show(numbered(1000));
    scrollTo(500 * height);
    scrollTo(480 * height); // rows above those that exist are made last
    std::vector<QWidget *> order;
    for (QWidget *stop = rows->nextInFocusChain(); stop != rows; stop = stop->nextInFocusChain()) {
        if (rows->isAncestorOf(stop))
            order.push_back(stop);
    }
    ASSERT_GT(order.size(), 20U);
    EXPECT_TRUE(std::ranges::is_sorted(order, {}, [](const QWidget *row) { return row->y(); }));
}

TEST_F(RowListTest, hands_the_keyboard_on_when_its_row_goes) {
    show(numbered(5));
    rows->rowAt(2)->setFocus(Qt::TabFocusReason);
    show({QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("3"), QStringLiteral("4")});
    EXPECT_EQ(window.focusWidget(), rows->rowAt(2));
}

TEST_F(RowListTest, takes_no_room_while_it_is_empty) {
    show(numbered(5));
    show({});
    EXPECT_FALSE(rows->isVisible());
    show(numbered(1));
    EXPECT_TRUE(rows->isVisible());
    EXPECT_EQ(rows->height(), height);
}

} // namespace pavonel::test
