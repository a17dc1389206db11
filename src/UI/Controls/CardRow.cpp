#include "UI/Controls/CardRow.h"

#include "UI/Controls/Layouts.h"
#include "UI/Controls/Text.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"

#include <QPainter>

namespace pavonel {

namespace {

constexpr int lowest = 42;
constexpr int gap = 12;
constexpr int air = 7; // above and below texts
constexpr int betweenLines = 2;

} // namespace

CardRow::CardRow() : line_(line(this, {margin, 0, margin - FocusRing::room, 0}, gap - FocusRing::room)) {
    setMinimumHeight(visuals().lineHeight(lowest));
}

void CardRow::add(QWidget *widget) {
    line_->addWidget(widget);
}

void CardRow::addLines(const std::vector<QWidget *> &widgets) {
    auto *lines = column(nullptr, {0, air, FocusRing::room, air}, betweenLines);
    lines->addStretch();
    for (QWidget *widget : widgets)
        lines->addWidget(widget);
    lines->addStretch();
    line_->addLayout(lines, 1);
}

void CardRow::addLabel(const QString &label, const QString &note) {
    std::vector<QWidget *> texts{new Text(label, Text::Style::label)};
    if (!note.isEmpty())
        texts.push_back(new Text(note, Text::Style::note));
    addLines(texts);
}

void CardRow::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    drawHairline(painter, {margin, 0}, {double(width() - margin), 0}, visuals().palette().hairline);
}

} // namespace pavonel
