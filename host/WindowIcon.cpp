// What the icon of the window shows: a patch of a curved surface as a mesh, on the colour of an empty view.
#include "WindowIcon.h"

#include <QPainter>
#include <QPixmap>
#include <QPolygonF>
#include <cmath>

namespace {

constexpr double kSide = 64;  // units of the drawing
constexpr int kCells = 4;     // of the mesh, in both directions
const QColor kField(0x19, 0x19, 0x32), kLow(0x1F, 0x6F, 0x8B), kHigh(0xF2, 0xE3, 0xC6), kMesh(0x0E, 0x24, 0x38);

double HeightAt(double u, double v) { return std::sin(3.0 * u + 0.4) * std::cos(2.2 * v - 0.6); }

/// A point of the surface in the drawing. @param u, v  0 to 1
QPointF Project(double u, double v) {
    const double x = 32 + 24 * (u - v), y = 24 + 14 * (u + v) - 9 * HeightAt(u, v);
    return {x, y};
}

QColor ColorAt(double u, double v) {
    const double share = 0.5 + 0.5 * HeightAt(u, v);
    const auto mix = [share](int low, int high) { return static_cast<int>(low + share * (high - low)); };
    return {mix(kLow.red(), kHigh.red()), mix(kLow.green(), kHigh.green()), mix(kLow.blue(), kHigh.blue())};
}

void Draw(QPainter& painter) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(kField);
    painter.drawRoundedRect(QRectF(2, 2, kSide - 4, kSide - 4), 12, 12);
    painter.setPen(QPen(kMesh, 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    for (int row = 0; row < kCells; ++row) {
        for (int column = 0; column < kCells; ++column) {
            const double u = static_cast<double>(row) / kCells, v = static_cast<double>(column) / kCells;
            constexpr double kStep = 1.0 / kCells;
            const QPointF a = Project(u, v), b = Project(u + kStep, v), c = Project(u + kStep, v + kStep),
                          d = Project(u, v + kStep);
            painter.setBrush(ColorAt(u + kStep / 3, v + kStep / 3));
            painter.drawPolygon(QPolygonF({a, b, d}));
            painter.setBrush(ColorAt(u + 2 * kStep / 3, v + 2 * kStep / 3));
            painter.drawPolygon(QPolygonF({b, c, d}));
        }
    }
}

}  // namespace

QIcon WindowIcon() {
    QIcon icon;
    for (const int pixels : {16, 32, 48, 64, 128}) {
        QPixmap picture(pixels, pixels);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(pixels / kSide, pixels / kSide);
        Draw(painter);
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}
