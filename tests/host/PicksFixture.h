// A host window with two scans in which tests pick points by mouse input, and the pane of picks.
#pragma once
#include <gtest/gtest.h>

#include <QClipboard>
#include <QDockWidget>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "EventPane.h"
#include "PickPanel.h"
#include "SceneReport.h"
#include "host/MainWindowFixture.h"

/// a.xdt, 30 x 30 points at height 0, and above a corner of it b.xdt, 10 x 10 points at height 5; seen from +Z.
class PicksFixture : public MainWindowFixture {
protected:
    void SetUp() override {
        Show();
        WriteXdt(m_folder / "a.xdt", 30, 30);
        WriteXdt(m_folder / "b.xdt", 10, 10, 5.0f);
        Import({m_folder / "a.xdt", m_folder / "b.xdt"});
        ASSERT_EQ(ObjectsInViewer(), 2) << Messages();
        Find<QDockWidget>("picks").raise();
        QGuiApplication::clipboard()->setText("nothing");
    }
    /// The pixel of a point (x, y, height) of the scans.
    [[nodiscard]] QPoint PixelOf(float x, float y) const {
        const KV_ScenePane::Picture frame = DrawFrame();
        const std::array<float, 10> view = View();
        // Two picks give the pixels per unit: the projection is parallel.
        KV_ScenePane::SurfacePoint left, right;
        const int row = frame.height / 2, column = frame.width / 2;
        if (!m_window->Pane()->PickSurface(column - 50, row, &left) ||
            !m_window->Pane()->PickSurface(column + 50, row, &right))
            throw std::runtime_error("no surface in the middle of the viewer");
        const float pixels = 100.0f / (right.point[0] - left.point[0]);
        return {static_cast<int>(std::lround(static_cast<float>(column) + (x - view[6]) * pixels)),
                static_cast<int>(std::lround(static_cast<float>(row) - (y - view[7]) * pixels))};
    }
    [[nodiscard]] QPoint OnA() const { return PixelOf(20, 20); }
    [[nodiscard]] QPoint OnB() const { return PixelOf(4, 5); }
    /// What is under the pixel by a search that the window does not use.
    [[nodiscard]] KV_ScenePane::SurfacePoint Surface(const QPoint& pixel) const {
        KV_ScenePane::SurfacePoint hit;
        EXPECT_TRUE(m_window->Pane()->PickSurface(pixel.x(), pixel.y(), &hit));
        return hit;
    }
    void DoubleClick(const QPoint& pixel) const {
        using Kind = KV_ScenePane::MouseInput::Kind;
        for (const Kind kind : {Kind::LeftDown, Kind::LeftUp, Kind::DoubleClick, Kind::LeftUp}) {
            const std::uint32_t flags = kind == Kind::LeftUp ? 0 : KV_ScenePane::kMouseLeft;
            m_window->Pane()->SendMouse({.kind = kind, .flags = flags, .x = pixel.x(), .y = pixel.y()});
        }
    }
    /// The pick mode in which a pick places a point.
    void PlacePoints() const { Trigger("Points on objects"); }
    /// "x<separator>y<separator>z" as the window writes them.
    [[nodiscard]] static std::string Text(const KV_ScenePane::SurfacePoint& hit, const std::string& separator) {
        return NumberText(hit.point[0]) + separator + NumberText(hit.point[1]) + separator + NumberText(hit.point[2]);
    }
    /// "x, y, z" with 3 decimals, as the status bar shows them.
    [[nodiscard]] static std::string ShownText(const KV_ScenePane::SurfacePoint& hit) {
        QStringList numbers;
        for (const float value : hit.point) numbers << QString::number(static_cast<double>(value), 'f', 3);
        return numbers.join(", ").toStdString();
    }
    /// The rows of the list: number, object, x, y, z.
    [[nodiscard]] std::vector<std::string> Points() const {
        std::vector<std::string> rows;
        for (int i = 0; i < List().topLevelItemCount(); ++i) {
            QStringList texts;
            for (int column = 0; column < PickPanel::kColumnCount; ++column)
                texts << List().topLevelItem(i)->text(column);
            rows.push_back(texts.join(" ").toStdString());
        }
        return rows;
    }
    /// The coordinates in the list are those of the viewer's spheres.
    void ExpectListAsInViewer() const {
        ASSERT_EQ(List().topLevelItemCount(), Methods().GetNumberOfPickPointSpheres());
        for (int i = 0; i < List().topLevelItemCount(); ++i) {
            std::array<float, 3> point{};
            Methods().GetPickPointSphereCoords(i, &point[0], &point[1], &point[2]);
            const QTreeWidgetItem& row = *List().topLevelItem(i);
            EXPECT_EQ(row.text(PickPanel::kNumber), QString::number(i + 1));
            for (int axis = 0; axis < 3; ++axis)
                EXPECT_EQ(row.text(PickPanel::kX + axis).toStdString(),
                          NumberText(point[static_cast<std::size_t>(axis)]))
                    << "point " << i << ", axis " << axis;
        }
    }
    [[nodiscard]] QTreeWidget& List() const { return Find<QTreeWidget>("pickPoints"); }
    [[nodiscard]] QPushButton& Button(const char* name) const { return Find<QPushButton>(name); }
    void Select(const std::vector<int>& rows) const {
        List().clearSelection();
        for (const int row : rows) List().topLevelItem(row)->setSelected(true);
    }
    [[nodiscard]] std::string LastPick() const {
        const auto& label = Find<QLabel>("lastPick");
        return label.isHidden() ? "" : label.text().toStdString();
    }
    [[nodiscard]] std::string Events() const { return m_window->Events().Text().toStdString(); }
    [[nodiscard]] static std::string Clipboard() { return QGuiApplication::clipboard()->text().toStdString(); }
    /// Pixels of the disc that a sphere of this part of the scene's diagonal covers.
    [[nodiscard]] double DiscPixels(double percent, double diagonal) const {
        const double pixels = (PixelOf(20, 20).x() - PixelOf(10, 20).x()) / 10.0;  // per unit
        const double radius = percent / 100.0 * diagonal * pixels;
        return std::numbers::pi * radius * radius;
    }
    /// Pixels of a new frame that show red spheres. The scans are grey.
    [[nodiscard]] int RedPixels() const {
        const KV_ScenePane::Picture picture = DrawFrame();
        return static_cast<int>(std::ranges::count_if(picture.pixels, [](std::uint32_t pixel) {
            const auto red = static_cast<int>(pixel >> 16 & 0xFF);
            const auto other = static_cast<int>(std::max(pixel >> 8 & 0xFF, pixel & 0xFF));
            return red > other + 40;
        }));
    }
};
