// The panel of needles alone, without a window and a viewer.
#include "NeedlePanel.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QSpinBox>

#include "ColorButton.h"
#include "host/QtUnderXvfb.h"

namespace {

TEST(NeedlePanel, WithoutAViewerDoesNothing) {
    NeedlePanel panel;
    for (auto* const box : panel.findChildren<QCheckBox*>()) box->setChecked(true);
    for (auto* const button : panel.findChildren<ColorButton*>()) emit button->ColorChosen(1);
    panel.findChild<QDoubleSpinBox*>("needleLength")->setValue(20);
    panel.findChild<QSpinBox*>("needleLimit")->setValue(20);
    panel.OnCreated(1);
    panel.OnDeleted(1);
    panel.OnInput();
    panel.FollowScene();
    EXPECT_TRUE(panel.Marks().empty());
    EXPECT_FALSE(panel.isEnabled());
}

TEST(NeedlePanel, NamesTheControlsOfTheLook) {
    const NeedlePanel panel;
    for (const char* const name : {"needleLength", "needleHeadRadius", "needlePinSize", "needleHitPointRadius"}) {
        const auto* const size = panel.findChild<QDoubleSpinBox*>(name);
        ASSERT_NE(size, nullptr) << name;
        EXPECT_FALSE(size->accessibleName().isEmpty()) << name;
        EXPECT_FALSE(size->toolTip().isEmpty()) << name;
    }
    for (const char* const name :
         {"needleHeadColor", "needlePinColor", "needleHitPointColor", "needleSelectionColor"}) {
        const auto* const color = panel.findChild<ColorButton*>(name);
        ASSERT_NE(color, nullptr) << name;
        EXPECT_FALSE(color->accessibleName().isEmpty()) << name;
    }
}

}  // namespace
