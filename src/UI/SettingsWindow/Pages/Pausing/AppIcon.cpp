#include "UI/SettingsWindow/Pages/Pausing/AppIcon.h"

#include "Core/Characters.h"
#include "Platform/InstalledApplications.h"
#include "UI/Style/Visuals.h"

#include <QGuiApplication>
#include <QPainter>

namespace pavonel {

namespace {

constexpr qsizetype longestCharacter = 16; // of those that are made of several

void paintLetter(QPainter &painter, int side, const QString &name) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(visuals().palette().panelButton.hovered);
    painter.drawRoundedRect(QRectF(1, 1, side - 2, side - 2), side * 0.22, side * 0.22);
    painter.setPen(visuals().palette().text);
    painter.setFont(visuals().font(side / 2, QFont::DemiBold));
    painter.drawText(QRectF(0, 0, side, side), Qt::AlignCenter,
                     charactersOf(beginning(name, longestCharacter)).value(0).toUpper());
}

} // namespace

QImage appIcon(InstalledApplications &applications, const InstalledApplication &application, int side) {
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

} // namespace pavonel
