#include "UI/Style/Style.h"

#include "support/FakePlatform.h"

#include <QMenu>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// A menu as the tray shows it, in our style.
struct StyledMenu {
    explicit StyledMenu(FakePlatform &platform) : style(platform) {
        menu.setStyle(&style);
        menu.addAction(QStringLiteral("Micro break: 19:58"))->setEnabled(false);
        menu.addSeparator();
        menu.addAction(QStringLiteral("Take a micro break"))
            ->setShortcut(QKeySequence(QStringLiteral("Ctrl+b")));
        menu.addMenu(QStringLiteral("Pause"));
    }

    QImage picture() {
        menu.ensurePolished();
        menu.resize(menu.sizeHint());
        return menu.grab().toImage();
    }

    /// The colour in a line that stands out most from the material.
    QColor ink(int line) {
        const QImage image = picture();
        const QRect rect = menu.actionGeometry(menu.actions().at(line));
        const QColor material = image.pixelColor(rect.topLeft() + QPoint(3, 3));
        QColor farthest = material;
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            for (int x = rect.left(); x <= rect.right(); ++x) {
                const QColor here = image.pixelColor(x, y);
                if (contrast(here, material) > contrast(farthest, material))
                    farthest = here;
            }
        }
        return farthest;
    }
    QColor material() { return picture().pixelColor(3, 3); }

    Style style;
    QMenu menu;
};

constexpr double readable = 4.5;

} // namespace

TEST(Style, every_line_of_a_menu_can_be_read_light_and_dark) {
    for (const bool dark : {false, true}) {
        FakePlatform platform;
        platform.colours.current.dark = dark;
        StyledMenu styled(platform);
        EXPECT_EQ(styled.material().lightness() < 128, dark);
        for (const int line : {0, 2, 3})
            EXPECT_GE(contrast(styled.ink(line), styled.material()), readable)
                << line << (dark ? " dark" : " light");
    }
}

TEST(Style, a_menu_has_our_type) {
    FakePlatform platform;
    StyledMenu styled(platform);
    styled.picture();
    EXPECT_EQ(styled.menu.font().family(), Visuals(platform).font(13).family());
    EXPECT_EQ(styled.menu.font().pixelSize(), Visuals(platform).font(13).pixelSize());
}

TEST(Style, the_chosen_line_stands_out) {
    FakePlatform platform;
    StyledMenu styled(platform);
    const QImage before = styled.picture();
    styled.menu.setActiveAction(styled.menu.actions().at(2));
    EXPECT_NE(styled.picture(), before);
}

} // namespace pavonel::test
