// How well the colours of objects can be distinguished, and which objects get them.
#include "ObjectPalette.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "FileImport.h"

namespace {

using Triple = std::array<double, 3>;
using Matrix = std::array<Triple, 3>;

Triple Product(const Matrix& m, const Triple& v) {
    Triple r{};
    for (std::size_t i = 0; i < 3; ++i) r[i] = m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2];
    return r;
}

/// Linear intensities of a packed colour 0x00BBGGRR in sRGB.
Triple LinearOf(std::int32_t packed) {
    Triple linear{};
    for (std::size_t i = 0; i < 3; ++i) {
        const double c = ((packed >> (8 * i)) & 0xFF) / 255.0;
        linear[i] = c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    }
    return linear;
}

/// CIE L*, a*, b* for the white point D65.
Triple LabOf(const Triple& linear) {
    constexpr Matrix kToXyz = {
        {{0.4124564, 0.3575761, 0.1804375}, {0.2126729, 0.7151522, 0.0721750}, {0.0193339, 0.1191920, 0.9503041}}};
    constexpr Triple kWhite = {0.95047, 1.0, 1.08883};
    Triple f = Product(kToXyz, linear);
    for (std::size_t i = 0; i < 3; ++i) {
        const double t = f[i] / kWhite[i];
        f[i] = t > 216.0 / 24389.0 ? std::cbrt(t) : (24389.0 / 27.0 * t + 16.0) / 116.0;
    }
    return {116.0 * f[1] - 16.0, 500.0 * (f[0] - f[1]), 200.0 * (f[1] - f[2])};
}

double Radians(double degrees) { return degrees * std::numbers::pi / 180.0; }

/// Hue angle, degrees from 0 to 360.
double HueOf(double a, double b) {
    const double degrees = std::atan2(b, a) * 180.0 / std::numbers::pi;
    return degrees < 0.0 ? degrees + 360.0 : degrees;
}

/// CIEDE2000 as in Sharma, Wu and Dalal (2005).
double DistanceOf(const Triple& one, const Triple& two) {
    const auto pow7 = [](double x) { return std::pow(x, 7.0); };
    const double mean = (std::hypot(one[1], one[2]) + std::hypot(two[1], two[2])) / 2.0;
    const double g = 0.5 * (1.0 - std::sqrt(pow7(mean) / (pow7(mean) + pow7(25.0))));
    const double a1 = one[1] * (1.0 + g), a2 = two[1] * (1.0 + g);
    const double c1 = std::hypot(a1, one[2]), c2 = std::hypot(a2, two[2]);
    const double h1 = HueOf(a1, one[2]), h2 = HueOf(a2, two[2]);
    double dh = h2 - h1, hm = (h1 + h2) / 2.0;
    if (std::abs(dh) > 180.0) {
        dh += dh > 0.0 ? -360.0 : 360.0;
        hm += h1 + h2 < 360.0 ? 180.0 : -180.0;
    }
    if (c1 * c2 == 0.0) dh = 0.0, hm = h1 + h2;
    const double dl = two[0] - one[0], dc = c2 - c1, dH = 2.0 * std::sqrt(c1 * c2) * std::sin(Radians(dh / 2.0));
    const double lm = (one[0] + two[0]) / 2.0, cm = (c1 + c2) / 2.0;
    const double t = 1.0 - 0.17 * std::cos(Radians(hm - 30.0)) + 0.24 * std::cos(Radians(2.0 * hm)) +
                     0.32 * std::cos(Radians(3.0 * hm + 6.0)) - 0.20 * std::cos(Radians(4.0 * hm - 63.0));
    const double l50 = (lm - 50.0) * (lm - 50.0);
    const double sl = 1.0 + 0.015 * l50 / std::sqrt(20.0 + l50), sc = 1.0 + 0.045 * cm, sh = 1.0 + 0.015 * cm * t;
    const double turn = 30.0 * std::exp(-std::pow((hm - 275.0) / 25.0, 2.0));
    const double rt = -std::sin(Radians(2.0 * turn)) * 2.0 * std::sqrt(pow7(cm) / (pow7(cm) + pow7(25.0)));
    const double l = dl / sl, c = dc / sc, h = dH / sh;
    return std::sqrt(l * l + c * c + h * h + rt * c * h);
}

// Machado, Oliveira and Fernandes (2009), severity 1.
constexpr Matrix kNoRedCones = {
    {{0.152286, 1.052583, -0.204868}, {0.114503, 0.786281, 0.099216}, {-0.003882, -0.048116, 1.051998}}};
constexpr Matrix kNoGreenCones = {
    {{0.367322, 0.860646, -0.227968}, {0.280085, 0.672501, 0.047413}, {-0.011820, 0.042940, 0.968881}}};

Triple Seen(const Matrix& eyes, std::int32_t packed) {
    Triple linear = Product(eyes, LinearOf(packed));
    for (double& value : linear) value = std::clamp(value, 0.0, 1.0);
    return LabOf(linear);
}

/// As the palette's comment defines it.
double Difference(std::int32_t one, std::int32_t two) {
    double difference = DistanceOf(LabOf(LinearOf(one)), LabOf(LinearOf(two)));
    for (const Matrix& eyes : {kNoRedCones, kNoGreenCones})
        difference = std::min(difference, 2.0 * DistanceOf(Seen(eyes, one), Seen(eyes, two)));
    return difference;
}

// The pairs 1, 7, 17 and 25 of the paper's table.
TEST(ColorDistance, IsThatOfThePublishedPairs) {
    EXPECT_NEAR(DistanceOf({50, 2.6772, -79.7751}, {50, 0, -82.7485}), 2.0425, 1e-4);
    EXPECT_NEAR(DistanceOf({50, 0, 0}, {50, -1, 2}), 2.3669, 1e-4);
    EXPECT_NEAR(DistanceOf({50, 2.5, 0}, {73, 25, -18}), 27.1492, 1e-4);
    EXPECT_NEAR(DistanceOf({60.2574, -34.0099, 36.2677}, {60.4626, -34.1751, 39.4387}), 1.2644, 1e-4);
}

TEST(ObjectPalette, HasNoTwoColoursThatLookAlike) {
    for (std::size_t i = 0; i < kPalette.size(); ++i) {
        for (std::size_t k = i + 1; k < kPalette.size(); ++k)
            EXPECT_GE(Difference(kPalette[i], kPalette[k]), 15.0) << i << ", " << k;
        for (const std::int32_t other : {0x321919, 0x000000, 0xFFFFFF})  // the viewer's background, black, white
            EXPECT_GE(Difference(kPalette[i], other), 15.0) << i;
    }
}

TEST(ObjectPalette, TellsFewObjectsApartBetterThanMany) {
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t k = i + 1; k < 4; ++k) EXPECT_GE(Difference(kPalette[i], kPalette[k]), 30.0) << i << ", " << k;
    }
}

TEST(ObjectPalette, Repeats) {
    EXPECT_EQ(PaletteColor(0), kPalette[0]);
    EXPECT_EQ(PaletteColor(kPaletteSize - 1), kPalette[kPaletteSize - 1]);
    EXPECT_EQ(PaletteColor(kPaletteSize), kPalette[0]);
}

TEST(TellsScansApart, SeveralScansUnlessAColourWasChosen) {
    const std::int32_t usual = ImportSettings{}.color;
    const std::vector<std::string> scans = {"a.pcm", "b.PAX"}, one = {"a.pcm", "b.ply", "c.xyz"};
    EXPECT_TRUE(TellsScansApart(scans, usual, false));
    EXPECT_FALSE(TellsScansApart(scans, usual, true)) << "the command line has a colour";
    EXPECT_FALSE(TellsScansApart(scans, 0x0000FF, false)) << "the settings have a colour";
    EXPECT_FALSE(TellsScansApart(one, usual, false));
    EXPECT_FALSE(TellsScansApart({}, usual, false));
}

ObjectReport Object(const char* file, std::int32_t color, bool hasVertexColors = false) {
    ObjectReport object;
    object.file = file;
    object.color = color;
    object.hasVertexColors = hasVertexColors;
    return object;
}

TEST(ShownColors, AreThoseOfTheFilesWhereTheyHaveColours) {
    const std::vector<ObjectReport> objects = {Object("a.pcm", 0xC8D4DC), Object("b.pcm", 0xFFFFFF, true),
                                               Object("c.stl", 0xFFFFFF), Object("d.ply", 0xFFFFFF, true),
                                               Object("e.hps", 0x123456), Object("f.pax", 0xC8D4DC)};
    EXPECT_EQ(ShownColors(objects, true),
              (std::vector<std::int32_t>{kPalette[0], 0xFFFFFF, kMeshColor, 0xFFFFFF, 0x123456, kPalette[1]}));
    EXPECT_EQ(ShownColors(objects, false),
              (std::vector<std::int32_t>{0xC8D4DC, 0xFFFFFF, kMeshColor, 0xFFFFFF, 0x123456, 0xC8D4DC}));
}

}  // namespace
