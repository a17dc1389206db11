#include "UI/SettingsWindow/Pages/Pausing/AppChooser.h"

#include "Core/Characters.h"
#include "Platform/InstalledApplications.h"
#include "UI/Controls/Accessibility.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/Layouts.h"
#include "UI/Controls/LineEdit.h"
#include "UI/Controls/ListRow.h"
#include "UI/Controls/ScrollArea.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Rows/RowList.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"

#include <QAbstractButton>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>

#include <algorithm>

namespace pavonel {

namespace {

constexpr QSize largest(440, 460);
constexpr int aside = 24; // of the window's edges, at least
constexpr int padding = 16;
constexpr int rowHeight = 40;
constexpr double radius = 14;

/// For an application without an icon.
void paintLetter(QPainter &painter, int side, const QString &name) {
    constexpr qsizetype longestCharacter = 16; // of those that are made of several
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(visuals().palette().panelButton.hovered);
    painter.drawRoundedRect(QRectF(1, 1, side - 2, side - 2), side * 0.22, side * 0.22);
    painter.setPen(visuals().palette().text);
    painter.setFont(visuals().font(side / 2, QFont::DemiBold));
    painter.drawText(QRectF(0, 0, side, side), Qt::AlignCenter,
                     charactersOf(beginning(name, longestCharacter)).value(0).toUpper());
}

/// An application to choose: its icon, its name and, behind that, its identifier.
class AppRow final : public QAbstractButton {
public:
    AppRow(const InstalledApplication &application, const QImage &icon)
        : entry_{application.name, application.bundleIdentifier, icon} {
        setText(entry_.text);
        setAccessibleName(entry_.text);
        setAccessibleDescription(entry_.detail);
        setAttribute(Qt::WA_Hover);
        setFocusPolicy(Qt::TabFocus);
    }

    QSize sizeHint() const override { return {200, visuals().lineHeight(rowHeight)}; }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        const Palette &palette = visuals().palette();
        if (hasFocus() || underMouse() || isDown()) {
            constexpr int inset = 6;
            painter.setPen(Qt::NoPen);
            painter.setBrush(hasFocus() ? palette.accent : palette.panelButton.fill);
            painter.drawRoundedRect(QRectF(rect()).adjusted(inset, 1, -inset, -1), 7, 7);
        }
        ListRow::draw(painter, QRectF(rect()).adjusted(CardRow::margin, 0, -CardRow::margin, 0), entry_,
                      hasFocus() ? palette.onAccent : palette.text,
                      hasFocus() ? palette.onAccent : palette.secondaryText);
    }

private:
    ListRow::Entry entry_;
};

/// A sheet over the whole window that lists the installed applications. It goes with a choice, with Escape,
/// with its button, and with a click beside it, which a `QDialog`, a window of its own, would not see.
class AppChooser final : public QWidget {
public:
    AppChooser(InstalledApplications &applications, QWidget &anchor,
               std::function<void(const QString &)> choose)
        : QWidget(anchor.window(), Qt::SubWindow), // which keeps the keyboard
          applications_(applications), anchor_(&anchor), choose_(std::move(choose)), all_(applications.all()),
          body_(new QWidget(this)), search_(lineEdit(QStringLiteral("Search"), QStringLiteral("Search"))) {
        setAccessibleRole(*this, QAccessible::Dialog);
        setAccessibleName(QStringLiteral("Choose an application"));
        auto *lines = column(body_, {0, padding, 0, padding - FocusRing::room}, 8);
        lines->addLayout(head());
        lines->addWidget(list(), 1);
        lines->addLayout(foot());
        putInMiddle(this, body_, {aside, aside, aside, aside});
        body_->setMaximumSize(visuals().length(largest.width()), visuals().length(largest.height()));
        connect(&anchor, &QObject::destroyed, this, &QObject::deleteLater);
        parentWidget()->installEventFilter(this);
        setGeometry(parentWidget()->rect());
        search({});
        show();
        raise();
        search_->setFocus(Qt::OtherFocusReason);
    }

protected:
    /// Covers the window, and has the rows' arrow keys before what scrolls them takes those.
    bool eventFilter(QObject *watched, QEvent *event) override {
        if (watched == parentWidget() && event->type() == QEvent::Resize)
            setGeometry(parentWidget()->rect());
        const auto *key = event->type() == QEvent::KeyPress ? static_cast<QKeyEvent *>(event) : nullptr;
        return watched != parentWidget() && key && moveBy(*key);
    }
    void keyPressEvent(QKeyEvent *event) override {
        if (event->key() == Qt::Key_Escape)
            leave();
        else if (!moveBy(*event))
            QWidget::keyPressEvent(event);
    }
    void mousePressEvent(QMouseEvent *event) override {
        if (!body_->geometry().contains(event->pos()))
            leave();
    }
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.fillRect(rect(), QColor(0, 0, 0, 90));
        const QRectF place = body_->geometry();
        for (int spread = 16; spread > 0; spread -= 2)
            drawBody(painter, place.adjusted(-spread, 2 - spread, spread, 4 + spread), radius + spread,
                     QColor(0, 0, 0, 6), Qt::transparent);
        drawBody(painter, place, radius, visuals().palette().card, visuals().palette().cardOutline);
    }

private:
    bool moveBy(const QKeyEvent &key) {
        const bool moves = key.key() == Qt::Key_Down || key.key() == Qt::Key_Up;
        return moves && focusNextPrevChild(key.key() == Qt::Key_Down);
    }

    QLayout *head() {
        constexpr int room = FocusRing::room; // around the field
        auto *lines = column(nullptr, {padding - room, 0, padding - room, 0}, 8);
        auto *title = line(nullptr, {room, 0, room, 0});
        title->addWidget(new Text(accessibleName(), Text::Style::cardTitle));
        lines->addLayout(title);
        lines->addWidget(search_);
        connect(search_, &QLineEdit::textChanged, this,
                [this](const QString &words) { search(words.trimmed()); });
        connect(search_, &QLineEdit::returnPressed, this, [this] {
            if (!search_->text().trimmed().isEmpty() && !rows_->keys().isEmpty())
                take(rows_->keys().front());
        });
        return lines;
    }

    QWidget *list() {
        auto *content = new QWidget;
        content->installEventFilter(this);
        auto *lines = column(content);
        rows_ = new RowList(visuals().lineHeight(rowHeight),
                            [this](const QString &identifier) { return row(identifier); });
        nothing_ = new Text(QStringLiteral("No application is called so"), Text::Style::secondary);
        auto *empty = column(nullptr, {padding, 8, padding, 8});
        empty->addWidget(nothing_);
        lines->addWidget(rows_);
        lines->addLayout(empty);
        lines->addStretch();
        return new ScrollArea(content);
    }

    QLayout *foot() {
        auto *buttons = line(nullptr, {padding, 0, padding - FocusRing::room, 0});
        auto *cancel = new Button(QStringLiteral("Cancel"));
        buttons->addStretch();
        buttons->addWidget(cancel);
        connect(cancel, &Button::clicked, this, [this] { leave(); });
        return buttons;
    }

    QWidget *row(const QString &identifier) {
        const auto &application =
            *std::ranges::find(all_, identifier, &InstalledApplication::bundleIdentifier);
        auto *row = new AppRow(application, appIcon(applications_, application));
        connect(row, &AppRow::clicked, this, [this, identifier] { take(identifier); });
        return row;
    }

    void search(const QString &words) {
        QStringList found;
        for (const auto &[identifier, name] : all_) {
            if (name.contains(words, Qt::CaseInsensitive) || identifier.contains(words, Qt::CaseInsensitive))
                found.append(identifier);
        }
        rows_->setKeys(found);
        nothing_->setVisible(found.isEmpty());
    }

    void take(const QString &identifier) {
        leave();
        choose_(identifier);
    }

    void leave() {
        if (anchor_)
            anchor_->setFocus(Qt::PopupFocusReason);
        hide();
        deleteLater();
    }

    InstalledApplications &applications_;
    QPointer<QWidget> anchor_; ///< Gets the keyboard back.
    std::function<void(const QString &)> choose_;
    std::vector<InstalledApplication> all_;
    QWidget *body_;
    QLineEdit *search_;
    RowList *rows_ = nullptr;
    Text *nothing_ = nullptr;
};

} // namespace

QImage appIcon(InstalledApplications &applications, const InstalledApplication &application) {
    const int side = ListRow::pictureSide();
    const double ratio = qGuiApp->devicePixelRatio();
    const int pixels = qRound(side * ratio);
    QImage square(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    square.fill(Qt::transparent);
    QPainter painter(&square);
    if (const QImage icon = applications.icon(application.bundleIdentifier, pixels); !icon.isNull()) {
        const QSize fitting = icon.size().scaled(square.size(), Qt::KeepAspectRatio);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(
            QRect(QPoint((pixels - fitting.width()) / 2, (pixels - fitting.height()) / 2), fitting), icon);
    } else {
        painter.scale(ratio, ratio);
        paintLetter(painter, side, application.name);
    }
    return square;
}

void chooseApplication(InstalledApplications &applications, QWidget &anchor,
                       std::function<void(const QString &)> choose) {
    new AppChooser(applications, anchor, std::move(choose));
}

} // namespace pavonel
