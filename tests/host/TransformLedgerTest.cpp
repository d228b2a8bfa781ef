// Which changes of transforms can be taken back, and what that does to objects that come and go.
#include "TransformLedger.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

/// Moved along X.
Matrix4 At(float x) { return {1, 0, 0, x, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}; }

/// All objects of these tests are present.
const TransformsById kAll{{0, At(0)}, {1, At(0)}, {4, At(0)}, {9, At(0)}};

TEST(TransformLedger, StartsWithNothingToTakeBack) {
    TransformLedger ledger;
    EXPECT_EQ(ledger.Levels(), 0);
    EXPECT_EQ(ledger.NewestName(kAll), "");
    EXPECT_EQ(ledger.NewestCount({{0, At(0)}}), 0);
    EXPECT_TRUE(ledger.TakeBack(kAll).empty());
    EXPECT_FALSE(ledger.IsFiled(0, At(0)));
}

TEST(TransformLedger, TakesBackTheNewestChangeFirst) {
    TransformLedger ledger;
    ledger.Begin("first", {{4, At(0)}, {9, At(0)}});
    EXPECT_TRUE(ledger.IsOpen());
    EXPECT_EQ(ledger.End({{4, At(1)}, {9, At(0)}}), 1);
    EXPECT_FALSE(ledger.IsOpen());
    ledger.Begin("second", {{4, At(1)}, {9, At(0)}});
    EXPECT_EQ(ledger.End({{4, At(2)}, {9, At(5)}}), 2);
    EXPECT_EQ(ledger.Levels(), 2);
    EXPECT_EQ(ledger.NewestName(kAll), "second");
    EXPECT_EQ(ledger.NewestCount({{4, At(2)}, {9, At(5)}}), 2);
    EXPECT_EQ(ledger.TakeBack(kAll), (TransformsById{{4, At(1)}, {9, At(0)}}));
    EXPECT_EQ(ledger.NewestName(kAll), "first");
    EXPECT_EQ(ledger.TakeBack(kAll), (TransformsById{{4, At(0)}})) << "only what it has moved";
    EXPECT_EQ(ledger.Levels(), 0);
}

TEST(TransformLedger, KeepsNoChangeThatMovedNothing) {
    TransformLedger ledger;
    ledger.Begin("nothing", {{0, At(0)}});
    EXPECT_EQ(ledger.End({{0, At(0)}}), 0);
    EXPECT_EQ(ledger.End({{0, At(3)}}), 0) << "it is over already";
    EXPECT_EQ(ledger.Levels(), 0);
}

TEST(TransformLedger, EndsAnOpenChangeBeforeTheNext) {
    TransformLedger ledger;
    ledger.Begin("first", {{0, At(0)}});
    ledger.Begin("second", {{0, At(1)}});
    EXPECT_EQ(ledger.Levels(), 1);
    EXPECT_EQ(ledger.End({{0, At(2)}}), 1);
    EXPECT_EQ(ledger.TakeBack(kAll), (TransformsById{{0, At(1)}}));
    EXPECT_EQ(ledger.TakeBack(kAll), (TransformsById{{0, At(0)}}));
}

TEST(TransformLedger, LeavesOutObjectsThatWereImportedDuringAChange) {
    TransformLedger ledger;
    ledger.Begin("a", {{0, At(0)}});
    EXPECT_EQ(ledger.End({{0, At(1)}, {1, At(7)}}), 1);
    EXPECT_EQ(ledger.TakeBack(kAll), (TransformsById{{0, At(0)}}));
}

TEST(TransformLedger, CountsTheObjectsThatAreStillThere) {
    TransformLedger ledger;
    ledger.Begin("a", {{0, At(0)}, {1, At(0)}});
    EXPECT_EQ(ledger.End({{0, At(1)}, {1, At(1)}}), 2);
    EXPECT_EQ(ledger.NewestCount({{1, At(1)}, {2, At(0)}}), 1);
    EXPECT_EQ(ledger.NewestCount({{2, At(0)}}), 0);
}

TEST(TransformLedger, TakesBackTheNewestChangeOfAnObjectThatIsStillThere) {
    TransformLedger ledger;
    ledger.Begin("both", {{0, At(0)}, {1, At(0)}});
    EXPECT_EQ(ledger.End({{0, At(1)}, {1, At(1)}}), 2);
    ledger.Begin("deleted", {{0, At(1)}, {1, At(1)}});
    EXPECT_EQ(ledger.End({{0, At(2)}, {1, At(1)}}), 1);
    const TransformsById present{{1, At(1)}};
    EXPECT_EQ(ledger.NewestName(present), "both");
    EXPECT_EQ(ledger.NewestName(kAll), "deleted") << "an undo may bring it back";
    EXPECT_EQ(ledger.NewestName({{2, At(0)}}), "");
    EXPECT_TRUE(ledger.TakeBack({{2, At(0)}}).empty());
    EXPECT_EQ(ledger.Levels(), 2);
    EXPECT_EQ(ledger.TakeBack(present).at(1), At(0));
    EXPECT_EQ(ledger.Levels(), 0);
    EXPECT_EQ(ledger.Misplaced({{0, At(2)}}), (TransformsById{{0, At(0)}})) << "where it was before both";
}

// A cut at 0, an alignment to 1, and the undo of the cut.
TEST(TransformLedger, PlacesARestoredObjectWhereItWasLast) {
    TransformLedger ledger;
    ledger.Begin("a", {{0, At(0)}, {1, At(0)}});
    EXPECT_EQ(ledger.End({{0, At(1)}, {1, At(0)}}), 1);
    EXPECT_EQ(ledger.Misplaced({{0, At(0)}, {1, At(0)}, {2, At(9)}}), (TransformsById{{0, At(1)}}))
        << "1 is in its place, and nothing is known of 2";
}

// The same with the object deleted in between, and the alignment taken back while it was.
TEST(TransformLedger, TakesBackAlsoForADeletedObjectThatComesBack) {
    TransformLedger ledger;
    ledger.Begin("a", {{0, At(0)}, {1, At(0)}});
    EXPECT_EQ(ledger.End({{0, At(1)}, {1, At(1)}}), 2);
    EXPECT_EQ(ledger.Misplaced({{0, At(0)}}), (TransformsById{{0, At(1)}}));
    EXPECT_EQ(ledger.TakeBack(kAll).size(), 2u);
    ledger.Note({{1, At(0)}});
    EXPECT_EQ(ledger.Misplaced({{0, At(1)}}), (TransformsById{{0, At(0)}}));
    EXPECT_TRUE(ledger.Misplaced({{0, At(0)}}).empty());
}

TEST(TransformLedger, KnowsWhichTransformsAFileHas) {
    TransformLedger ledger;
    ledger.OnFiled({{0, At(1)}});
    EXPECT_TRUE(ledger.IsFiled(0, At(1)));
    EXPECT_FALSE(ledger.IsFiled(0, At(2)));
    EXPECT_FALSE(ledger.IsFiled(1, At(1)));
    ledger.OnFiled({{0, At(2)}});
    EXPECT_TRUE(ledger.IsFiled(0, At(2)));
    EXPECT_FALSE(ledger.IsFiled(0, At(1))) << "the newest file counts";
}

TEST(TransformLedger, ForgetsAllWithTheScene) {
    TransformLedger ledger;
    ledger.Begin("a", {{0, At(0)}});
    EXPECT_EQ(ledger.End({{0, At(1)}}), 1);
    ledger.OnFiled({{0, At(1)}});
    ledger.Begin("b", {{0, At(1)}});
    ledger.Clear();
    EXPECT_EQ(ledger.Levels(), 0);
    EXPECT_FALSE(ledger.IsOpen());
    EXPECT_FALSE(ledger.IsFiled(0, At(1)));
    EXPECT_TRUE(ledger.Misplaced({{0, At(5)}}).empty());
}

TEST(IsSameTransform, AllowsTheRoundingOfNumbersOnly) {
    EXPECT_TRUE(IsSameTransform(At(136.80806f), At(136.80807f))) << "one step of a float";
    EXPECT_FALSE(IsSameTransform(At(136.8080f), At(136.8081f)));
    EXPECT_FALSE(IsSameTransform(At(0), At(1e-4f)));
    Matrix4 turned = At(0);
    turned[1] = 5e-7f;
    EXPECT_TRUE(IsSameTransform(At(0), turned));
    turned[1] = 2e-6f;
    EXPECT_FALSE(IsSameTransform(At(0), turned));
    turned[1] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(IsSameTransform(At(0), turned));
    EXPECT_TRUE(IsSameTransform(turned, turned)) << "or it would never be saved";
}

}  // namespace
