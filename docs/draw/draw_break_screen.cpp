// Draws the break screen as it stands in the middle of a break: draw_break_screen FOLDER [SCALE]
#include "Core/Stats.h"
#include "UI/BackgroundImage.h"
#include "UI/Backgrounds.h"
#include "UI/BreakOverlayView.h"
#include "UI/Theme.h"
#include "support/Scenario.h"
#include "support/files.h"

#include <QApplication>
#include <QDir>
#include <QImageWriter>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QTemporaryDir>

#include <cmath>
#include <cstdio>

namespace {

using namespace pavonel;

constexpr QSize screen(1920, 1080);

/// Hills one behind the other under an evening sky: something with light and dark parts to put text on.
QImage landscape(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, size.height() * 0.75);
    sky.setColorAt(0, QColor(64, 112, 168));
    sky.setColorAt(0.6, QColor(244, 190, 150));
    sky.setColorAt(1, QColor(255, 236, 200));
    painter.fillRect(image.rect(), sky);
    painter.setPen(Qt::NoPen);
    QRadialGradient glow(size.width() * 0.68, size.height() * 0.5, size.height() * 0.5);
    glow.setColorAt(0, QColor(255, 250, 235, 220));
    glow.setColorAt(1, Qt::transparent);
    painter.fillRect(image.rect(), glow);
    constexpr int ranges = 6;
    for (int range = 0; range < ranges; ++range) {
        const double depth = range / (ranges - 1.0);
        QPainterPath hill;
        hill.moveTo(0, size.height());
        for (int x = 0; x <= size.width(); x += 8) {
            const double u = 6.0 * x / size.height();
            const double wave = std::sin(u * (0.7 + depth) + range * 2.1) * 0.5 +
                                std::sin(u * 2.3 + range * 4.7) * 0.2 + std::sin(u * 7.1 + range) * 0.04;
            hill.lineTo(x, size.height() * (0.50 + 0.42 * depth - 0.07 * (1 - depth / 2) * wave));
        }
        hill.lineTo(size.width(), size.height());
        painter.setBrush(QColor::fromRgbF(static_cast<float>(0.62 - 0.52 * depth),
                                          static_cast<float>(0.60 - 0.40 * depth),
                                          static_cast<float>(0.66 - 0.46 * depth)));
        painter.drawPath(hill);
    }
    return image;
}

/// A break of twenty seconds after seven of them.
class Scene {
public:
    Scene() {
        settings.messages =
            QStringList{QStringLiteral("Look out the window — find the farthest thing you can see.")};
        controller.startBreak(BreakKind::micro, BreakController::Initiator::user);
        controller.breakRemaining = 13;
    }

    QImage draw(double scale) {
        BreakOverlayView view(controller, settings, platform, backgrounds, BreakOverlayView::Role::primary);
        view.resize(screen);
        awaitPicture(screen * scale);
        QImage image(screen * scale, QImage::Format_RGB32);
        image.setDevicePixelRatio(scale);
        view.render(&image);
        return image;
    }

private:
    void awaitPicture(QSize size) {
        const QImage wanted = pictureImage(test::readFile(settings.customBackgroundPath), size);
        while (!wanted.isNull() && backgrounds.image(size) != wanted)
            platform.loop.advance(0);
    }

    test::FakePlatform platform;

public:
    Settings settings{platform.fakeDefaults, platform.loop};

private:
    Stats stats{platform.fakeDefaults, platform.loop};
    BreakController controller{test::servicesOf(platform), settings, stats};
    Backgrounds backgrounds{settings, platform.loop};
};

bool save(const QImage &image, const QString &path) {
    QImageWriter writer(path);
    writer.setCompression(100);
    std::printf("%s\n", qPrintable(path));
    return writer.write(image);
}

} // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 2)
        return 2;
    const QDir folder(arguments[1]);
    const double scale = arguments.value(2, QStringLiteral("1")).toDouble();
    bool saved = true;
    const auto draw = [&](Scene &scene, const QString &name) {
        saved &= save(scene.draw(scale), folder.filePath(QStringLiteral("break-%1.png").arg(name)));
    };
    for (const Background &theme : Theme::gradients()) {
        Scene scene;
        scene.settings.backgroundStyle = theme.id;
        draw(scene, QString(theme.name).toLower().replace(QLatin1Char(' '), QLatin1Char('-')));
    }
    const QTemporaryDir samples;
    const auto drawPicture = [&](QSize size, const QString &name) {
        const QString path = samples.filePath(name + QStringLiteral(".png"));
        saved &= landscape(size).save(path);
        Scene scene;
        scene.settings.customBackgroundPath = path;
        draw(scene, name);
    };
    drawPicture({3000, 2000}, QStringLiteral("landscape-picture"));
    drawPicture({1600, 2400}, QStringLiteral("portrait-picture"));
    return saved ? 0 : 1;
}
