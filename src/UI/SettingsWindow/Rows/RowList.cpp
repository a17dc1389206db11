#include "UI/SettingsWindow/Rows/RowList.h"

#include "UI/Controls/Accessibility.h"

#include <QCoreApplication>
#include <QHash>
#include <QResizeEvent>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace pavonel {

namespace {

constexpr std::size_t short_ = 30; // rows that may as well exist all

/// Hidden first, so that the keyboard moves on to what is next.
void drop(QWidget *row) {
    row->hide();
    row->deleteLater();
}

} // namespace

RowList::RowList(Height rowHeight, Make make)
    : heightAt_(std::move(rowHeight)), make_(std::move(make)), chainBegin_(new QWidget(this)) {
    chainBegin_->setFocusPolicy(Qt::TabFocus); // else it has no place in that order
    chainBegin_->hide();
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setAccessibleRole(*this, QAccessible::List);
}

void RowList::setKeys(const QStringList &keys) {
    if (keys == keys_)
        return;
    QHash<QString, QWidget *> existing;
    for (std::size_t index = 0; index < rows_.size(); ++index) {
        if (rows_[index])
            existing.insert(keys_[static_cast<qsizetype>(index)], rows_[index]);
    }
    keys_ = keys;
    rows_.clear();
    for (const QString &key : keys_)
        rows_.push_back(existing.take(key));
    for (QWidget *row : existing)
        drop(row);
    setVisible(!keys_.isEmpty());
    updateGeometry();
    arrange();
    update();
}

int RowList::heightForWidth(int width) const {
    return heightAt_(width) * static_cast<int>(keys_.size());
}

QSize RowList::sizeHint() const {
    return {200, heightForWidth(width())};
}

QSize RowList::minimumSizeHint() const {
    int width = 0;
    for (const QWidget *row : rows_)
        width = std::max(width, row ? row->minimumSizeHint().width() : 0);
    return {width, sizeHint().height()};
}

void RowList::showEvent(QShowEvent *) {
    follow();
    arrange();
}

void RowList::resizeEvent(QResizeEvent *event) {
    if (event->size().width() != event->oldSize().width())
        updateGeometry(); // its height follows from it
    arrange();
}

void RowList::follow() {
    if (area_)
        return;
    for (QWidget *parent = parentWidget(); parent && !area_; parent = parent->parentWidget())
        area_ = qobject_cast<QScrollArea *>(parent);
    if (!area_)
        return;
    connect(area_->verticalScrollBar(), &QScrollBar::valueChanged, this, &RowList::arrange);
    connect(area_->verticalScrollBar(), &QScrollBar::rangeChanged, this, &RowList::arrange);
}

RowList::Span RowList::nearby(int heights) const {
    if (rows_.size() <= short_ || (!area_ && isVisible()))
        return {0, rows_.size()};
    if (!area_)
        return {0, 0}; // it is not known yet where it will stand
    const QWidget *viewport = area_->viewport();
    const int top = mapFrom(viewport, QPoint(0, 0)).y();
    const int margin = heights * viewport->height();
    const int high = rowHeight();
    const auto rowAt = [this, high](int y) {
        return std::min(static_cast<std::size_t>(std::max(0, y / high)), rows_.size());
    };
    return {rowAt(top - margin), rowAt(top + viewport->height() + margin + high)};
}

void RowList::arrange() {
    const Span wanted = nearby(1);
    const Span kept = nearby(3);
    const QWidget *focused = window()->focusWidget();
    bool grown = false;
    for (std::size_t index = 0; index < rows_.size(); ++index) {
        QWidget *&row = rows_[index];
        if (!row && wanted.contains(index)) {
            make(index);
            grown = true;
        } else if (row && !kept.contains(index) && row != focused && !row->isAncestorOf(focused)) {
            drop(std::exchange(row, nullptr));
        } else if (row) {
            place(index);
        }
    }
    if (grown)
        putInOrder();
}

void RowList::place(std::size_t index) {
    const int high = rowHeight();
    rows_[index]->setGeometry(0, static_cast<int>(index) * high, width(), high);
}

void RowList::make(std::size_t index) {
    rows_[index] = make_(keys_[static_cast<qsizetype>(index)]);
    rows_[index]->setParent(this);
    place(index);
    rows_[index]->show();
    updateGeometry();
}

QWidget &RowList::reveal(std::size_t index) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest); // it is as long now as it says
    if (!rows_[index])
        make(index);
    if (area_)
        area_->ensureWidgetVisible(rows_[index], 0, 0);
    return *rows_[index];
}

/// The keyboard and screen readers go through the rows in their order, not in that of their making.
void RowList::putInOrder() {
    QWidget *previous = chainBegin_;
    for (QWidget *row : rows_) {
        if (!row)
            continue;
        row->raise();
        QWidgetList stops = row->findChildren<QWidget *>();
        stops.prepend(row);
        for (QWidget *stop : stops) {
            if (!(stop->focusPolicy() & Qt::TabFocus) || stop->window() != window()) // such as an opened list
                continue;
            setTabOrder(previous, stop);
            previous = stop;
        }
    }
}

} // namespace pavonel
