// Workflows with pointer and keys whose pictures follow from the scene and the size of the viewer: aligning, measuring,
// centring, turning and zooming.
#include <QStringList>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <stdexcept>
#include <utility>

#include "host/MeshFiles.h"
#include "host/OperatorFixture.h"

namespace {

using Point = std::array<double, 3>;  // scene units

double Dot(const Point& a, const Point& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

struct SceneBox {
    Point min{}, max{};
    [[nodiscard]] Point Middle() const { return {(min[0] + max[0]) / 2, (min[1] + max[1]) / 2, (min[2] + max[2]) / 2}; }
    [[nodiscard]] double Diagonal() const { return std::hypot(max[0] - min[0], max[1] - min[1], max[2] - min[2]); }
};

/// What points to the right and to the top of the screen.
struct ViewAxes {
    Point right{1, 0, 0}, up{0, 1, 0};  // from +Z, as at the start
};

class ToolWorkflow : public OnDesktops {
protected:
    /// Opens files of the folder of the test, whose points fill this box.
    void Open(const std::vector<std::string>& names, const SceneBox& box) {
        m_box = box;
        std::vector<std::string> files;
        std::ranges::transform(names, std::back_inserter(files), [&](const auto& name) { return File(name); });
        m_operator->Start(files);
        for (const std::string& name : names) (void)m_operator->WaitForText(QString::fromStdString(name));
        m_first = m_operator->WaitForStillPicture();
    }
    /// Pixels per scene unit in a fitted view: the shorter side of the viewer shows the diagonal of the box.
    [[nodiscard]] double Unit() const {
        const ScreenArea viewer = m_operator->Viewer();
        return std::min(viewer.width, viewer.height) / m_box.Diagonal();
    }
    /// The pixel that shows a point in a fitted view.
    [[nodiscard]] ScreenPoint Pixel(const Point& point, const ViewAxes& axes = {}) const {
        const ScreenArea viewer = m_operator->Viewer();
        const Point middle = m_box.Middle();
        const double right = Dot(point, axes.right) - Dot(middle, axes.right);
        const double up = Dot(point, axes.up) - Dot(middle, axes.up);
        return {viewer.x + static_cast<int>(viewer.width / 2.0 + right * Unit()),
                viewer.y + static_cast<int>(viewer.height / 2.0 - up * Unit())};
    }
    [[nodiscard]] std::uint32_t ColorOf(const Point& point) const { return ColorAt(Pixel(point)); }
    void ClickEach(const std::vector<Point>& points) const {
        for (const Point& point : points) {
            Screen().Click(Pixel(point));
            (void)m_operator->WaitForStillPicture();  // the point is drawn
        }
    }
    /// Clicks a button below this height of the screen, where others have the same text.
    void ClickTextBelow(int top, const QString& text) const {
        const ScreenArea screen = Screen().WholeScreen(), area{0, top, screen.width, screen.height - top};
        std::optional<ScreenArea> place;
        m_operator->WaitFor("the text \"" + text.toStdString() + "\" in the lower part", [&] {
            place = FindText(Screen().Show(area), text, m_operator->Scale());
            return place.has_value();
        });
        Screen().Click({place->Middle().x, place->Middle().y + top});
    }
    /// The numbers that a button copies. @param before  the text of the clipboard before the click
    [[nodiscard]] std::vector<double> CopiedNumbers(const std::string& before) const {
        std::string text;
        m_operator->WaitFor("a copied text", [&] { return (text = Screen().Clipboard()) != before && !text.empty(); });
        std::vector<double> numbers;
        for (const QString& word : QString::fromStdString(text).simplified().split(' '))
            numbers.push_back(word.toDouble());
        return numbers;
    }
    /// Picks a point on an object, and copies its coordinates by the button of the status bar.
    /// @param shown  text of the status bar after the pick
    [[nodiscard]] Point PickAndCopy(const Point& point, const char* shown) const {
        const std::string before = Screen().Clipboard();
        const ScreenArea window = m_operator->MainWindow().client;
        const int top = window.y + window.height - 30 * m_operator->Scale();
        Screen().DoubleClick(Pixel(point));
        (void)m_operator->WaitForText(shown, TextMatch::Part);
        ClickTextBelow(top, "Copy");
        const std::vector<double> numbers = CopiedNumbers(before);
        if (numbers.size() != 3) throw std::runtime_error("no coordinates of a point were copied");
        EXPECT_NEAR(numbers[0], point[0], 1 / Unit()) << "a pixel";
        EXPECT_NEAR(numbers[1], point[1], 1 / Unit()) << "a pixel";
        EXPECT_NEAR(numbers[2], point[2], 1e-4);
        return {numbers[0], numbers[1], numbers[2]};
    }
    /// As the status bar shows a point.
    static QString Shown(const Point& point) {
        QStringList numbers;
        for (const double number : point) numbers << QString::number(number, 'f', 3);
        return numbers.join(", ") + " mm";
    }

    SceneBox m_box;
};

// ---- aligning

TEST_P(ToolWorkflow, AScanIsAlignedByThreePointsAndTakenBack) {
    WritePcm(File("still.pcm"), 40, 40);
    // A quarter turn about Z, beside the other one and above it.
    WritePlacedPcm(File("move.pcm"), 60, 20, {0, -1, 0, 80, 1, 0, 0, -10, 0, 0, 1, 10, 0, 0, 0, 1});
    Open({"still.pcm", "move.pcm"}, {{0, -10, 0}, {80, 49, 10}});
    const Point left{70, 45, 10}, reached{50, 20, 0}, still{5, 5, 0};  // by the scan that moves; the third by none
    const std::uint32_t color = ColorOf(left), colorOfStill = ColorOf(still);
    EXPECT_NE(color, kBackground);
    EXPECT_NE(color, colorOfStill);
    EXPECT_EQ(ColorOf(reached), kBackground);
    CheckMayMove("move.pcm");
    GiveKeyboardToViewer();
    Screen().Key("a");
    (void)m_operator->WaitForText("Align by points: click points", TextMatch::Part);
    (void)m_operator->WaitForStillPicture();
    EXPECT_NE(ColorOf(still), colorOfStill) << "dimmed: no point can be picked on it";
    ClickEach({{75, -5}, {65, -5}, {70, 15}});
    Screen().Key("space");
    (void)m_operator->WaitForText("Align by points: click the same", TextMatch::Part);
    (void)m_operator->WaitForStillPicture();
    // The same points of the scan, moved by 10 in both directions from the origin of its sensor.
    ClickEach({{15, 15}, {15, 25}, {35, 20}});
    (void)m_operator->WaitForText("Aligned by 3 points", TextMatch::Part);
    (void)m_operator->WaitForStillPicture();
    EXPECT_EQ(ColorOf(left), kBackground);
    EXPECT_EQ(ColorOf(reached), color);
    EXPECT_EQ(ColorOf(still), colorOfStill);
    EXPECT_TRUE(Screen().FindWindow("still.pcm and 1 more*")) << "the title says that something is not saved";

    m_operator->ClickText("move.pcm");
    m_operator->Choose({"View", "Panes and tool bars", "Transform"});
    (void)m_operator->WaitForStillPicture();  // the menu is gone
    m_operator->ClickText("Transform");       // the tab, beside that of the residuals
    const ScreenArea state = m_operator->WaitForText("Moved, not saved", TextMatch::Part);
    ClickTextBelow(state.y, "Copy");
    const std::vector<double> copied = CopiedNumbers("");
    const double wanted[] = {1, 0, 0, 10, 0, 1, 0, 10, 0, 0, 1, 0, 0, 0, 0, 1};
    ASSERT_EQ(copied.size(), std::size(wanted));
    // The points were clicked to about a pixel.
    for (std::size_t i = 0; i < copied.size(); ++i)
        EXPECT_NEAR(copied[i], wanted[i], i % 4 == 3 ? 2 / Unit() : 0.1 / Unit()) << "number " << i;

    Screen().Key("ctrl+alt+z");
    (void)m_operator->WaitForText("As imported", TextMatch::Part);
    m_operator->WaitFor("the scan where it was",
                        [&] { return ColorOf(left) == color && ColorOf(reached) == kBackground; });
}

// ---- measuring

TEST_P(ToolWorkflow, PickedPointsAreShownAndCopied) {
    WritePcm(File("flat.pcm"), 60, 60);
    Open({"flat.pcm"}, {{0, 0, 0}, {59, 59, 0}});
    m_operator->Choose({"Tools", "Picking", "Points on objects"});
    (void)m_operator->WaitForStillPicture();  // the menu is gone
    const Point first = PickAndCopy({12.3, 40, 0}, "0.000 mm");
    (void)m_operator->WaitForText("flat.pcm: " + Shown(first), TextMatch::Part);
    const Point second = PickAndCopy({45, 20.6, 0}, "0.000 mm, distance");
    const double distance = std::hypot(second[0] - first[0], second[1] - first[1], second[2] - first[2]);
    // A narrow bar leaves out the start of the line.
    (void)m_operator->WaitForText(QString("mm, distance %1 mm").arg(distance, 0, 'f', 3), TextMatch::Part);
}

// ---- the view

TEST_P(ToolWorkflow, ADoubleClickOnARowMovesTheViewToItsObject) {
    WritePcm(File("left.pcm"), 20, 20);
    WritePlacedPcm(File("right.pcm"), 20, 20, {1, 0, 0, 60, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    Open({"left.pcm", "right.pcm"}, {{0, 0, 0}, {79, 19, 0}});
    const std::uint32_t left = ColorOf({9, 9}), right = ColorOf({69, 9});
    EXPECT_NE(left, right);
    EXPECT_EQ(Middle(), kBackground);
    Screen().DoubleClick(m_operator->WaitForText("right.pcm").Middle());
    m_operator->WaitFor("right.pcm in the middle", [&] { return Middle() == right; });
    Screen().DoubleClick(m_operator->WaitForText("left.pcm").Middle());
    m_operator->WaitFor("left.pcm in the middle", [&] { return Middle() == left; });
}

/// A view that a digit chooses.
struct DigitView {
    const char* digit;
    ViewAxes axes;
};

constexpr double kHalf = std::numbers::sqrt2 / 2;
const DigitView kDigitViews[] = {
    {"0", {{-1, 0, 0}, {0, 0, 1}}},                    // from +Y
    {"1", {{1, 0, 0}, {0, 0, 1}}},                     // from -Y
    {"2", {{0, 1, 0}, {0, 0, 1}}},                     // from +X
    {"3", {{0, -1, 0}, {0, 0, 1}}},                    // from -X
    {"5", {{1, 0, 0}, {0, -1, 0}}},                    // from -Z, upside down
    {"6", {{-kHalf, kHalf, 0}, {-0.5, -0.5, kHalf}}},  // from between +X, +Y and +Z
    {"7", {{-1, 0, 0}, {0, 1, 0}}},                    // from -Z
    {"4", {{1, 0, 0}, {0, 1, 0}}},                     // from +Z
};

/// A tetrahedron with legs of three lengths along the axes: each view shows another outline.
class DigitWorkflow : public ToolWorkflow {
protected:
    static inline const std::array<Point, 4> kCorners{{{0, 0, 0}, {60, 0, 0}, {0, 40, 0}, {0, 0, 20}}};

    void OpenTetrahedron() {
        std::vector<StlTriangle> triangles;
        for (const auto& corners : kTetraTriangles) {
            StlTriangle& triangle = triangles.emplace_back();
            for (std::size_t i = 0; i < 3; ++i) {
                const Point& corner = kCorners[static_cast<std::size_t>(corners[i])];
                std::ranges::transform(corner, triangle[i].begin(), [](double v) { return static_cast<float>(v); });
            }
        }
        WriteStl(File("wedge.stl"), triangles);
        Open({"wedge.stl"}, {{0, 0, 0}, {60, 40, 20}});
    }
    /// Whether a pixel of the screen is in the outline.
    [[nodiscard]] static bool IsInside(const std::array<ScreenPoint, 4>& corners, const ScreenPoint& pixel) {
        return std::ranges::any_of(kTetraTriangles, [&](const auto& triangle) {
            const auto side = [&](std::size_t i) {
                const ScreenPoint &a = corners[static_cast<std::size_t>(triangle[i])],
                                  &b = corners[static_cast<std::size_t>(triangle[(i + 1) % 3])];
                return (b.x - a.x) * (pixel.y - a.y) - (b.y - a.y) * (pixel.x - a.x);
            };
            const int first = side(0), second = side(1), third = side(2);
            return (first > 0 && second > 0 && third > 0) || (first < 0 && second < 0 && third < 0);
        });
    }
    /// Whether the viewer shows the tetrahedron in this view: pixels of a grid, without those near the outline.
    [[nodiscard]] bool Shows(const ViewAxes& axes) const {
        const ScreenArea viewer = m_operator->Viewer();
        const ScreenShown shown = m_operator->ViewerPixels();
        std::array<ScreenPoint, 4> corners{};
        std::ranges::transform(kCorners, corners.begin(), [&](const Point& corner) { return Pixel(corner, axes); });
        constexpr int kNear = 3;
        const int step = std::max(1, static_cast<int>(2 * Unit())), reach = static_cast<int>(32 * Unit());
        const ScreenPoint middle = viewer.Middle();
        for (int y = middle.y - reach; y <= middle.y + reach; y += step) {
            for (int x = middle.x - reach; x <= middle.x + reach; x += step) {
                const bool inside = IsInside(corners, {x, y});
                const auto isSame = [&](const ScreenPoint& by) {
                    return IsInside(corners, {x + by.x, y + by.y}) == inside;
                };
                const ScreenPoint around[] = {{-kNear, 0},      {kNear, 0},      {0, -kNear},     {0, kNear},
                                              {-kNear, -kNear}, {kNear, -kNear}, {-kNear, kNear}, {kNear, kNear}};
                if (!std::ranges::all_of(around, isSame)) continue;
                if ((shown.At(x - viewer.x, y - viewer.y) != kBackground) != inside) return false;
            }
        }
        return true;
    }
};

TEST_P(DigitWorkflow, EachDigitChoosesItsView) {
    OpenTetrahedron();
    GiveKeyboardToViewer();
    for (const DigitView& view : kDigitViews) {
        Screen().Key(view.digit);
        m_operator->WaitFor(std::string("the view of digit ") + view.digit, [&] { return Shows(view.axes); });
        for (const DigitView& other : kDigitViews) {
            EXPECT_TRUE(&other == &view || !Shows(other.axes)) << other.digit << " looks like " << view.digit;
        }
    }
    m_operator->WaitForPicture(m_first);
}

TEST_P(ToolWorkflow, AHeldWheelZoomsAsFarAsItsNotches) {
    StartWithScan();
    constexpr int kNotches = 20, kZoomOut = 4;
    Screen().MoveTo(m_operator->InViewer(0.5, 0.5));
    ScreenShown before, single = m_first;
    for (int notch = 0; notch < kNotches; ++notch) {
        Screen().Press(kZoomOut), Screen().Release(kZoomOut);
        before = std::exchange(single, m_operator->WaitForOtherPicture(single));
    }
    EXPECT_NE(single, before) << "the last notch is seen";
    Screen().Key("Home");
    m_operator->WaitForPicture(m_first);
    for (int notch = 0; notch < kNotches; ++notch) Screen().Press(kZoomOut), Screen().Release(kZoomOut);
    m_operator->WaitForPicture(single);
    EXPECT_EQ(m_operator->WaitForStillPicture(), single);
    Screen().Key("Home");
    m_operator->WaitForPicture(m_first);
}

INSTANTIATE_TEST_SUITE_P(Desktops, ToolWorkflow, testing::ValuesIn(kDesktops), NameOfDesktop);
INSTANTIATE_TEST_SUITE_P(Desktops, DigitWorkflow, testing::ValuesIn(kDesktops), NameOfDesktop);

}  // namespace
