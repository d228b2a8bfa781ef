// One scan measured by several threads; for the thread sanitizer.
#include <gtest/gtest.h>

#include "simulate-scans/Scanner.h"
#include "simulate-scans/Shapes.h"

namespace simulate {
namespace {

TEST(MeasureFrom, TheResultDoesNotDependOnTheNumberOfThreads) {
    const RayCaster object(MakeShape("gear"));
    ScannerSettings settings;
    settings.width = 160;
    settings.height = 120;
    settings.colors = true;
    settings.noise = 0.1f;
    settings.dropout = 0.1f;
    const Transform pose = PosesAround(3, 400)[1];
    const ScanGrid one = MeasureFrom(object, pose, settings, 2, 1), three = MeasureFrom(object, pose, settings, 2, 3);
    EXPECT_EQ(one.points, three.points);
    EXPECT_EQ(one.confidence, three.confidence);
    EXPECT_EQ(one.classes, three.classes);
    EXPECT_EQ(one.colors, three.colors);
}

}  // namespace
}  // namespace simulate
