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
    explicit CardWidget(Visuals &visuals) : visuals_(visuals) {}

    QAccessibleInterface *makeAccessible() override {
        return new QAccessibleWidget(this, QAccessible::Grouping);
    }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        const Palette &palette = visuals_.palette();
        const QRectF body = QRectF(rect()).adjusted(FocusRing::room, 0, -FocusRing::room, -shadow);
        const bool dark = palette.text.lightnessF() > 0.5F;
        if (!dark)
            drawBody(painter, body.translated(0, shadow), radius, QColor(0, 0, 0, 9), Qt::transparent);
        drawBody(painter, body, radius, palette.card, palette.cardOutline);
    }

private:
    Visuals &visuals_;
};

QWidget *heading(Visuals &visuals, const Card &card) {
    auto *head = new QWidget;
    auto *lines = new QVBoxLayout(head);
    lines->setContentsMargins(CardRow::margin, 13, CardRow::margin, 9);
    lines->setSpacing(2);
    lines->addWidget(new Text(visuals, card.title, Text::Style::cardTitle));
    if (!card.subtitle.isEmpty())
        lines->addWidget(new Text(visuals, card.subtitle, Text::Style::cardSubtitle));
    return head;
}

} // namespace

QWidget *Card::make(Visuals &visuals) const {
    auto *card = new CardWidget(visuals);
    card->setAccessibleName(title);
    card->setAccessibleDescription(subtitle);
    auto *lines = new QVBoxLayout(card);
    lines->setContentsMargins(FocusRing::room, 0, FocusRing::room, air + shadow);
    lines->setSpacing(0);
    if (!title.isEmpty())
        lines->addWidget(heading(visuals, *this));
    for (const Element &element : content)
        lines->addWidget(element.make(visuals));
    return card;
}

} // namespace pavonel
