#include "support/OpenSettings.h"

#include <QApplication>
#include <QDate>
#include <QDir>

#include <algorithm>

/// draw_settings FOLDER: every page of the settings window, light and dark, at the ratio of the environment's
/// QT_SCALE_FACTOR. With a second argument the window is as tall as the page.
namespace {

using namespace pavonel;

QImage picture(test::OpenSettings &open, const PageEntry &entry, bool whole) {
    open.show(entry.page);
    QWidget &window = *open.window();
    if (whole)
        window.resize(window.width(), 1600);
    QApplication::processEvents();
    for (QWidget *widget : window.findChildren<QWidget *>())
        widget->setAttribute(Qt::WA_UnderMouse, false); // a picture has no pointer
    const QImage image = window.grab().toImage();
    window.close();
    return image;
}

/// A week of somebody's life.
void furnish(test::OpenSettings &open) {
    for (std::uint32_t id = 1; id <= 3; ++id)
        open.hotKeys.registerBinding({id, id, 0x1900, {}, [] {}});
    open.platform.login.enabled = true;
    test::Scenario &scenario = open.scenario;
    scenario.plan(12, 30, 1800);
    scenario.plan(16, 0, 600, QStringLiteral("Tea"));
    open.settings.deepFocusApps = QStringList{QStringLiteral("org.inkscape.Inkscape")};
    constexpr int days = 7;
    constexpr double hours[days] = {6.4, 7.1, 5.2, 7.8, 1.3, 2.1, 4.4};
    Days week;
    for (int i = 0; i < days; ++i) {
        const QDate date = QDate(2026, 2, 24).addDays(i);
        const int breaks = static_cast<int>(hours[i] * 2);
        const Seconds resting = breaks * 110.0;
        week[date.toString(Qt::ISODate)] = {breaks, i / 2 + 1, i % 2, i % 3, hours[i] * 3600, resting};
    }
    scenario.stats.setDays(week);
}

QString nameOf(const QString &page, bool dark) {
    return QStringLiteral("settings-%1-%2%3.png")
        .arg(page, dark ? QStringLiteral("dark") : QStringLiteral("light"),
             qApp->devicePixelRatio() > 1 ? QStringLiteral("@2x") : QString());
}

/// The phone's page while a code is shown.
QImage pictureOfCode(test::OpenSettings &open) {
    const auto entry = std::ranges::find(allPages(), Page::phone, &PageEntry::page);
    open.phone.state = Phone::Waiting{QStringLiteral("K7WQ3M")};
    const QImage image = picture(open, *entry, false);
    open.phone.state = Phone::Unpaired{};
    return image;
}

} // namespace

int main(int argc, char **argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    if (argc < 2)
        return 2;
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    test::OpenSettings open;
    furnish(open);
    for (const bool dark : {false, true}) {
        open.platform.colours.change({dark, true, {}});
        for (const PageEntry &entry : allPages()) {
            if (!picture(open, entry, argc > 2).save(folder.filePath(nameOf(entry.id, dark))))
                return 1;
        }
        if (!pictureOfCode(open).save(folder.filePath(nameOf(QStringLiteral("phone-code"), dark))))
            return 1;
    }
    return 0;
}
