// What the icons of the cutting tools show.
#include "CutIcons.h"

#include <QPainter>
#include <QPainterPath>

#include "ToolAction.h"

namespace {

constexpr double kSide = kToolIconSide;
const QColor kSheet(0xC8, 0xCC, 0xD2), kEdge(0x50, 0x56, 0x60), kRemoved(0xF0, 0x90, 0x88), kCross(0xB0, 0x10, 0x10),
    kLine(0x00, 0x60, 0x90);

bool IsFreehand(KV_ScenePane::SegmentationMode way) { return way >= KV_ScenePane::FreehandOutside; }

bool IsOneOf(KV_ScenePane::SegmentationMode way, KV_ScenePane::SegmentationMode a, KV_ScenePane::SegmentationMode b) {
    return way == a || way == b;
}

/// Corners with straight lines, or a line without corners.
QPainterPath Lasso(bool isFreehand) {
    QPainterPath path(QPointF(4.5, 9));
    if (isFreehand) {
        path.cubicTo(4, 3, 10, 3.5, 13, 5.5);
        path.cubicTo(17, 8, 20.5, 5, 19.5, 10);
        path.cubicTo(18.5, 16, 14, 13, 11.5, 16);
        path.cubicTo(8, 19, 5, 15, 4.5, 9);
    } else {
        for (const QPointF corner : {QPointF(14, 5), QPointF(19.5, 10), QPointF(15, 16.5), QPointF(7, 16)})
            path.lineTo(corner);
    }
    path.closeSubpath();
    return path;
}

/// Red with lines across.
void FillRemoved(QPainter& painter, const QPainterPath& area) {
    painter.save();
    painter.setClipPath(area);
    painter.fillRect(QRectF(0, 0, kSide, kSide), kRemoved);
    painter.setPen(QPen(kCross, 0.9));
    constexpr int kLines = 14;
    for (int i = 0; i < kLines; ++i) {
        const double x = -kSide + 3.5 * i;
        painter.drawLine(QPointF(x, kSide), QPointF(x + kSide, 0));
    }
    painter.restore();
}

void DrawSheet(QPainter& painter, const QRectF& place) {
    painter.setPen(QPen(kEdge, 1));
    painter.setBrush(kSheet);
    painter.drawRect(place);
}

void DrawWay(QPainter& painter, KV_ScenePane::SegmentationMode way) {
    using namespace KV_ScenePane;
    const QRectF sheet(1.5, 2.5, 21, 17);
    const QPainterPath lasso = Lasso(IsFreehand(way));
    if (IsOneOf(way, PolygonVisible, FreehandVisible)) {
        // The front sheet is cut, the one behind it is not.
        DrawSheet(painter, QRectF(6.5, 7, 16, 15));
        painter.setOpacity(0.75);
        DrawSheet(painter, sheet.adjusted(0, 0, -2.5, 0));
        painter.setOpacity(0.6);
        FillRemoved(painter, lasso);
        painter.setOpacity(1);
    } else if (IsOneOf(way, PolygonInside, FreehandInside)) {
        DrawSheet(painter, sheet);
        FillRemoved(painter, lasso);
    } else {
        QPainterPath outside;
        outside.addRect(sheet);
        FillRemoved(painter, outside);
        painter.setBrush(kSheet);
        painter.setPen(Qt::NoPen);
        painter.drawPath(lasso);
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(kLine, 1.6));
    painter.drawPath(lasso);
    if (IsFreehand(way)) return;
    painter.setPen(Qt::NoPen);
    painter.setBrush(kLine);
    for (int i = 0; i + 1 < lasso.elementCount(); ++i) painter.drawEllipse(QPointF(lasso.elementAt(i)), 1.7, 1.7);
}

}  // namespace

QIcon CutWayIcon(KV_ScenePane::SegmentationMode way) {
    return DrawToolIcon([way](QPainter& painter) { DrawWay(painter, way); });
}

QIcon CutCancelIcon() {
    return DrawToolIcon([](QPainter& painter) {
        painter.setPen(QPen(Ink().red, 3, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(6, 6), QPointF(18, 18));
        painter.drawLine(QPointF(18, 6), QPointF(6, 18));
    });
}

QIcon CutUndoIcon() {
    return DrawToolIcon([](QPainter& painter) {
        painter.setPen(QPen(Ink().blue, 2.5, Qt::SolidLine, Qt::FlatCap));
        painter.drawArc(QRectF(6, 7, 13, 12), -80 * 16, 260 * 16);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Ink().blue);
        painter.drawPolygon(QPolygonF({QPointF(2, 12.5), QPointF(10, 12.5), QPointF(6, 18)}));
    });
}

QIcon CutSaveIcon() {
    return DrawToolIcon([](QPainter& painter) {
        DrawSheet(painter, QRectF(3.5, 3.5, 17, 17));
        painter.setBrush(kEdge);
        painter.drawRect(QRectF(7, 3.5, 10, 5.5));
        painter.setBrush(Qt::white);
        painter.drawRect(QRectF(6.5, 12, 11, 8.5));
        painter.setPen(QPen(kCross, 1.4, Qt::DashLine));
        painter.drawLine(QPointF(6.5, 20), QPointF(17.5, 12.5));
    });
}
