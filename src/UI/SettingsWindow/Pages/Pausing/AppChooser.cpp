#include "UI/SettingsWindow/Pages/Pausing/AppChooser.h"

#include "UI/Controls/Button.h"
#include "UI/Controls/FocusRing.h"
#include "UI/Controls/Layouts.h"
#include "UI/Controls/LineEdit.h"
#include "UI/Controls/ListRow.h"
#include "UI/Controls/Pixels.h"
#include "UI/Controls/ScrollArea.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Pages/Pausing/AppIcon.h"
#include "UI/SettingsWindow/Rows/RowList.h"

#include <QAbstractButton>
#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>

#include <algorithm>

namespace pavonel {

namespace {

constexpr int widest = 440;
constexpr int tallest = 460;
constexpr int aside = 24; // of the window's edges, at least
constexpr int padding = 16;
constexpr int rowHeight = 40;
constexpr double radius = 14;

class SheetAccessible final : public QAccessibleWidget {
public:
    explicit SheetAccessible(QWidget *sheet) : QAccessibleWidget(sheet, QAccessible::Dialog) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.modal = true;
        return state;
    }
};

/// Its rows are left by the arrow keys, before what scrolls it takes them.
class Column final : public QWidget {
protected:
    void keyPressEvent(QKeyEvent *event) override {
        if (event->key() == Qt::Key_Down || event->key() == Qt::Key_Up)
            focusNextPrevChild(event->key() == Qt::Key_Down);
        else
            QWidget::keyPressEvent(event);
    }
};

/// An application to choose: its icon, its name and, behind that, its identifier.
class AppRow final : public QAbstractButton {
public:
    AppRow(Visuals &visuals, const InstalledApplication &application, const QImage &icon)
        : visuals_(visuals), entry_{application.name, application.bundleIdentifier, icon} {
        setText(entry_.text);
        setAccessibleName(entry_.text);
        setAccessibleDescription(entry_.detail);
        setAttribute(Qt::WA_Hover);
        setFocusPolicy(Qt::TabFocus);
    }

    QSize sizeHint() const override { return {200, visuals_.lineHeight(rowHeight)}; }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        const Palette &palette = visuals_.palette();
        if (hasFocus() || underMouse() || isDown()) {
            constexpr int inset = 6;
            painter.setPen(Qt::NoPen);
            painter.setBrush(hasFocus() ? palette.accent : palette.panelButton.fill);
            painter.drawRoundedRect(QRectF(rect()).adjusted(inset, 1, -inset, -1), 7, 7);
        }
        ListRow::draw(painter, QRectF(rect()).adjusted(CardRow::margin, 0, -CardRow::margin, 0), entry_,
                      visuals_, hasFocus() ? palette.onAccent : palette.text,
                      hasFocus() ? palette.onAccent : palette.secondaryText);
    }

private:
    Visuals &visuals_;
    ListRow::Entry entry_;
};

bool fits(const InstalledApplication &application, const QString &words) {
    return application.name.contains(words, Qt::CaseInsensitive) ||
           application.bundleIdentifier.contains(words, Qt::CaseInsensitive);
}

} // namespace

void AppChooser::open(Visuals &visuals, InstalledApplications &applications, QWidget &anchor,
                      std::function<void(const QString &)> choose) {
    auto *chooser = new AppChooser(visuals, applications, anchor, std::move(choose));
    connect(&anchor, &QObject::destroyed, chooser, &QObject::deleteLater);
    chooser->show();
    chooser->raise();
    chooser->search_->setFocus(Qt::OtherFocusReason);
}

AppChooser::AppChooser(Visuals &visuals, InstalledApplications &applications, QWidget &anchor,
                       std::function<void(const QString &)> choose)
    : QWidget(anchor.window()), visuals_(visuals), applications_(applications), anchor_(&anchor),
      choose_(std::move(choose)), all_(applications.all()), body_(new QWidget(this)),
      search_(lineEdit(QStringLiteral("Search"), QStringLiteral("Search"))),
      nothing_(new Text(visuals, QStringLiteral("No application is called so"), Text::Style::secondary)) {
    for (const InstalledApplication &application : all_)
        byIdentifier_.insert(application.bundleIdentifier, application);
    setAccessibleName(QStringLiteral("Choose an application"));
    auto *lines = column(body_, {0, padding, 0, padding - FocusRing::room}, 8);
    auto *head = column(nullptr, {padding, 0, padding, 0});
    head->addWidget(new Text(visuals, QStringLiteral("Choose an application"), Text::Style::cardTitle));
    lines->addLayout(head);
    auto *field = line(nullptr, {padding - FocusRing::room, 0, padding - FocusRing::room, 0});
    field->addWidget(search_);
    lines->addLayout(field);
    lines->addWidget(list(), 1);
    auto *cancel = new Button(QStringLiteral("Cancel"));
    auto *foot = line(nullptr, {padding, 0, padding - FocusRing::room, 0});
    foot->addStretch();
    foot->addWidget(cancel);
    lines->addLayout(foot);
    connect(cancel, &Button::clicked, this, [this] { leave(); });
    connect(search_, &QLineEdit::textChanged, this, [this](const QString &words) { search(words); });
    connect(search_, &QLineEdit::returnPressed, this, [this] {
        if (!search_->text().trimmed().isEmpty() && !rows_->keys().isEmpty())
            take(rows_->keys().front());
    });
    parentWidget()->installEventFilter(this);
    layOut();
    search({});
}

QWidget *AppChooser::list() {
    auto *content = new Column;
    auto *lines = column(content);
    rows_ = new RowList(visuals_, visuals_.lineHeight(rowHeight), RowList::Lines::none,
                        [this](const QString &identifier) { return row(identifier); });
    auto *empty = column(nullptr, {padding, 8, padding, 8});
    empty->addWidget(nothing_);
    lines->addWidget(rows_);
    lines->addLayout(empty);
    lines->addStretch();
    return new ScrollArea(visuals_, content);
}

QWidget *AppChooser::row(const QString &identifier) {
    const InstalledApplication application = byIdentifier_.value(identifier);
    auto *row = new AppRow(visuals_, application,
                           appIcon(applications_, application, ListRow::pictureSide(visuals_), visuals_));
    connect(row, &AppRow::clicked, this, [this, identifier] { take(identifier); });
    return row;
}

void AppChooser::search(const QString &words) {
    QStringList found;
    for (const InstalledApplication &application : all_) {
        if (fits(application, words.trimmed()))
            found.append(application.bundleIdentifier);
    }
    rows_->setKeys(found);
    nothing_->setVisible(found.isEmpty());
}

void AppChooser::take(const QString &identifier) {
    leave();
    choose_(identifier);
}

void AppChooser::leave() {
    if (anchor_)
        anchor_->setFocus(Qt::PopupFocusReason);
    hide();
    deleteLater();
}

QRect AppChooser::panel() const {
    const QSize size(std::min(visuals_.length(widest), width() - 2 * aside),
                     std::min(visuals_.length(tallest), height() - 2 * aside));
    return {QPoint((width() - size.width()) / 2, (height() - size.height()) / 2), size};
}

void AppChooser::layOut() {
    setGeometry(parentWidget()->rect());
    body_->setGeometry(panel());
}

bool AppChooser::eventFilter(QObject *watched, QEvent *event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        layOut();
    return QWidget::eventFilter(watched, event);
}

void AppChooser::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0, 0, 0, 90));
    const QRectF place = panel();
    for (int spread = 16; spread > 0; spread -= 2)
        drawBody(painter, place.adjusted(-spread, 2 - spread, spread, 4 + spread), radius + spread,
                 QColor(0, 0, 0, 6), Qt::transparent);
    drawBody(painter, place, radius, visuals_.palette().card, visuals_.palette().cardOutline);
}

void AppChooser::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Escape)
        leave();
    else if (event->key() == Qt::Key_Down || event->key() == Qt::Key_Up)
        focusNextPrevChild(event->key() == Qt::Key_Down);
    else
        QWidget::keyPressEvent(event);
}

void AppChooser::mousePressEvent(QMouseEvent *event) {
    if (!panel().contains(event->pos()))
        leave();
}

/// The keyboard stays on the sheet.
bool AppChooser::focusNextPrevChild(bool next) {
    QWidget *from = window()->focusWidget() ? window()->focusWidget() : this;
    QWidget *stop = from;
    do {
        stop = next ? stop->nextInFocusChain() : stop->previousInFocusChain();
        if (isAncestorOf(stop) && (stop->focusPolicy() & Qt::TabFocus) && stop->isVisible() &&
            stop->isEnabled()) {
            stop->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    } while (stop != from);
    return true;
}

QAccessibleInterface *AppChooser::makeAccessible() {
    return new SheetAccessible(this);
}

} // namespace pavonel
