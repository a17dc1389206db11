#include "Platform/QrCode.h"
#include "UI/Controls/Button.h"
#include "support/OpenSettings.h"
#include "support/windows.h"

#include <QApplication>
#include <QImage>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

const QString explanation = u"A break on the Mac is only half a break if you pick up your phone. Pair the "
                            u"two and the same countdown appears "
                            "there — on the Lock Screen and in the Dynamic Island — and clears when you end "
                            "the break here.\n\nAway from the "
                            "Mac, the app keeps its own hours: breaks as often and as long as you like. "
                            "While this Mac is running Pavonel, "
                            "this Mac decides."_s;

class PhonePage : public ::testing::Test {
protected:
    OpenSettings open;
    Phone &phone = open.phone;

    PhonePage() { open.show(Page::phone); }

    void enter(const Phone::State &state) {
        phone.state = state;
        open.settle();
    }
    /// Null while there is none.
    QWidget *codeForCamera() {
        return open.widget<QWidget>(QAccessible::Graphic, u"Code for the phone’s camera"_s);
    }
    bool shows(const QString &text) { return open.texts().contains(text); }
    Button *button(const QString &name) { return open.widget<Button>(QAccessible::Button, name); }
    void press(const QString &name) {
        click(*button(name));
        QApplication::processEvents();
        open.settle();
    }
    std::vector<FakeHttpClient::Exchange> &exchanges() { return open.platform.web.exchanges; }
};

} // namespace

TEST_F(PhonePage, without_a_phone_explains_and_offers_a_code) {
    EXPECT_TRUE(shows(explanation));
    ASSERT_NE(button(u"Show pairing code"_s), nullptr);
    EXPECT_EQ(button(u"Cancel"_s), nullptr);
    EXPECT_EQ(button(u"Disconnect"_s), nullptr);
    press(u"Show pairing code"_s);
    ASSERT_EQ(exchanges().size(), 1U);
    EXPECT_TRUE(exchanges()[0].request.url.path().endsWith(u"/pair/start"_s));
    EXPECT_TRUE(shows(u"······"_s)) << "the layout is there before the code is";
}

TEST_F(PhonePage, while_waiting_shows_the_code) {
    enter(Phone::Waiting{u"481902"_s});
    for (const QString &text :
         {u"Pavonel for iPhone"_s, u"Type this code into Pavonel on your phone"_s, u"481902"_s,
          u"The code is good for fifteen minutes."_s, u"Waiting for your phone…"_s})
        EXPECT_TRUE(shows(text)) << qPrintable(text);
    EXPECT_FALSE(shows(explanation));
    press(u"Cancel"_s);
    EXPECT_EQ(phone.state.get(), Phone::State(Phone::Unpaired{}));
    EXPECT_TRUE(shows(explanation));
}

TEST_F(PhonePage, while_waiting_the_code_can_be_taken_by_camera_and_the_service_is_named) {
    enter(Phone::Waiting{u"······"_s});
    EXPECT_EQ(codeForCamera(), nullptr) << "there is no code yet";
    enter(Phone::Waiting{u"K7WQ3M"_s});
    ASSERT_NE(codeForCamera(), nullptr);
    EXPECT_EQ(codeForCamera()->accessibleDescription(), u"https://pair.example/#K7WQ3M"_s);
    EXPECT_TRUE(shows(u"K7WQ3M"_s)) << "the code in large type stays";
    EXPECT_TRUE(shows(u"Or point the phone’s camera at it, or open pair.example there."_s));
}

TEST_F(PhonePage, without_a_phone_says_what_happens_without_a_service) {
    EXPECT_TRUE(shows(u"The phone is reached through the pairing service at pair.example; without it, breaks "
                      u"stay on this computer."_s));
}

TEST_F(PhonePage, the_code_for_the_camera_is_dark_on_white_with_whole_modules_and_a_margin) {
    enter(Phone::Waiting{u"K7WQ3M"_s});
    QWidget &view = *codeForCamera();
    const QrCode code = QrCode::of(view.accessibleDescription().toUtf8());
    ASSERT_EQ(code.side, 29);
    for (const int ratio : {1, 2}) {
        QImage image(view.size() * ratio, QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        view.render(&image);
        const int module = image.width() / (code.side + 6);
        const int first = (image.width() - module * code.side) / 2;
        EXPECT_GE(first, 3 * module) << "the margin";
        for (int y = 0; y < code.side; ++y) {
            for (int x = 0; x < code.side; ++x)
                ASSERT_EQ(image.pixelColor(first + x * module, first + y * module).lightness() < 128,
                          code.isDark(x, y))
                    << x << ' ' << y << " at " << ratio;
        }
    }
}

TEST_F(PhonePage, the_code_for_the_camera_grows_along_with_the_text) {
    const QFont before = QApplication::font();
    const auto side = [&](int textPixels) {
        QFont font = before;
        font.setPixelSize(textPixels);
        QApplication::setFont(font);
        enter(Phone::Unpaired{});
        enter(Phone::Waiting{u"K7WQ3M"_s});
        return codeForCamera()->width();
    };
    EXPECT_EQ(side(30), 2 * side(15));
    QApplication::setFont(before);
}

TEST(QrCode, of_a_text_that_is_too_long_is_empty) {
    EXPECT_EQ(QrCode::of(QByteArray(5000, 'a')).side, 0);
}

TEST_F(PhonePage, a_code_is_told_as_it_is_shown_without_half_a_character) {
    const auto told = [this](const QString &code) {
        enter(Phone::Waiting{code});
        return open.texts().value(open.texts().indexOf(u"Type this code into Pavonel on your phone"_s) + 1);
    };
    EXPECT_EQ(told(QString(10'000, u'8')), QString(64, u'8'));
    EXPECT_EQ(told(QStringLiteral("🫖").repeated(100)), QStringLiteral("🫖").repeated(64));
}

TEST_F(PhonePage, after_a_failure_tells_it_and_offers_another_try) {
    enter(Phone::Failed{u"Could not reach the pairing service."_s});
    EXPECT_TRUE(shows(explanation));
    EXPECT_TRUE(shows(u"Could not reach the pairing service."_s));
    press(u"Show pairing code"_s);
    EXPECT_FALSE(shows(u"Could not reach the pairing service."_s));
}

TEST_F(PhonePage, with_a_phone_says_so_and_offers_to_disconnect) {
    enter(Phone::Paired{});
    for (const QString &text :
         {u"Paired"_s, u"Your phone is connected"_s, u"When a break starts here, it starts there too."_s})
        EXPECT_TRUE(shows(text)) << qPrintable(text);
    press(u"Disconnect"_s);
    EXPECT_EQ(phone.state.get(), Phone::State(Phone::Unpaired{}));
}

TEST_F(PhonePage, says_in_every_state_what_travels_to_the_phone) {
    const QString footer = u"Only the break itself travels to the phone: its kind, its name and when it "
                           u"ends. Settings and statistics "
                           "never leave this computer."_s;
    for (const Phone::State &state : {Phone::State(Phone::Unpaired{}), Phone::State(Phone::Waiting{u"1"_s}),
                                      Phone::State(Phone::Paired{}), Phone::State(Phone::Failed{u"No."_s})}) {
        enter(state);
        EXPECT_TRUE(shows(footer));
    }
}

TEST_F(PhonePage, has_been_seen_once_it_was_shown) {
    EXPECT_EQ(open.platform.fakeDefaults.value(u"phonePageSeen"_s), StoredValue(true));
}

TEST_F(PhonePage, keeps_the_keyboard_from_state_to_state) {
    button(u"Show pairing code"_s)->setFocus();
    press(u"Show pairing code"_s);
    EXPECT_EQ(open.window()->focusWidget(), button(u"Cancel"_s));
}

TEST_F(PhonePage, shows_codes_and_messages_of_any_kind) {
    for (const QString &text : {QString(), QString(10000, u'8'), u"<b>bold</b>\n\n🫖"_s, u"رمز"_s}) {
        enter(Phone::Waiting{text});
        EXPECT_FALSE(open.window()->grab().isNull());
        enter(Phone::Failed{text});
        EXPECT_FALSE(open.window()->grab().isNull());
    }
}

} // namespace pavonel::test
