#pragma once

#include <QFont>
#include <QRectF>
#include <QString>

class QPainter;

namespace pavonel {

class MessageText;

/// The texts of the break screen, white on whatever lies below.
namespace breakScreen {

/// The height of the title's line.
double titleHeight();
QFont messageFont();

/// In capitals and spaced out; cut where the rectangle is too narrow.
void paintTitle(QPainter &painter, const QRectF &rect, const QString &title);

/// Where in the ring the time is written: the same for every time, so that no digit stays behind.
QRectF timeRect(const QRectF &ring);
void paintTime(QPainter &painter, const QRectF &ring, const QString &time);

void paintMessage(QPainter &painter, const QRectF &rect, const MessageText &message);

} // namespace breakScreen

} // namespace pavonel
