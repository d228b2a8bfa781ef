// The panel of the clip plane without a viewer, and what is stored for the next start.
#include "ClipPanel.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QLabel>
#include <QSettings>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "ColorButton.h"
#include "NumberBox.h"
#include "host/ClipScene.h"
#include "host/QtUnderXvfb.h"

void PrintTo(const ClipSettings& clip, std::ostream* out) {
    *out << (clip.on ? "on " : "off ") << (clip.shown ? "shown " : "hidden ") << (clip.moved ? "moved" : "placed");
    for (const auto& part : {clip.center, clip.normal}) {
        for (const float value : part) *out << ' ' << value;
    }
    *out << std::hex << ' ' << clip.color << ' ' << clip.handleColor << ' ' << clip.outlineColor << std::dec;
}

namespace {

TEST(ClipPanel, WithoutAViewerDoesNothing) {
    ClipPanel panel({});
    for (auto* const box : panel.findChildren<QCheckBox*>()) box->click();
    for (auto* const button : panel.findChildren<QAbstractButton*>()) {
        if (qobject_cast<ColorButton*>(button) == nullptr) button->click();
    }
    for (auto* const box : panel.findChildren<NumberBox*>()) box->setValue(3);
    panel.PlaceAtData();
    panel.AlignNormal(0);
    panel.Flip();
    panel.Reset();
    panel.SwitchClipping(true);
    panel.SwitchPlane(false);
    panel.FollowViewer();
    panel.FollowScene();
    EXPECT_EQ(panel.Settings(), ClipSettings());
    EXPECT_FALSE(panel.IsClipping());
    EXPECT_FALSE(panel.isEnabled());
}

TEST(ClipPanel, ShowsTheSettingsItStartsWith) {
    const ClipPanel panel({.on = true, .shown = false, .center = {-1.5f, 0.1f, 1234.5678f}, .normal = {0, -1, 0}});
    EXPECT_TRUE(panel.findChild<QCheckBox*>("clipOn")->isChecked());
    EXPECT_FALSE(panel.findChild<QCheckBox*>("clipShown")->isChecked());
    const auto text = [&](const char* name) { return panel.findChild<NumberBox*>(name)->text().toStdString(); };
    EXPECT_EQ(text("clipCenterX"), "-1.5");
    EXPECT_EQ(text("clipCenterY"), "0.1");
    EXPECT_EQ(text("clipCenterZ"), "1234.57");
    EXPECT_EQ(text("clipNormalX"), "0");
    EXPECT_EQ(text("clipNormalY"), "-1");
    EXPECT_FALSE(panel.IsClipping()) << "there is no viewer yet";
}

TEST(NumberBox, RefusesACommaInsteadOfDroppingIt) {
    const NumberBox box;
    for (const auto& [text, isNumber] : {std::pair("3.5", true), std::pair("3,5", false), std::pair("1,000", false)}) {
        QString typed(text);
        int position = 0;
        EXPECT_EQ(box.validate(typed, position) == QValidator::Acceptable, isNumber) << text;
    }
}

TEST(ClipPanel, NamesItsControls) {
    const ClipPanel panel({});
    const QList<NumberBox*> numbers = panel.findChildren<NumberBox*>();
    EXPECT_EQ(numbers.size(), 6);
    for (const NumberBox* const box : numbers) {
        EXPECT_FALSE(box->accessibleName().isEmpty()) << box->objectName().toStdString();
        EXPECT_FALSE(box->toolTip().isEmpty()) << box->objectName().toStdString();
    }
    const QList<ColorButton*> colors = panel.findChildren<ColorButton*>();
    EXPECT_EQ(colors.size(), 3);
    for (const ColorButton* const color : colors) EXPECT_FALSE(color->accessibleName().isEmpty());
    const QString hint = panel.findChild<QLabel*>("clipHint")->text();
    for (const char* const word : {"arrow", "ball", "Ctrl", "Escape", "Up, Down"})
        EXPECT_TRUE(hint.contains(word)) << word;
}

TEST(ClipPanel, GoesFromFieldToFieldOfOneVectorWithTab) {
    ClipPanel panel({});
    std::vector<std::string> names;
    for (const QWidget* next = panel.nextInFocusChain(); next != &panel; next = next->nextInFocusChain()) {
        if (dynamic_cast<const NumberBox*>(next) != nullptr) names.push_back(next->objectName().toStdString());
    }
    EXPECT_EQ(names, (std::vector<std::string>{"clipCenterX", "clipCenterY", "clipCenterZ", "clipNormalX",
                                               "clipNormalY", "clipNormalZ"}));
}

class StoredClipPlane : public testing::Test {
protected:
    void SetUp() override { ForgetStoredClip(); }
    void TearDown() override { ForgetStoredClip(); }
    static void Store(const char* key, const QVariant& value) {
        QSettings("scenepane", "scenepane").setValue(QString("clip/") + key, value);
    }
    static constexpr ClipSettings kOther{.on = true,
                                         .shown = false,
                                         .moved = true,
                                         .center = {0.1f, -12345.678f, 3e-7f},
                                         .normal = {0.6f, 0, -0.8f},
                                         .color = 1,
                                         .handleColor = 0xFFFFFF,
                                         .outlineColor = 0x123456};
};

TEST_F(StoredClipPlane, IsThatOfAFirstStartBeforeOneWasStored) { EXPECT_EQ(StoredClip(), ClipSettings()); }

TEST_F(StoredClipPlane, ReadsBackToTheBit) {
    StoreClip(kOther);
    EXPECT_EQ(StoredClip(), kOther);
}

struct BadPlane {
    const char* name;
    QStringList numbers;
};
void PrintTo(const BadPlane& row, std::ostream* out) { *out << row.name; }

class StoredClipPlaneRefuses : public StoredClipPlane, public testing::WithParamInterface<BadPlane> {};

TEST_P(StoredClipPlaneRefuses, AWholePlaneAndDoesNotClipAndKeepsTheRest) {
    StoreClip(kOther);
    Store("plane", GetParam().numbers);
    ClipSettings expected = kOther;
    expected.center = ClipSettings().center;
    expected.normal = ClipSettings().normal;
    expected.moved = false;
    expected.on = false;
    EXPECT_EQ(StoredClip(), expected);
}

INSTANTIATE_TEST_SUITE_P(Plane, StoredClipPlaneRefuses,
                         testing::Values(BadPlane{"ANormalWithoutDirection", {"1", "2", "3", "0", "0", "0"}},
                                         BadPlane{"ANormalOfMinusZero", {"1", "2", "3", "-0", "0", "0"}},
                                         BadPlane{"ANumberThatIsNone", {"1", "nan", "3", "0", "0", "1"}},
                                         BadPlane{"AnInfiniteNumber", {"1", "2", "3", "inf", "0", "1"}},
                                         BadPlane{"ANumberThatNoFloatHolds", {"1e39", "2", "3", "0", "0", "1"}},
                                         BadPlane{"AWord", {"1", "2", "x", "0", "0", "1"}},
                                         BadPlane{"FiveNumbers", {"1", "2", "3", "0", "1"}},
                                         BadPlane{"SevenNumbers", {"1", "2", "3", "0", "0", "1", "1"}},
                                         BadPlane{"Nothing", {}}),
                         [](const auto& row) { return row.param.name; });

TEST_F(StoredClipPlane, MayBeAtAnyFinitePosition) {
    Store("plane", QStringList{"3.4e38", "-3.4e38", "0", "0", "0", "1"});
    EXPECT_EQ(StoredClip().center, (std::array<float, 3>{3.4e38f, -3.4e38f, 0}));
    const ClipPanel panel(StoredClip());
    EXPECT_EQ(panel.findChild<NumberBox*>("clipCenterX")->value(), static_cast<double>(3.4e38f));
    EXPECT_EQ(panel.findChild<NumberBox*>("clipCenterY")->value(), -static_cast<double>(3.4e38f));
}

TEST_F(StoredClipPlane, RefusesColorsAndSwitchesThatAreNone) {
    for (const char* const key : {"color", "handleColor", "outlineColor"}) {
        for (const QVariant& bad : {QVariant(-1), QVariant(0x1000000), QVariant("red")}) {
            Store(key, bad);
            EXPECT_EQ(StoredClip(), ClipSettings()) << key << ' ' << bad.toString().toStdString();
        }
    }
    for (const char* const key : {"on", "shown", "moved"}) {
        Store(key, "maybe");
        EXPECT_EQ(StoredClip(), ClipSettings()) << key;
    }
}

}  // namespace
