// What the icons of the main tool bar show.
#include "ViewIcons.h"

#include <QFont>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <array>
#include <cmath>
#include <iterator>
#include <numbers>

#include "ToolAction.h"

namespace {

const QColor kBody(0xDC, 0xD4, 0xC8), kLit(0xF6, 0xF2, 0xEA), kDark(0x78, 0x70, 0x64), kEdge(0x50, 0x56, 0x60);
constexpr QPointF kCentre(12, 12);
constexpr double kRadius = 8.5;

/// What an icon of a fixed view shows: the axis, its sign, and whether the other end of the picture's axis is up.
struct ViewSign {
    char axis;
    char sign;
    bool isTurned;
};

ViewSign SignOf(KV_ScenePane::ViewMode mode) {
    // In the order of KV_ScenePane::ViewMode; the oblique view has none.
    static constexpr ViewSign kSigns[] = {{'Y', '+', false}, {'Y', '-', false}, {'X', '+', false}, {'X', '-', false},
                                          {'Z', '+', false}, {'Z', '-', true},  {' ', ' ', false}, {'Z', '-', false}};
    return kSigns[mode];
}

QColor ColorOfAxis(char axis) {
    const ToolInk ink = Ink();
    return axis == 'X' ? ink.red : axis == 'Y' ? ink.green : ink.blue;
}

/// The corners of a hexagon, the first one at the top: the outline of a cube.
QPolygonF Hexagon(double radius) {
    QPolygonF corners;
    for (int i = 0; i < 6; ++i) {
        const double angle = std::numbers::pi / 3 * i - std::numbers::pi / 2;
        corners << kCentre + QPointF(radius * std::cos(angle), radius * std::sin(angle));
    }
    return corners;
}

void DrawCube(QPainter& painter, bool isFilled) {
    const QPolygonF outline = Hexagon(10);
    const std::array<QColor, 3> sides{kLit, kDark, kBody};  // top, right, left
    painter.setPen(QPen(isFilled ? kEdge : Ink().line, 1.4, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
    for (int side = 0; side < 3; ++side) {
        painter.setBrush(isFilled ? QBrush(sides.at(static_cast<std::size_t>(side))) : QBrush(Qt::NoBrush));
        const int first = (5 + 2 * side) % 6;
        painter.drawPolygon(QPolygonF({kCentre, outline[first], outline[(first + 1) % 6], outline[(first + 2) % 6]}));
    }
}

void DrawView(QPainter& painter, KV_ScenePane::ViewMode mode) {
    if (mode == KV_ScenePane::ViewObliqueZUp) return DrawCube(painter, true);
    const ViewSign sign = SignOf(mode);
    painter.setPen(QPen(ColorOfAxis(sign.axis), 1.4));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(1.7, 4.7, 20.6, 14.6), 2, 2);
    QFont font = painter.font();
    font.setBold(true);
    font.setPixelSize(13);
    painter.setFont(font);
    painter.drawText(QRectF(1, 4.5, 22, 15), Qt::AlignCenter, QString("%1%2").arg(QChar(sign.sign), QChar(sign.axis)));
    // The two views from -Z differ by where +Y is.
    painter.setPen(Qt::NoPen);
    painter.setBrush(ColorOfAxis(sign.axis));
    const double base = sign.isTurned ? 20 : 4, tip = sign.isTurned ? 24 : 0;
    painter.drawPolygon(QPolygonF({QPointF(8, base), QPointF(16, base), QPointF(12, tip)}));
}

/// A ball, lit from the upper left. @param shine  size of the lit part; 0 to 1
void DrawBall(QPainter& painter, const QColor& light, const QColor& middle, const QColor& dark, double shine) {
    QRadialGradient shade(kCentre - QPointF(3.5, 3.5), 1.5 * kRadius);
    shade.setColorAt(0, light);
    shade.setColorAt(shine, light);
    shade.setColorAt(shine + 0.25, middle);
    shade.setColorAt(1, dark);
    painter.setPen(QPen(kEdge, 1));
    painter.setBrush(shade);
    painter.drawEllipse(kCentre, kRadius, kRadius);
}

/// A ball of flat pieces: a hexagon with one corner inside.
void DrawFacets(QPainter& painter, bool isFilled) {
    const QPolygonF outline = Hexagon(9.5);
    const QPointF inner = kCentre - QPointF(2, 2);
    const std::array<QColor, 6> shades{kBody, kDark.lighter(120), kDark, kDark.lighter(), kBody.lighter(105), kLit};
    painter.setPen(isFilled ? QPen(kEdge, 0.8, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin)
                            : QPen(Ink().line, 1.5, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
    for (int i = 0; i < 6; ++i) {
        painter.setBrush(isFilled ? QBrush(shades.at(static_cast<std::size_t>(i))) : QBrush(Qt::NoBrush));
        painter.drawPolygon(QPolygonF({inner, outline[i], outline[(i + 1) % 6]}));
    }
}

void DrawDots(QPainter& painter) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(Ink().line);
    constexpr double kStep = 4.2;
    for (int row = -2; row <= 2; ++row) {
        for (int column = -2; column <= 2; ++column) {
            if (std::abs(row) + std::abs(column) > 3) continue;  // no corners
            painter.drawEllipse(kCentre + QPointF(kStep * column, kStep * row), 1.3, 1.3);
        }
    }
}

void DrawEmptyView(QPainter& painter) {
    QLinearGradient sky(0, 4, 0, 20);
    sky.setColorAt(0, QColor(0x90, 0xA8, 0xC8));
    sky.setColorAt(1, QColor(0x30, 0x38, 0x50));
    painter.setPen(QPen(Ink().line, 1.2));
    painter.setBrush(sky);
    painter.drawRect(QRectF(2.5, 4.5, 19, 15));
}

void DrawMode(QPainter& painter, KV_ScenePane::DrawMode mode) {
    switch (mode) {
        case KV_ScenePane::DrawModePoints:
            return DrawDots(painter);
        case KV_ScenePane::DrawModeWireframe:
            return DrawFacets(painter, false);
        case KV_ScenePane::DrawModeFlat:
            return DrawFacets(painter, true);
        case KV_ScenePane::DrawModeGouraud:
            return DrawBall(painter, kLit, kBody, kDark, 0.05);
        case KV_ScenePane::DrawModeBoundingBoxes:
            return DrawCube(painter, false);
        case KV_ScenePane::DrawModePerPixel:
            return DrawBall(painter, Qt::white, kBody.darker(115), kDark.darker(130), 0.22);
        case KV_ScenePane::DrawModeNothing:
            return DrawEmptyView(painter);
        case KV_ScenePane::DrawModeShadowMap:
            return DrawBall(painter, Qt::black, QColor(0x90, 0x90, 0x90), Qt::white, 0.05);
    }
}

void DrawFolder(QPainter& painter) {
    const QColor paper(0xF0, 0xC8, 0x60);
    painter.setPen(QPen(kEdge, 1, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
    painter.setBrush(paper.darker(115));
    painter.drawPolygon(QPolygonF({QPointF(2.5, 19.5), QPointF(2.5, 5.5), QPointF(9, 5.5), QPointF(11, 8),
                                   QPointF(19.5, 8), QPointF(19.5, 19.5)}));
    painter.setBrush(paper);
    painter.drawPolygon(QPolygonF({QPointF(2.5, 19.5), QPointF(6, 11.5), QPointF(22.5, 11.5), QPointF(19.5, 19.5)}));
}

void DrawCamera(QPainter& painter) {
    const QColor line = Ink().line;
    painter.setPen(QPen(line, 1.6, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolygon(QPolygonF({QPointF(2.5, 19.5), QPointF(2.5, 8), QPointF(7.5, 8), QPointF(9.5, 5),
                                   QPointF(14.5, 5), QPointF(16.5, 8), QPointF(21.5, 8), QPointF(21.5, 19.5)}));
    painter.setBrush(Ink().blue);
    painter.drawEllipse(QPointF(12, 13.5), 3.6, 3.6);
}

void DrawFrameCorners(QPainter& painter) {
    painter.setPen(QPen(Ink().line, 1.8, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    constexpr double kLow = 2.5, kHigh = 21.5, kLength = 5;
    for (const double x : {kLow, kHigh}) {
        for (const double y : {kLow, kHigh}) {
            const double inX = x == kLow ? kLength : -kLength, inY = y == kLow ? kLength : -kLength;
            painter.drawPolyline(QPolygonF({QPointF(x + inX, y), QPointF(x, y), QPointF(x, y + inY)}));
        }
    }
    painter.setPen(QPen(kEdge, 1));
    painter.setBrush(kBody);
    painter.drawEllipse(kCentre, 6, 6);
}

void DrawBallWithShadow(QPainter& painter) {
    painter.setPen(QPen(Ink().line, 0.8));
    painter.setBrush(QColor(0x40, 0x44, 0x4C));
    painter.drawEllipse(QPointF(14, 19), 8.5, 3);
    painter.translate(-1.5, -2.5);
    DrawBall(painter, kLit, kBody, kDark, 0.05);
}

}  // namespace

QIcon OpenIcon() { return DrawToolIcon(DrawFolder); }

QIcon PictureIcon() { return DrawToolIcon(DrawCamera); }

QIcon FitIcon() { return DrawToolIcon(DrawFrameCorners); }

QIcon ViewIcon(KV_ScenePane::ViewMode mode) {
    return DrawToolIcon([mode](QPainter& painter) { DrawView(painter, mode); });
}

QIcon DrawModeIcon(KV_ScenePane::DrawMode mode) {
    return DrawToolIcon([mode](QPainter& painter) { DrawMode(painter, mode); });
}

QIcon ShadowsIcon() { return DrawToolIcon(DrawBallWithShadow); }
