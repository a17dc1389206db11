#include "UI/SettingsWindow/Rows/Card.h"

#include "UI/Controls/CardRow.h"
#include "UI/Controls/FocusRing.h"
#include "UI/Controls/Pixels.h"
#include "UI/Controls/Text.h"

#include <QAccessibleWidget>
#include <QPainter>
#include <QVBoxLayout>

namespace pavonel {

namespace {

constexpr double radius = 12;
constexpr int shadow = 1; // points below the body
constexpr int air = 4;    // below the last row

class CardWidget final : public QWidget, public AccessibleControl {
public:
    explicit CardWidget(Look &look) : look_(look) {}

    QAccessibleInterface *makeAccessible() override {
        return new QAccessibleWidget(this, QAccessible::Grouping);
    }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        const Palette &palette = look_.palette();
        const QRectF body = QRectF(rect()).adjusted(FocusRing::room, 0, -FocusRing::room, -shadow);
        const bool dark = palette.text.lightnessF() > 0.5F;
        if (!dark)
            drawBody(painter, body.translated(0, shadow), radius, QColor(0, 0, 0, 9), Qt::transparent);
        drawBody(painter, body, radius, palette.card, palette.cardOutline);
    }

private:
    Look &look_;
};

QWidget *heading(Look &look, const Card &card) {
    auto *head = new QWidget;
    auto *lines = new QVBoxLayout(head);
    lines->setContentsMargins(CardRow::margin, 13, CardRow::margin, 9);
    lines->setSpacing(2);
    lines->addWidget(new Text(look, card.title, Text::Style::cardTitle));
    if (!card.subtitle.isEmpty())
        lines->addWidget(new Text(look, card.subtitle, Text::Style::cardSubtitle));
    return head;
}

} // namespace

QWidget *Card::make(Look &look) const {
    auto *card = new CardWidget(look);
    card->setAccessibleName(title);
    card->setAccessibleDescription(subtitle);
    auto *lines = new QVBoxLayout(card);
    lines->setContentsMargins(FocusRing::room, 0, FocusRing::room, air + shadow);
    lines->setSpacing(0);
    if (!title.isEmpty())
        lines->addWidget(heading(look, *this));
    for (const Element &element : content)
        lines->addWidget(element.make(look));
    return card;
}

} // namespace pavonel
