// How far an alignment by pairs of points is from the truth: scans with known poses are moved away and brought back by
// three, four and ten pairs. Real scans are no part of this tree: KV_SAMPLES_DIR of the configure step names their
// folder.
#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "simulate-scans/Scanner.h"
#include "support/ControlFixture.h"
#include "support/RigidReference.h"

namespace {

using KV_ScenePane::AlignmentPair;
using KV_ScenePane::AlignmentPoint;
using reference::Motion;
using reference::Point;

constexpr std::size_t kPairCounts[] = {3, 4, 10};

/// The motion that takes the moving scan away from its true place.
const Motion kAway = reference::MotionAbout({1, 2, 3}, 0.4, {40, -25, 60});

/// A scan as a grid, sensor frame, millimetres.
struct Scan {
    int width = 0, height = 0;
    Motion pose;  ///< true, sensor to world
    std::vector<float> points;
    std::vector<float> confidence;  ///< -1 where nothing was measured

    [[nodiscard]] bool IsMeasured(std::size_t pixel) const { return confidence[pixel] > 0; }
    [[nodiscard]] Point At(std::size_t pixel) const {
        return {points[3 * pixel], points[3 * pixel + 1], points[3 * pixel + 2]};
    }
};

/// A place that both scans show: the same point of the surface, world frame, as each of them has it.
struct Place {
    Point moving, fixed;
};

AlignmentPoint Rounded(const Point& p) {
    return {{static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2])}, {}};
}

std::array<float, 16> Rows(const Motion& m) {
    std::array<float, 16> rows{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column)
            rows[4 * row + column] = static_cast<float>(m.rows[row][column]);
        rows[4 * row + 3] = static_cast<float>(m.t[row]);
    }
    rows[15] = 1;
    return rows;
}

/// Imports a scan that was moved away, as the one variable object.
void ImportMoved(CKV_ScenePaneCtrl& control, const Scan& scan) {
    const auto pose = Rows(Compose(kAway, scan.pose));
    control.ImportMeasurementFromMemory(scan.width, scan.height, scan.points.data(), scan.confidence.data(),
                                        pose.data(), 0xFFFFFF);
    ASSERT_EQ(control.m_vpMeshes.size(), 1u);
    ASSERT_GT(control.m_vpMeshes[0]->GetVertexCount(), 1000u);
    control.AddVariableObject(0);
}

/// Takes the object back to where ImportMoved() left it.
void MoveAway(CKV_ScenePaneCtrl& control, const Scan& scan) {
    const auto m = Rows(Compose(kAway, scan.pose));
    control.SetTrafoOfScan(0, m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8], m[9], m[10], m[11], 0, 0, 0, 1);
}

Motion PoseOf(CKV_ScenePaneCtrl& control) {
    std::array<float, 16> m{};
    control.GetTrafoOfScan(0, &m[0], &m[1], &m[2], &m[3], &m[4], &m[5], &m[6], &m[7], &m[8], &m[9], &m[10], &m[11],
                           &m[12], &m[13], &m[14], &m[15]);
    return {{{{m[0], m[1], m[2]}, {m[4], m[5], m[6]}, {m[8], m[9], m[10]}}}, {m[3], m[7], m[11]}};
}

struct Error {
    double angle = 0;     ///< radians
    double centroid = 0;  ///< of the mean of the places, millimetres
    double farthest = 0;  ///< of the farthest measured point, millimetres
};

std::vector<Point> MovingSide(const std::vector<Place>& places) {
    std::vector<Point> points;
    points.reserve(places.size());
    for (const Place& place : places) points.push_back(place.moving);
    return points;
}

/// Aligns by these places, and compares the pose with the truth.
Error Align(CKV_ScenePaneCtrl& control, const Scan& scan, const std::vector<Place>& places) {
    std::vector<AlignmentPair> pairs;
    pairs.reserve(places.size());
    for (const Place& place : places) pairs.push_back({Rounded(kAway(place.moving)), Rounded(place.fixed)});
    EXPECT_TRUE(control.AlignByPairs(pairs));
    const Motion pose = PoseOf(control);
    Error error;
    error.angle = reference::AngleBetween(pose, scan.pose);
    const Point mean = scan.pose.TurnBack(reference::Mean(MovingSide(places)) - scan.pose.t);
    error.centroid = Length(pose(mean) - scan.pose(mean));
    for (std::size_t i = 0; i < scan.confidence.size(); ++i)
        if (scan.IsMeasured(i))
            error.farthest = std::max(error.farthest, Length(pose(scan.At(i)) - scan.pose(scan.At(i))));
    return error;
}

/// What the places allow for. A wrong rotation by a small vector w moves each point p by w x p; the best one for the
/// distances d of the places is at most |d| over the smallest singular value of that map, which is the root of the two
/// smaller scatters. The mean moves by the mean distance.
Error LargestError(const std::vector<Place>& places) {
    Point sum{};
    double squares = 0;
    for (const Place& place : places) {
        const Point d = place.fixed - place.moving;
        sum = sum + d;
        squares += Dot(d, d);
    }
    const auto scatter = reference::PrincipalScatter(MovingSide(places));
    return {std::sqrt(squares / (scatter[0] + scatter[1])), Length(sum) / static_cast<double>(places.size()), 0};
}

/// Of the floats on the way: points and transforms of up to 2000 millimetres.
constexpr double kRoundingLength = 8 * 0x1p-24 * 2000;
double RoundingAngle(const std::vector<Place>& places) {
    const auto scatter = reference::PrincipalScatter(MovingSide(places));
    return 8 * 0x1p-24 + kRoundingLength * std::sqrt(static_cast<double>(places.size()) / (scatter[0] + scatter[1]));
}

/// As an operator picks: the first one somewhere, each further one as far as possible from those before.
std::vector<Place> SpreadOut(const std::vector<Place>& places, std::size_t count, std::size_t first) {
    std::vector<Place> chosen = {places.at(first)};
    std::vector<double> distance(places.size(), std::numeric_limits<double>::max());
    while (chosen.size() < count) {
        for (std::size_t i = 0; i < places.size(); ++i)
            distance[i] = std::min(distance[i], Length(places[i].moving - chosen.back().moving));
        chosen.push_back(places[static_cast<std::size_t>(std::ranges::max_element(distance) - distance.begin())]);
    }
    return chosen;
}

/// Root mean square and maximum over the trials.
class Statistic {
public:
    void Add(double value) {
        m_dSquares += value * value, m_dLargest = std::max(m_dLargest, value);
        ++m_nCount;
    }
    [[nodiscard]] double Rms() const { return std::sqrt(m_dSquares / m_nCount); }
    [[nodiscard]] double Largest() const { return m_dLargest; }

private:
    double m_dSquares = 0, m_dLargest = 0;
    int m_nCount = 0;
};

struct Report {
    Statistic degrees, farthest;

    void Add(const Error& error) {
        degrees.Add(error.angle * 180 / std::numbers::pi);
        farthest.Add(error.farthest);
    }
    void Print(const std::string& title, std::size_t count) const {
        std::cout << title << ", " << count << " pairs: " << degrees.Rms() << " degrees rms, " << degrees.Largest()
                  << " at most; farthest point " << farthest.Rms() << " mm rms, " << farthest.Largest() << " at most\n";
    }
};

void ExpectWithinBound(const Error& error, const std::vector<Place>& places) {
    const Error largest = LargestError(places);
    ASSERT_LT(largest.angle, 0.3) << "the bound is that of a small rotation";
    // The sine of the rotation is what the bound is for.
    EXPECT_LE(std::sin(error.angle), largest.angle + RoundingAngle(places));
    EXPECT_LE(error.centroid, largest.centroid + kRoundingLength);
}

// ---- real scans

struct CloseFile {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
};

/// A depth image of 16 bits, millimetres, 0 where nothing was measured.
std::vector<std::uint16_t> ReadDepth(const std::string& path, int* width, int* height) {
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
    if (file == nullptr) return {};
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file.get());
    png_read_png(png, info, PNG_TRANSFORM_SWAP_ENDIAN, nullptr);
    EXPECT_EQ(png_get_bit_depth(png, info), 16);
    *width = static_cast<int>(png_get_image_width(png, info));
    *height = static_cast<int>(png_get_image_height(png, info));
    std::vector<std::uint16_t> depth;
    png_bytepp rows = png_get_rows(png, info);
    for (int row = 0; row < *height; ++row)
        for (int column = 0; column < *width; ++column) {
            std::uint16_t value = 0;
            std::memcpy(&value, rows[row] + 2 * column, 2);
            depth.push_back(value);
        }
    png_destroy_read_struct(&png, &info, nullptr);
    return depth;
}

struct Camera {
    double focalX = 0, focalY = 0, centerX = 0, centerY = 0;
};

/// One of the frames of a box with things in it, seen by a depth camera on a robot arm.
struct Frame {
    Scan scan;
    Camera camera;
};

Frame ReadFrame(const std::string& folder, const std::string& name) {
    Frame frame;
    std::ifstream intrinsics(folder + "intrinsics.K.txt"), poseFile(folder + name + ".pose.txt");
    double k[9] = {}, pose[12] = {};
    for (double& value : k) intrinsics >> value;
    for (double& value : pose) poseFile >> value;
    EXPECT_TRUE(intrinsics && poseFile) << name;
    frame.camera = {k[0], k[4], k[2], k[5]};
    // Six digits of a rotation: the nearest one is what the viewer makes of it, so the truth has it, too. Metres.
    CACADQTrafo trafo;
    trafo.Set(pose[0], pose[4], pose[8], pose[1], pose[5], pose[9], pose[2], pose[6], pose[10], 0, 0, 0);
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 3; ++column)
            frame.scan.pose.rows[row][column] = trafo.m_dRotation[3 * column + row];
    frame.scan.pose.t = 1000.0 * Point{pose[3], pose[7], pose[11]};
    const auto depth = ReadDepth(folder + name + ".depth.png", &frame.scan.width, &frame.scan.height);
    for (std::size_t i = 0; i < depth.size(); ++i) {
        const double z = depth[i];
        const double column = static_cast<double>(i % static_cast<std::size_t>(frame.scan.width));
        const double row = static_cast<double>(i / static_cast<std::size_t>(frame.scan.width));
        const double x = (column - k[2]) * z / k[0], y = (row - k[5]) * z / k[4];
        for (const double coordinate : {x, y, z}) frame.scan.points.push_back(static_cast<float>(coordinate));
        frame.scan.confidence.push_back(z > 0 ? 1.0f : -1.0f);
    }
    return frame;
}

/// Points of the moving scan that the other camera sees too: what it has at that pixel, when it is the same surface.
std::vector<Place> PlacesInBoth(const Frame& moving, const Frame& fixed, double sameSurface) {
    std::vector<Place> places;
    for (std::size_t i = 0; i < moving.scan.confidence.size(); i += 7) {
        if (!moving.scan.IsMeasured(i)) continue;
        const Point world = moving.scan.pose(moving.scan.At(i));
        const Point seen = fixed.scan.pose.TurnBack(world - fixed.scan.pose.t);
        if (seen[2] <= 0) continue;
        const double column = std::round(fixed.camera.focalX * seen[0] / seen[2] + fixed.camera.centerX);
        const double row = std::round(fixed.camera.focalY * seen[1] / seen[2] + fixed.camera.centerY);
        if (column < 0 || row < 0 || column >= fixed.scan.width || row >= fixed.scan.height) continue;
        const auto pixel = static_cast<std::size_t>(row) * static_cast<std::size_t>(fixed.scan.width) +
                           static_cast<std::size_t>(column);
        if (!fixed.scan.IsMeasured(pixel)) continue;
        const Point there = fixed.scan.pose(fixed.scan.At(pixel));
        if (Length(there - world) < sameSurface) places.push_back({world, there});
    }
    return places;
}

class AlignmentOfRealScans : public testing::Test {
protected:
    void SetUp() override {
        if (std::string(KV_SAMPLES_DIR).empty()) GTEST_SKIP() << "configured without sample files";
        const std::string folder = KV_SAMPLES_DIR "/grids/andyzeng+tsdf-fusion/old-version/data/sample/";
        for (const char* number : {"15", "31", "47", "63", "79", "95"})
            frames.push_back(ReadFrame(folder, std::string("frame-0000") + number));
        for (const Frame& frame : frames) ASSERT_GT(frame.scan.points.size(), 100000u);
    }

    std::vector<Frame> frames;
};

/// Aligns by three, four and ten of the places, from three first picks each.
void AlignByEachCount(const Scan& scan, const std::vector<Place>& places, std::map<std::size_t, Report>& reports) {
    ASSERT_GT(places.size(), 1000u);
    NoPictureControl control;
    ImportMoved(*control, scan);
    for (const std::size_t count : kPairCounts)
        for (const std::size_t first : {std::size_t{0}, places.size() / 3, places.size() - 1}) {
            const auto picked = SpreadOut(places, count, first);
            MoveAway(*control, scan);
            const Error error = Align(*control, scan, picked);
            ExpectWithinBound(error, picked);
            reports[count].Add(error);
        }
}

TEST_F(AlignmentOfRealScans, ByTheirOwnPointsIsExactUpToTheRounding) {
    std::map<std::size_t, Report> reports;
    for (const Frame& frame : frames) AlignByEachCount(frame.scan, PlacesInBoth(frame, frame, 1e-3), reports);
    for (const auto& [count, report] : reports) report.Print("real scans, the same scan", count);
}

TEST_F(AlignmentOfRealScans, ByPointsOfTheNextScanIsWithinWhatTheScansAgreeIn) {
    std::map<std::size_t, Report> reports;
    // The camera measures in steps of several millimetres; farther away it is another surface.
    for (std::size_t i = 0; i + 1 < frames.size(); ++i)
        AlignByEachCount(frames[i + 1].scan, PlacesInBoth(frames[i + 1], frames[i], 10), reports);
    for (const auto& [count, report] : reports) report.Print("real scans, the next scan", count);
}

// ---- simulated scans

Motion MotionOf(const simulate::Transform& t) {
    return {{{{t[0], t[1], t[2]}, {t[4], t[5], t[6]}, {t[8], t[9], t[10]}}}, {t[3], t[7], t[11]}};
}

simulate::Vec3 ToVec3(const Point& p) {
    return {static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2])};
}

/// Two scans of an object from neighbouring directions, without noise, and the points that both sensors see.
struct SimulatedPair {
    Scan moving;
    std::vector<Place> places;
};

SimulatedPair Simulate(const std::string& shape) {
    const simulate::TriangleMesh mesh = simulate::MakeShape(shape);
    const simulate::RayCaster caster(mesh);
    simulate::ScannerSettings settings;
    settings.width = 160, settings.height = 120;
    settings.noise = settings.dropout = 0;
    settings.objectRadius = simulate::RadiusAroundOrigin(mesh);
    const auto poses = simulate::PosesAround(8, settings.distance);
    const simulate::ScanGrid grid = simulate::MeasureFrom(caster, poses[0], settings, 0, 1);
    SimulatedPair pair;
    pair.moving = {grid.width, grid.height, MotionOf(grid.toWorld), grid.points, grid.confidence};
    for (std::size_t i = 0; i < grid.PixelCount(); ++i) {
        pair.moving.confidence[i] = grid.IsMeasured(i) ? 1.0f : -1.0f;
        if (!grid.IsMeasured(i)) continue;
        const Point world = pair.moving.pose(pair.moving.At(i));
        const simulate::Vec3 sensor = simulate::TransformPoint(poses[1], {0, 0, 0});
        const simulate::Hit hit = caster.Nearest({sensor, ToVec3(world) - sensor});
        // In units of the way to the point: nothing is in front of it.
        if (hit.IsHit() && std::abs(hit.distance - 1) < 1e-4f) pair.places.push_back({world, world});
    }
    return pair;
}

/// What independent noise gives on average: the variance about each principal axis is that of a coordinate over the
/// scatter across the axis. @param sigma  of the distance of a place, per coordinate
double ExpectedSquaredAngle(const std::vector<Place>& places, double sigma) {
    const auto s = reference::PrincipalScatter(MovingSide(places));
    return sigma * sigma * (1 / (s[0] + s[1]) + 1 / (s[0] + s[2]) + 1 / (s[1] + s[2]));
}

TEST(AlignmentOfSimulatedScans, WithNoiseOfFiveHundredthsIsAsGoodAsTheoryAllows) {
    constexpr double kNoise = 0.05;
    constexpr int kTrials = 150;
    for (const std::string name : {"bust", "bracket"}) {
        const SimulatedPair pair = Simulate(name);
        ASSERT_GT(pair.places.size(), 500u) << name;
        std::mt19937 random(1);
        std::normal_distribution<double> noise(0, kNoise);
        NoPictureControl control;
        ImportMoved(*control, pair.moving);
        for (const std::size_t count : kPairCounts) {
            Report report;
            double expected = 0, measured = 0;
            for (int trial = 0; trial < kTrials; ++trial) {
                auto picked = SpreadOut(pair.places, count, random() % pair.places.size());
                expected += ExpectedSquaredAngle(picked, kNoise * std::numbers::sqrt2);  // noise on both sides
                // The truth of the noise is the scan: its points stay, the picks are beside them.
                for (Place& place : picked) {
                    place.moving = place.moving + Point{noise(random), noise(random), noise(random)};
                    place.fixed = place.fixed + Point{noise(random), noise(random), noise(random)};
                }
                MoveAway(*control, pair.moving);
                const Error error = Align(*control, pair.moving, picked);
                ExpectWithinBound(error, picked);
                report.Add(error);
                measured += error.angle * error.angle;
            }
            report.Print("simulated " + name + ", 0.05 mm noise", count);
            // The sum of 150 squares of three normal numbers: its root scatters by 1 / sqrt(2 x 450) = 3.3 percent,
            // more where one of the three counts alone (5.8); four times that.
            EXPECT_NEAR(std::sqrt(measured / expected), 1, 0.23) << name << ", " << count << " pairs";
        }
    }
}

}  // namespace
