#include "support/OpenSettings.h"
#include "support/waitUntil.h"
#include "support/windows.h"

#include <QAbstractButton>
#include <QPointer>
#include <QScrollArea>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

struct SettingsWindow : testing::Test {
    OpenSettings open;

    QStringList headings() const {
        QStringList found;
        for (QAccessibleInterface *one : allBelow(QAccessible::queryAccessibleInterface(open.window()))) {
            if (one->role() == QAccessible::Heading)
                found.append(one->text(QAccessible::Name));
        }
        return found;
    }
    bool shows(const QString &title) const { return headings().contains(title); }

    void press(int key) {
        QWidget *target = open.window()->focusWidget();
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(target ? target : open.window(), &down);
        open.settle();
    }
};

/// A desktop whose user has text of so many times the ordinary size.
class LargeText {
public:
    explicit LargeText(double times = 2) : ordinary_(QApplication::font()) {
        QFont large = ordinary_;
        large.setPixelSize(qRound(15 * times));
        QApplication::setFont(large);
    }
    LargeText(const LargeText &) = delete;
    LargeText &operator=(const LargeText &) = delete;
    ~LargeText() { QApplication::setFont(ordinary_); }

private:
    QFont ordinary_;
};

enum class Sideways { never, asNeeded };

bool isScrolled(const QWidget &widget) {
    const auto *area =
        widget.parentWidget() ? qobject_cast<QScrollArea *>(widget.parentWidget()->parentWidget()) : nullptr;
    return area && area->widget() == &widget;
}

/// Nothing is cut off at a side by what it stands in, squeezed, or has less room than its lines take.
void expectAllInPlace(const QWidget &window, Sideways sideways = Sideways::never) {
    QApplication::processEvents();
    for (const QWidget *widget : window.findChildren<QWidget *>()) {
        if (!widget->isVisible())
            continue;
        const QByteArray name = widget->accessibleName().toUtf8();
        const bool mayReachOut = sideways == Sideways::asNeeded && isScrolled(*widget);
        if (!mayReachOut && !widget->isWindow()) {
            EXPECT_LE(widget->geometry().right(), widget->parentWidget()->rect().right()) << name.constData();
        }
        EXPECT_GE(widget->width(), widget->minimumSizeHint().width()) << name.constData();
        if (widget->hasHeightForWidth()) {
            EXPECT_GE(widget->height(), widget->heightForWidth(widget->width())) << name.constData();
        }
    }
}

/// All that the user can press or fill in comes to be seen at its whole width.
void expectAllWithinReach(QWidget &window) {
    for (QWidget *widget : window.findChildren<QWidget *>()) {
        QWidget *parent = widget->parentWidget();
        while (parent && !qobject_cast<QScrollArea *>(parent))
            parent = parent->parentWidget();
        auto *area = qobject_cast<QScrollArea *>(parent);
        const bool isControl = widget->focusPolicy() & Qt::TabFocus;
        const bool takesAllThereIs = widget->sizePolicy().horizontalPolicy() == QSizePolicy::Expanding;
        if (!area || !isControl || takesAllThereIs || !widget->isVisible() ||
            !area->widget()->isAncestorOf(widget))
            continue;
        area->ensureWidgetVisible(widget, 0, 0);
        const QRect seen(widget->mapTo(area->viewport(), QPoint(0, 0)), widget->size());
        EXPECT_GE(seen.left(), 0) << widget->accessibleName().toStdString();
        EXPECT_LT(seen.right(), area->viewport()->width()) << widget->accessibleName().toStdString();
    }
}

} // namespace

TEST_F(SettingsWindow, is_made_when_it_is_first_shown) {
    for (const QWidget *window : QApplication::topLevelWidgets())
        EXPECT_NE(window->windowTitle(), u"Pavonel"_s);
    open.show();
    EXPECT_NE(open.window(), nullptr);
}

TEST_F(SettingsWindow, is_800_by_560_points_and_centred) {
    open.show();
    EXPECT_EQ(open.window()->size(), QSize(800, 560));
    const QPoint off =
        open.window()->geometry().center() - open.window()->screen()->availableGeometry().center();
    EXPECT_LE(off.manhattanLength(), 2);
}

TEST_F(SettingsWindow, is_an_ordinary_window_that_can_be_closed_and_minimised) {
    open.show();
    EXPECT_EQ(open.window()->windowType(), Qt::Window);
    EXPECT_FALSE(open.window()->windowFlags() & Qt::FramelessWindowHint);
}

TEST_F(SettingsWindow, begins_with_the_breaks_page) {
    open.show();
    EXPECT_EQ(open.controller.selection.page, Page::breaks);
    EXPECT_TRUE(shows(u"Breaks"_s));
}

TEST_F(SettingsWindow, closing_only_hides_it) {
    open.show();
    const QPointer<QWidget> window = open.window();
    window->close();
    EXPECT_FALSE(window->isVisible());
    open.show();
    EXPECT_EQ(open.window(), window);
}

TEST_F(SettingsWindow, a_given_page_brings_a_hidden_window_back_with_that_page) {
    open.show();
    open.window()->close();
    open.show(Page::wellness);
    ASSERT_NE(open.window(), nullptr);
    EXPECT_TRUE(shows(u"Wellness"_s));
}

TEST_F(SettingsWindow, without_a_page_it_keeps_the_last_one) {
    open.show(Page::pausing);
    open.window()->close();
    open.show();
    EXPECT_TRUE(shows(u"Pausing"_s));
    EXPECT_EQ(open.controller.selection.page, Page::pausing);
}

TEST_F(SettingsWindow, a_page_given_while_it_is_shown_takes_the_place_of_the_other) {
    open.show(Page::pausing);
    open.show(Page::advanced);
    EXPECT_TRUE(shows(u"Advanced"_s));
    EXPECT_FALSE(shows(u"Pausing"_s));
}

TEST_F(SettingsWindow, comes_back_from_being_minimised) {
    open.show();
    open.window()->showMinimized();
    open.show();
    EXPECT_FALSE(open.window()->isMinimized());
    EXPECT_TRUE(open.window()->isVisible());
}

TEST_F(SettingsWindow, only_the_selected_page_exists_and_only_while_it_is_shown) {
    open.show(Page::wellness);
    QWidget *window = open.window();
    const auto all = window->findChildren<QWidget *>().size();
    open.show(Page::breaks);
    open.show(Page::wellness);
    EXPECT_EQ(window->findChildren<QWidget *>().size(), all);
    window->close();
    EXPECT_LT(window->findChildren<QWidget *>().size(), all / 2);
}

TEST_F(SettingsWindow, no_page_opens_a_window_of_its_own_while_it_is_built) {
    struct Watch : QObject {
        QStringList opened;
        bool eventFilter(QObject *watched, QEvent *event) override {
            auto *widget = qobject_cast<QWidget *>(watched);
            if (event->type() == QEvent::Show && widget && widget->isWindow())
                opened.append(widget->windowTitle());
            return false;
        }
    } watch;
    qApp->installEventFilter(&watch);
    open.settings.deepFocusApps = QStringList{u"org.example.quill"_s};
    for (const PageEntry &entry : allPages())
        open.show(entry.page);
    EXPECT_EQ(watch.opened, QStringList{u"Pavonel"_s});
}

TEST_F(SettingsWindow, the_selection_can_be_changed_from_elsewhere) {
    open.show();
    open.controller.selection.page = Page::advanced;
    open.settle();
    EXPECT_TRUE(shows(u"Advanced"_s));
}

TEST_F(SettingsWindow, the_sidebar_lists_the_pages_in_their_order_and_ends_with_the_product) {
    open.show();
    QStringList titles;
    for (QAccessibleInterface *one : allBelow(open.find(QAccessible::Grouping, u"Pages"_s))) {
        if (one->role() == QAccessible::RadioButton)
            titles.append(one->text(QAccessible::Name));
    }
    QStringList expected;
    for (const PageEntry &entry : allPages())
        expected.append(entry.title);
    EXPECT_EQ(titles, expected);
    EXPECT_EQ(open.texts().indexOf(u"Version 1.0"_s), open.texts().indexOf(u"Pavonel"_s) + 1);
}

TEST_F(SettingsWindow, the_sidebar_is_one_list_that_the_arrow_keys_go_through) {
    open.show();
    open.find(QAccessible::RadioButton, u"Breaks"_s)
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::setFocusAction());
    press(Qt::Key_Down);
    EXPECT_EQ(open.controller.selection.page, allPages()[1].page);
    press(Qt::Key_End);
    EXPECT_EQ(open.controller.selection.page, allPages().back().page);
    press(Qt::Key_Down);
    EXPECT_EQ(open.controller.selection.page, allPages().back().page);
    press(Qt::Key_Home);
    press(Qt::Key_Up);
    EXPECT_EQ(open.controller.selection.page, Page::breaks);
    EXPECT_TRUE(open.find(QAccessible::RadioButton, u"Breaks"_s)->state().checked);
}

TEST_F(SettingsWindow, the_tab_key_leads_to_every_control_in_reading_order) {
    open.show(Page::breaks);
    QWidget *window = open.window();
    QWidget *first = open.widget<QWidget>(QAccessible::RadioButton, u"Breaks"_s);
    first->setFocus(Qt::TabFocusReason);
    QStringList names;
    for (QWidget *at = first->nextInFocusChain(); at != first; at = at->nextInFocusChain()) {
        if ((at->focusPolicy() & Qt::TabFocus) && at->isVisible())
            names.append(at->accessibleName());
    }
    EXPECT_EQ(names,
              (QStringList{u"Enabled"_s, u"Every"_s, u"For"_s, u"Enabled"_s, u"Every"_s, u"For"_s,
                           u"Warn me before a break"_s, u"Countdown follows the cursor"_s,
                           u"Breaks can be skipped"_s, u"Breaks can be postponed"_s, u"Strict mode"_s}));
    EXPECT_EQ(window->focusWidget(), first);
}

TEST_F(SettingsWindow, follows_a_change_to_a_dark_desktop_and_to_another_accent) {
    open.show();
    const QImage light = open.window()->grab().toImage();
    open.platform.colours.change({true, false, {}});
    const QImage dark = open.window()->grab().toImage();
    EXPECT_GT(light.pixelColor(790, 300).lightness(), 200);
    EXPECT_LT(dark.pixelColor(790, 300).lightness(), 60);
    open.platform.colours.change({true, false, 0xC03020});
    EXPECT_NE(open.window()->grab().toImage(), dark);
}

TEST_F(SettingsWindow, strict_mode_leaves_the_switches_of_skipping_and_postponing_as_they_are) {
    open.settings.strictMode = true;
    open.show(Page::breaks);
    for (const auto &label : {u"Breaks can be skipped"_s, u"Breaks can be postponed"_s})
        EXPECT_TRUE(open.find(QAccessible::CheckBox, label)->state().checked);
    EXPECT_TRUE(open.settings.allowSkip);
    EXPECT_TRUE(open.settings.allowPostpone);
}

TEST_F(SettingsWindow, changes_are_live_at_once_and_saved_after_their_quiet_period) {
    open.show(Page::breaks);
    open.widget<QAbstractButton>(QAccessible::CheckBox, u"Strict mode"_s)->click();
    EXPECT_TRUE(open.settings.strictMode);
    open.settle();
    EXPECT_EQ(open.platform.fakeDefaults.values[u"strictMode"_s], StoredValue(true));
}

TEST_F(SettingsWindow, an_extension_has_a_switch_only_where_the_desktop_takes_one) {
    const auto control = [this] {
        return open.widget<QAbstractButton>(QAccessible::CheckBox, u"GNOME extension"_s);
    };
    open.show(Page::advanced);
    EXPECT_EQ(control(), nullptr);
    open.platform.extension.possible = true;
    open.show(Page::wellness);
    open.show(Page::advanced);
    ASSERT_NE(control(), nullptr);
    EXPECT_FALSE(control()->isChecked());
    control()->click();
    EXPECT_TRUE(open.platform.extension.on);
    control()->click();
    EXPECT_FALSE(open.platform.extension.on);
}

TEST_F(SettingsWindow, an_extension_that_is_switched_elsewhere_moves_its_switch) {
    auto &extension = open.platform.extension;
    extension.possible = true;
    open.show(Page::advanced);
    auto *control = open.widget<QAbstractButton>(QAccessible::CheckBox, u"GNOME extension"_s);
    extension.on = true;
    extension.changed();
    EXPECT_TRUE(control->isChecked());
    extension.reason = u"It is not installed."_s;
    extension.changed();
    EXPECT_FALSE(control->isEnabled());
}

TEST_F(SettingsWindow, an_extension_that_cannot_be_switched_has_a_pale_switch) {
    open.platform.extension.possible = true;
    open.platform.extension.reason = u"It is not installed."_s;
    open.show(Page::advanced);
    EXPECT_FALSE(open.widget<QWidget>(QAccessible::CheckBox, u"GNOME extension"_s)->isEnabled());
}

TEST_F(SettingsWindow, a_failure_of_the_login_item_is_told_under_its_switch) {
    open.show(Page::advanced);
    auto *control = open.widget<QAbstractButton>(QAccessible::CheckBox, u"Launch at login"_s);
    open.platform.login.failure = u"The disk is full."_s;
    control->click();
    open.settle();
    EXPECT_EQ(open.platform.login.requests, std::vector<bool>{false});
    EXPECT_TRUE(open.texts().contains(u"The disk is full."_s));
    EXPECT_FALSE(open.settings.launchAtLogin);
    open.platform.login.failure.reset();
    control->click();
    open.settle();
    EXPECT_FALSE(open.texts().contains(u"The disk is full."_s));
    EXPECT_TRUE(open.platform.login.enabled);
}

TEST_F(SettingsWindow, a_login_item_that_is_not_as_the_switch_says_is_told) {
    const QString words = u"At the moment Pavonel is not started at login."_s;
    open.platform.login.enabled = false;
    open.show(Page::advanced);
    EXPECT_TRUE(open.texts().contains(words));
    open.window()->close();
    open.platform.login.enabled = true;
    open.show(Page::advanced);
    EXPECT_FALSE(open.texts().contains(words));
}

TEST_F(SettingsWindow, shortcuts_that_another_program_owns_are_named) {
    open.platform.keys.refuses = true;
    open.hotKeys.registerBinding({2, 1, 0x1900, u"⌃⌥⌘S"_s, [] {}});
    open.platform.keys.refuses = false;
    open.hotKeys.registerBinding({1, 11, 0x1900, u"⌃⌥⌘B"_s, [] {}});
    open.show(Page::advanced);
    EXPECT_TRUE(open.texts().contains(u"⌃⌥⌘S cannot be had here; another program may own it."_s));
}

TEST_F(SettingsWindow, that_the_shortcuts_change_with_the_next_start_is_told) {
    open.hotKeys.registerBinding({1, 11, 0x1900, u"⌃⌥⌘B"_s, [] {}});
    open.show(Page::advanced);
    const QString words = u"They work until Pavonel is next started."_s;
    EXPECT_FALSE(open.texts().contains(words));
    open.settings.hotKeysEnabled = false;
    open.settle();
    EXPECT_TRUE(open.texts().contains(words));
}

TEST_F(SettingsWindow, stays_laid_out_at_its_smallest_and_at_a_large_size) {
    for (const PageEntry &entry : allPages()) {
        open.show(entry.page);
        for (const QSize size : {open.window()->minimumSize(), QSize(1900, 1000)}) {
            open.window()->resize(size);
            expectAllInPlace(*open.window());
        }
    }
}

/// Larger text in the desktop's settings makes everything that holds text larger.
TEST_F(SettingsWindow, no_text_is_clipped_with_large_fonts) {
    const LargeText large;
    OpenSettings settings;
    for (const PageEntry &entry : allPages()) {
        settings.show(entry.page);
        settings.window()->resize(1150, 600); // what a small notebook's screen has to give
        expectAllInPlace(*settings.window());
    }
}

TEST_F(SettingsWindow, no_page_is_cut_with_the_largest_text_in_a_small_window) {
    const LargeText largest(2.5);
    OpenSettings settings;
    settings.settings.plannedBreaks = {PlannedBreak{}, PlannedBreak{}};
    settings.settings.deepFocusApps = QStringList{u"org.example.Editor"_s};
    settings.settings.customBackgroundPath = u"/nowhere/at the sea.jpg"_s;
    for (const PageEntry &entry : allPages()) {
        settings.show(entry.page);
        settings.window()->resize(800, 560);
        SCOPED_TRACE(entry.title.toStdString());
        expectAllInPlace(*settings.window(), Sideways::asNeeded);
        expectAllWithinReach(*settings.window());
    }
}

TEST_F(SettingsWindow, is_larger_with_large_fonts_as_far_as_the_screen_goes) {
    const LargeText large;
    OpenSettings settings;
    settings.show();
    const QSize screen = settings.window()->screen()->availableSize();
    EXPECT_GT(settings.window()->height(), 560);
    EXPECT_LT(settings.window()->height(), screen.height());
    EXPECT_EQ(settings.window()->width(), 800) << "there is no more on the screen of the tests";
}

TEST_F(SettingsWindow, has_the_text_size_that_the_user_chose_since_it_was_closed) {
    const auto sidebarWidth = [this] {
        return open.widget<QWidget>(QAccessible::RadioButton, u"Appearance"_s)->width();
    };
    open.show();
    const int before = sidebarWidth();
    open.window()->close();
    {
        const LargeText large;
        open.show(Page::pausing);
        open.window()->resize(1150, 600);
        expectAllInPlace(*open.window());
        EXPECT_GT(sidebarWidth(), before);
        open.window()->close();
    }
    open.show();
    open.settle();
    EXPECT_EQ(sidebarWidth(), before);
    EXPECT_TRUE(open.find(QAccessible::RadioButton, u"Pausing"_s)->state().checked);
}

TEST_F(SettingsWindow, grows_with_the_text_while_it_is_shown) {
    const auto titleSize = [this] {
        return open.widget<QWidget>(QAccessible::Heading, u"Breaks"_s)->font().pixelSize();
    };
    open.show(Page::breaks);
    const int before = titleSize();
    {
        const LargeText large;
        EXPECT_TRUE(waitUntil([&] { return titleSize() == 2 * before; }));
        expectAllInPlace(*open.window());
    }
    EXPECT_TRUE(waitUntil([&] { return titleSize() == before; }));
}

} // namespace pavonel::test
