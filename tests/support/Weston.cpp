#include "support/Weston.h"

#include "support/XClient.h"
#include "support/environment.h"
#include "support/files.h"
#include "support/holdsSoon.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr int outputs = 2;

const char westonConfiguration[] = "[core]\nidle-time=0\n"
                                   "[shell]\npanel-position=none\nlocking=false\nbackground-color=0x%1\n"
                                   "[output]\nname=screen0\nmode=%2\n"
                                   "[output]\nname=screen1\nmode=%2\n";

/// Keys go to the output on which the pointer is.
class Input final : public VirtualInput {
public:
    explicit Input(XServer &screen) : screen_(screen) {}

    void press(Key key, std::uint32_t) override {
        constexpr std::uint32_t first = 8; // of the X server's numbers; one of a single digit means the digit
        screen_.xdotool({QStringLiteral("key"), QStringLiteral("0%1").arg(key + first)});
    }
    void click() override { screen_.xdotool({QStringLiteral("click"), QStringLiteral("1")}); }

private:
    XServer &screen_;
};

} // namespace

Weston::Weston()
    : screen_(QSize(outputs * outputSize.width(), outputSize.height())),
      input_(std::make_unique<Input>(screen_)) {
    const QString file = runtime_.filePath(QStringLiteral("weston.ini"));
    const QString mode = QStringLiteral("%1x%2").arg(outputSize.width()).arg(outputSize.height());
    writeFile(file, QString::fromLatin1(westonConfiguration)
                        .arg(QString::number(background().rgba(), 16), mode)
                        .toLatin1());
    QProcessEnvironment environment = withoutDesktop();
    insert(environment, "HOME", runtime_.path());
    insert(environment, "XDG_RUNTIME_DIR", runtime_.path());
    insert(environment, "DISPLAY", QString::fromLatin1(screen_.display()));
    process_ = std::make_unique<ChildProcess>(
        QStringLiteral("weston"),
        QStringList{QStringLiteral("--backend=x11-backend.so"), QStringLiteral("--use-pixman"),
                    QStringLiteral("--output-count=%1").arg(outputs), QStringLiteral("--socket=wayland"),
                    QStringLiteral("--config=") + file},
        environment);
    placeOutputs();
}

Weston::~Weston() = default;

/// Where nobody manages windows they lie on each other.
void Weston::placeOutputs() {
    XClient x(screen_.display());
    const auto windowOf = [&](int output) {
        const QByteArray name = "screen" + QByteArray::number(output);
        for (const xcb_window_t each : x.stack()) {
            if (x.bytes(each, "_NET_WM_NAME").endsWith(name))
                return each;
        }
        return xcb_window_t{XCB_NONE};
    };
    const bool areThere = holdsSoon([&] { return windowOf(0) != XCB_NONE && windowOf(1) != XCB_NONE; });
    if (!areThere)
        ADD_FAILURE() << "weston did not start: " << process_->process().readAllStandardError().toStdString();
    for (int output = 0; output < outputs; ++output)
        x.move(windowOf(output), QRect(QPoint(output * outputSize.width(), 0), outputSize));
    pointAt({outputSize.width() / 2, outputSize.height() / 2});
    const auto isPainted = [&] {
        const QImage all = picture();
        const QPoint ends[] = {{outputSize.width() - 1, 0},
                               {all.width() - 1, 0}}; // the cursor may be at 0, 0
        return std::ranges::all_of(ends, [&](QPoint end) { return all.pixelColor(end) == background(); });
    };
    EXPECT_TRUE(holdsSoon(isPainted)) << "weston shows no background";
}

QProcessEnvironment Weston::environment() const {
    QProcessEnvironment environment = withoutDesktop();
    insert(environment, "HOME", home_.path());
    insert(environment, "XDG_RUNTIME_DIR", home_.path());
    insert(environment, "WAYLAND_DISPLAY", runtime_.filePath(QStringLiteral("wayland")));
    overlookLeaksOfQt(environment, home_.path());
    return environment;
}

void Weston::pointAt(QPoint point) {
    screen_.xdotool({QStringLiteral("mousemove"), QString::number(point.x()), QString::number(point.y())});
}

} // namespace pavonel::test
