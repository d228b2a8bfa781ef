// What the icons of the alignment tools show.
#include "AlignIcons.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>

#include "ToolAction.h"

namespace {

// Points have the colours that the viewer gives to the picks of both sides.
const QColor kBright(0xE4, 0xE8, 0xEE), kDim(0x70, 0x76, 0x80), kEdge(0x50, 0x56, 0x60), kMoving(0xD0, 0x10, 0x10),
    kFixed(0x10, 0x10, 0xD0);

void DrawSheet(QPainter& painter, const QColor& color, const QPointF& centre, double degrees) {
    painter.save();
    painter.translate(centre);
    painter.rotate(degrees);
    painter.setPen(QPen(kEdge, 1));
    painter.setBrush(color);
    painter.drawRect(QRectF(-6.5, -5.5, 13, 11));
    painter.restore();
}

void DrawPoint(QPainter& painter, const QColor& color, const QPointF& at) {
    painter.setPen(IsDark(QGuiApplication::palette()) ? QPen(kBright, 0.8) : QPen(Qt::NoPen));
    painter.setBrush(color);
    painter.drawEllipse(at, 2.2, 2.2);
}

void DrawArrow(QPainter& painter, const QPointF& from, const QPointF& to) {
    painter.setPen(QPen(Ink().line, 2));
    painter.drawLine(from, to);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Ink().line);
    painter.drawPolygon(QPolygonF({to + QPointF(0, -4), to + QPointF(5, 0), to + QPointF(0, 4)}));
}

}  // namespace

QIcon AlignWayIcon(AlignWay way) {
    return DrawToolIcon([way](QPainter& painter) {
        DrawSheet(painter, kDim, {15.5, 14.5}, 0);
        DrawSheet(painter, kBright, {8.5, 8.5}, -18);
        if (way == AlignWay::ByPoints) {
            const QPointF moving[] = {{6, 7.5}, {10.5, 11}}, fixed[] = {{13, 17.5}, {19.5, 16}};
            for (int i = 0; i < 2; ++i) {
                painter.setPen(QPen(Ink().line, 1, Qt::DashLine));
                painter.drawLine(moving[i], fixed[i]);
                DrawPoint(painter, kMoving, moving[i]);
                DrawPoint(painter, kFixed, fixed[i]);
            }
            return;
        }
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(kMoving, 2));
        painter.drawArc(QRectF(4.5, 4.5, 15, 15), -10 * 16, 100 * 16);
        painter.setPen(Qt::NoPen);
        painter.setBrush(kMoving);
        painter.drawPolygon(QPolygonF({QPointF(16, 12), QPointF(23, 12), QPointF(19.5, 17)}));
    });
}

QIcon AlignContinueIcon() {
    return DrawToolIcon([](QPainter& painter) {
        DrawArrow(painter, {6, 12}, {13, 12});
        DrawPoint(painter, kMoving, {3.5, 12});
        DrawPoint(painter, kFixed, {21, 12});
    });
}

QIcon AlignDropIcon() {
    return DrawToolIcon([](QPainter& painter) {
        DrawPoint(painter, kMoving, {7, 15});
        painter.setPen(QPen(Ink().line, 2.5));
        painter.drawLine(QPointF(12, 9), QPointF(20, 9));
    });
}

QIcon AlignFinishIcon() {
    return DrawToolIcon([](QPainter& painter) {
        painter.setPen(QPen(Ink().green, 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(QPolygonF({QPointF(5, 13), QPointF(10, 18), QPointF(19, 6)}));
    });
}

QIcon AlignEndIcon() {
    return DrawToolIcon([](QPainter& painter) {
        painter.setPen(QPen(Ink().red, 3, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(6, 6), QPointF(18, 18));
        painter.drawLine(QPointF(18, 6), QPointF(6, 18));
    });
}
