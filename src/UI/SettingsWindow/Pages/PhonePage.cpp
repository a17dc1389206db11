#include "Core/Characters.h"
#include "Core/Phone.h"
#include "Platform/QrCode.h"
#include "UI/Controls/Accessibility.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/Layouts.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Page.h"
#include "UI/SettingsWindow/Rows/Rows.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"
#include "UI/Symbol.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

constexpr double codeRadius = 10;

/// A code to be typed elsewhere, large and evenly spaced. One that is too long for the width gets smaller.
class CodeView final : public QWidget {
public:
    explicit CodeView(const QString &code) : code_(charactersOf(beginning(code, longest).simplified())) {
        setAccessibleRole(*this, QAccessible::StaticText);
        setAccessibleName(code_.join(QString()));
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    QSize sizeHint() const override { return {240, visuals().length(88)}; }

protected:
    /// Each character in the middle of a cell, all as wide as the widest.
    void paintEvent(QPaintEvent *) override {
        constexpr double padding = 20;
        constexpr double spacing = 12; // between characters
        QPainter painter(this);
        drawBody(painter, rect(), codeRadius, visuals().palette().window, Qt::transparent);
        if (code_.isEmpty())
            return;
        painter.setFont(visuals().font(40));
        painter.setPen(visuals().palette().text);
        const QFontMetricsF metrics(painter.font());
        double cell = 0;
        for (const QString &character : code_)
            cell = std::max(cell, metrics.horizontalAdvance(character));
        cell += spacing;
        const double whole = cell * static_cast<double>(code_.size());
        const double shrink = std::min(1.0, (width() - 2 * padding) / whole);
        painter.translate(QRectF(rect()).center());
        painter.scale(shrink, shrink);
        double left = -whole / 2;
        for (const QString &character : code_) {
            const double inset = (cell - metrics.horizontalAdvance(character)) / 2;
            painter.drawText(QPointF(left + inset, metrics.capHeight() / 2), character);
            left += cell;
        }
    }

private:
    static constexpr qsizetype longest = 64;
    QStringList code_; ///< Its characters.
};

/// A code for the phone's camera: dark on white in every appearance, each module a whole number of device
/// pixels. It grows along with the text. `text` is what the camera reads.
class QrCodeView final : public QWidget {
public:
    explicit QrCodeView(const QString &text) : code_(QrCode::of(text.toUtf8())) {
        setAccessibleRole(*this, QAccessible::Graphic);
        setAccessibleName(u"Code for the phone’s camera"_s);
        setAccessibleDescription(text);
        setFixedSize(visuals().length(132), visuals().length(132));
    }

protected:
    void paintEvent(QPaintEvent *) override {
        constexpr int margin = 3; // modules on each side, which with the round corners cameras manage with
        QPainter painter(this);
        drawBody(painter, rect(), codeRadius, Qt::white, visuals().palette().cardOutline);
        if (code_.side == 0)
            return;
        const double ratio = painter.deviceTransform().m11(); // device pixels a point, wherever this is drawn
        const int pixels = qRound(width() * ratio);
        const int module = std::max(1, pixels / (code_.side + 2 * margin));
        const int first = (pixels - module * code_.side) / 2;
        painter.scale(1 / ratio, 1 / ratio);
        for (int y = 0; y < code_.side; ++y) {
            for (int x = 0; x < code_.side; ++x) {
                if (code_.isDark(x, y))
                    painter.fillRect(first + x * module, first + y * module, module, module, Qt::black);
            }
        }
    }

private:
    QrCode code_;
};

/// That all is well. Says nothing to a screen reader: the text beside it does.
class Tick final : public QWidget {
public:
    Tick() { setFixedSize(visuals().length(28), visuals().length(28)); }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter(this).drawImage(QPointF(0, 0),
                                 Symbol::image(u"checkmark.circle.fill"_s, width(),
                                               visuals().palette().accentText, devicePixelRatioF()));
    }
};

QWidget *text(const QString &text, Text::Style style, const QMargins &margins) {
    auto *place = new QWidget;
    column(place, margins)->addWidget(new Text(text, style));
    return place;
}

/// A code to be typed; where the phone's page is known, one for its camera stands beside.
QWidget *codes(const QString &code, const QString &page) {
    auto *place = new QWidget;
    auto *codes = line(place, {CardRow::margin, 2, CardRow::margin, 12}, CardRow::margin);
    codes->addWidget(new CodeView(code));
    if (!page.isEmpty())
        codes->addWidget(new QrCodeView(page));
    return place;
}

/// That all is well, with a way to end it.
QWidget *pairedRow(const std::function<void()> &disconnect) {
    auto *row = new CardRow;
    row->add(new Tick);
    row->addLabel(u"Your phone is connected"_s, u"When a break starts here, it starts there too."_s);
    auto *button = new Button(u"Disconnect"_s);
    row->add(button);
    QObject::connect(button, &Button::clicked, row, disconnect, Qt::QueuedConnection);
    return row;
}

QString aboutService(const Phone &phone) {
    const QString name = phone.serviceName();
    if (name.isEmpty())
        return u"There is no pairing service, so breaks stay on this computer."_s;
    return u"The phone is reached through the pairing service at %1; without it, breaks stay on this computer."_s
        .arg(name);
}

QWidget *introduction() {
    QWidget *words = text(
        u"A break on the Mac is only half a break if you pick up your phone. Pair the two and the same "
        "countdown appears there — on the Lock Screen and in the Dynamic Island — and clears when you end "
        "the break here.\n\nAway from the Mac, the app keeps its own hours: breaks as often and as long as "
        "you like. While this Mac is running Pavonel, this Mac decides."_s,
        Text::Style::label, {CardRow::margin, 14, CardRow::margin, 12});
    QWidget *widget = card({}, {}, {words});
    widget->setAccessibleName(u"Pavonel for iPhone"_s); // it has no title
    return widget;
}

QWidgetList unpairedParts(Phone &phone, const QString &failure) {
    const QMargins margins(FocusRing::room, 0, FocusRing::room, 0);
    QWidgetList parts{introduction(), text(aboutService(phone), Text::Style::secondary, margins)};
    if (!failure.isEmpty())
        parts.push_back(text(failure, Text::Style::failure, margins));
    parts.push_back(buttonRow(
        u"Show pairing code"_s, [&phone] { phone.startPairing(); }, {}, ButtonRole::prominent));
    return parts;
}

QWidgetList waitingParts(Phone &phone, const QString &code) {
    const auto sentence = [](const QString &words, int below) {
        return text(words, Text::Style::secondary, {CardRow::margin, 0, CardRow::margin, below});
    };
    constexpr int toNext = 2;
    constexpr int toEnd = 12;
    QWidgetList content{codes(code, phone.pageFor(code))};
    if (const QString service = phone.serviceName(); !service.isEmpty())
        content.push_back(
            sentence(u"Or point the phone’s camera at it, or open %1 there."_s.arg(service), toNext));
    content.push_back(sentence(u"The code is good for fifteen minutes."_s, toNext));
    content.push_back(sentence(u"Waiting for your phone…"_s, toEnd));
    return {card(u"Pavonel for iPhone"_s, u"Type this code into Pavonel on your phone"_s, content),
            buttonRow(u"Cancel"_s, [&phone] { phone.unpair(); })};
}

QWidgetList phoneParts(Phone &phone) {
    const Phone::State &state = phone.state;
    if (const auto *waiting = std::get_if<Phone::Waiting>(&state))
        return waitingParts(phone, waiting->code);
    if (std::holds_alternative<Phone::Paired>(state))
        return {card(u"Paired"_s, {}, {pairedRow([&phone] { phone.unpair(); })})};
    const auto *failed = std::get_if<Phone::Failed>(&state);
    return unpairedParts(phone, failed ? failed->message : QString());
}

} // namespace

QWidgetList phonePage(PageContext &context) {
    Phone &phone = context.phone;
    constexpr int betweenCards = 14;
    return {
        dynamicSection(
            {&phone}, [&phone] { return phoneParts(phone); }, betweenCards),
        pageNote(
            u"Only the break itself travels to the phone: its kind, its name and when it ends. Settings and "
            "statistics never leave this computer."_s,
            Text::Style::note),
    };
}

} // namespace pavonel
