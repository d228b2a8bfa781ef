// The dialog before an import of free points.
#include "PointsDialog.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>

#include "ColorButton.h"
#include "host/QtUnderXvfb.h"

namespace {

template <class Part>
Part& Find(const PointsDialog& dialog, const char* name) {
    auto* const part = dialog.findChild<Part*>(name);
    if (part == nullptr) throw std::runtime_error(std::string("the dialog has no ") + name);
    return *part;
}

TEST(PointsDialog, ReturnsTheFirstValuesWhenNothingIsChanged) {
    const PointsDialog dialog({"a.xyz"}, {.alpha = 0.25f, .color = 0x112233});
    EXPECT_EQ(dialog.Look().alpha, 0.25f);
    EXPECT_EQ(dialog.Look().color, 0x112233);
    EXPECT_EQ(Find<QSlider>(dialog, "alpha").value(), 25);
    EXPECT_EQ(Find<QSpinBox>(dialog, "alphaNumber").value(), 25);
}

TEST(PointsDialog, HasOpacitiesFrom0To100Percent) {
    const PointsDialog dialog({"a.xyz"}, {});
    auto& slider = Find<QSlider>(dialog, "alpha");
    EXPECT_EQ(slider.value(), 100);
    slider.setValue(101);
    EXPECT_EQ(dialog.Look().alpha, 1.0f);
    slider.setValue(-1);
    EXPECT_EQ(dialog.Look().alpha, 0.0f);
}

TEST(PointsDialog, ShowsTheSameOpacityInSliderAndNumber) {
    const PointsDialog dialog({"a.xyz"}, {});
    auto& slider = Find<QSlider>(dialog, "alpha");
    auto& number = Find<QSpinBox>(dialog, "alphaNumber");
    slider.setValue(37);
    EXPECT_EQ(number.value(), 37);
    EXPECT_EQ(number.text(), "37 %");
    number.setValue(62);
    EXPECT_EQ(slider.value(), 62);
    EXPECT_EQ(dialog.Look().alpha, 0.62f);
}

TEST(PointsDialog, ReturnsTheColourOfItsButton) {
    const PointsDialog dialog({"a.xyz"}, {});
    Find<ColorButton>(dialog, "pointColor").SetPacked(0x00FF80);
    EXPECT_EQ(dialog.Look().color, 0x00FF80);
}

TEST(PointsDialog, SaysThatTheOpacityCannotBeChangedLater) {
    const PointsDialog dialog({"a.xyz"}, {});
    EXPECT_TRUE(Find<QLabel>(dialog, "note").text().startsWith("The opacity of points cannot be changed after"));
}

TEST(PointsDialog, NamesAtMostFiveFiles) {
    const PointsDialog five({"1", "2", "3", "4", "5"}, {});
    EXPECT_EQ(Find<QLabel>(five, "files").text(), "1\n2\n3\n4\n5");
    const PointsDialog seven({"1", "2", "3", "4", "5", "6", "7"}, {});
    EXPECT_EQ(Find<QLabel>(seven, "files").text(), "1\n2\n3\n4\n5\nand 2 more");
}

TEST(PointsDialog, ShowsNamesOfFilesAsPlainText) {
    const PointsDialog dialog({"<b>a</b>.xyz"}, {});
    EXPECT_EQ(Find<QLabel>(dialog, "files").textFormat(), Qt::PlainText);
}

}  // namespace
