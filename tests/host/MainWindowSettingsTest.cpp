// What the window remembers for the next start.
#include <gtest/gtest.h>

#include <QMenu>
#include <algorithm>
#include <set>

#include "Settings.h"
#include "host/MainWindowFixture.h"

namespace {

class MainWindowSettings : public MainWindowFixture {
protected:
    void TearDown() override { ForgetSettings(); }
    /// How many colours a frame has that shows one triangle with slanted edges, of one colour.
    [[nodiscard]] std::size_t CountColors() const {
        const float corners[] = {0, 0, 0, 100, 10, 0, 30, 90, 0};
        const std::int32_t triangle[] = {0, 1, 2};
        Methods().ClearData();
        Methods().ImportMeshFromMemory(3, 1, corners, triangle);
        Methods().CenterView();
        const auto pixels = DrawFrame().pixels;
        return std::set(pixels.begin(), pixels.end()).size();
    }
};

TEST_F(MainWindowSettings, SmoothEdgesAreChosenForTheNextStart) {
    EXPECT_EQ(StoredSamples(), kSmoothSamples) << "before the user has chosen";
    Show();
    EXPECT_GT(CountColors(), 2u);
    EXPECT_TRUE(Find<QAction>("samples4").isChecked());
    Find<QAction>("samples0").trigger();
    EXPECT_GT(CountColors(), 2u) << "not in this window";
    EXPECT_EQ(ObjectsInViewer(), 1) << "the scene stays";
    Show();
    EXPECT_EQ(CountColors(), 2u) << "the triangle and the background";
    EXPECT_TRUE(Find<QAction>("samples0").isChecked());
}

TEST_F(MainWindowSettings, TheMenuNamesTheSamplesThatTheDriverGave) {
    for (const int wanted : {0, 2, 4}) {
        StoreSamples(wanted);
        Show();
        const bool isSmooth = CountColors() > 2;
        const QAction& present = Find<QAction>("presentSamples");
        auto* const menu = qobject_cast<QMenu*>(present.associatedObjects().value(0));
        ASSERT_NE(menu, nullptr);
        emit menu->aboutToShow();
        const QString text = present.text();
        EXPECT_EQ(text.startsWith("Now: off"), !isSmooth) << wanted << ": " << text.toStdString();
        const QString asWanted = wanted == 0 ? QString("Now: off") : QString("Now: %1 sample(s)").arg(wanted);
        EXPECT_NE(text.startsWith(asWanted), text.contains(QString("the driver does not have %1").arg(wanted)))
            << text.toStdString();
    }
}

}  // namespace
