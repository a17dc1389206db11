#include "UI/Panels/FloatingCountdownController.h"
#include "UI/Panels/HeadsUpController.h"
#include "UI/Panels/ToastController.h"
#include "support/Scenario.h"
#include "support/Styled.h"

#include <QApplication>
#include <QPainter>

/// draw_panels PICTURE: the heads-up of each kind, the countdown and the toast, light and dark, at the ratio
/// of the environment's QT_SCALE_FACTOR.
namespace {

using namespace pavonel;
using test::Scenario;

constexpr int margin = 28;
constexpr int column = 380 + margin;

class Sheet {
public:
    explicit Sheet(QSize size) : picture_(size * qApp->devicePixelRatio(), QImage::Format_RGB32) {
        picture_.setDevicePixelRatio(qApp->devicePixelRatio());
        QLinearGradient desktop(0, 0, size.width(), size.height());
        desktop.setColorAt(0, QColor(0x8F, 0xB3, 0xC9));
        desktop.setColorAt(1, QColor(0xD9, 0xC7, 0xB0));
        QPainter painter(&picture_);
        painter.fillRect(QRect({}, size), desktop);
    }

    /// Puts whatever panel of this title is shown at the next place of the column.
    void take(const QString &title) {
        for (QWidget *window : QApplication::topLevelWidgets()) {
            if (window->windowTitle() != title || !window->isEnabled())
                continue;
            draw(*window, place_ - window->contentsRect().topLeft());
            place_.ry() += window->contentsRect().height() + margin;
        }
    }

    void nextColumn() { place_ = {place_.x() + column, margin}; }
    bool save(const QString &file) const { return picture_.save(file); }

private:
    void draw(QWidget &window, QPoint place) {
        QPixmap shot(window.size() * qApp->devicePixelRatio());
        shot.setDevicePixelRatio(qApp->devicePixelRatio());
        shot.fill(Qt::transparent);
        window.render(&shot, {}, {}, QWidget::DrawChildren);
        QPainter(&picture_).drawPixmap(place, shot);
    }

    QImage picture_;
    QPoint place_{margin, margin};
};

enum class Strictness { lenient, strict };

void drawHeadsUp(Sheet &sheet, Scenario &scenario, BreakKind kind, const QString &title,
                 Strictness strictness) {
    scenario.settings.strictMode = strictness == Strictness::strict;
    HeadsUpController headsUp(scenario.platform, scenario.platform.notices, scenario.controller,
                              scenario.settings);
    headsUp.show(kind, title);
    scenario.platform.loop.advance(0);
    sheet.take(QStringLiteral("Pavonel Heads-up"));
}

void drawColumn(Sheet &sheet, Scenario &scenario) {
    drawHeadsUp(sheet, scenario, BreakKind::micro, QStringLiteral("Micro break"), Strictness::lenient);
    drawHeadsUp(sheet, scenario, BreakKind::long_, QStringLiteral("Long break"), Strictness::strict);
    drawHeadsUp(sheet, scenario, BreakKind::planned,
                QStringLiteral("A long lunch with the people from the office upstairs"), Strictness::lenient);
    FloatingCountdownController countdown(scenario.platform, scenario.platform.mouse, scenario.controller);
    countdown.show();
    sheet.take(QStringLiteral("Pavonel Countdown"));
    ToastController toast(scenario.platform, scenario.platform.notices);
    toast.show(QStringLiteral("Check your posture — shoulders back, screen at eye level."),
               QStringLiteral("figure.stand"));
    sheet.take(QStringLiteral("Pavonel Toast"));
    toast.hide();
    scenario.platform.loop.advance(1);
    toast.show(QStringLiteral("Blink slowly a few times."), QStringLiteral("eye"));
    sheet.take(QStringLiteral("Pavonel Toast"));
}

} // namespace

int main(int argc, char **argv) {
    QApplication application(argc, argv);
    if (argc != 2)
        return 2;
    Scenario scenario;
    const test::Styled styled(scenario.platform);
    scenario.advance(1176);
    Sheet sheet({2 * column + margin, 710});
    for (const bool dark : {false, true}) {
        scenario.platform.colours.change({dark, false, {}});
        drawColumn(sheet, scenario);
        sheet.nextColumn();
    }
    return sheet.save(QString::fromLocal8Bit(argv[1])) ? 0 : 1;
}
