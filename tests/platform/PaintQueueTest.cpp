#include "platform/PaintQueue.h"

#include <gtest/gtest.h>

namespace {

TEST(PaintQueue, IsEmptyAtFirst) {
    const PaintQueue queue;
    EXPECT_FALSE(queue.IsPending());
    EXPECT_FALSE(queue.IsDue());
}

TEST(PaintQueue, CoalescesRequestsBeforeAPaint) {
    PaintQueue queue;
    queue.Request(false);
    queue.Request(false);
    EXPECT_TRUE(queue.IsPending());
    EXPECT_FALSE(queue.Begin());
    queue.End();
    EXPECT_FALSE(queue.IsPending());
}

TEST(PaintQueue, ErasesWhenAnyOfTheRequestsAskedTo) {
    PaintQueue queue;
    queue.Request(false);
    queue.Request(true);
    queue.Request(false);
    EXPECT_TRUE(queue.Begin());
    queue.End();
    queue.Request(false);
    EXPECT_FALSE(queue.Begin()) << "the flag belongs to the former request";
}

TEST(PaintQueue, KeepsARequestUntilAPaintBegins) {
    PaintQueue queue;
    queue.Request(true);
    EXPECT_TRUE(queue.IsDue());
    EXPECT_TRUE(queue.IsDue());
    EXPECT_TRUE(queue.Begin());
}

TEST(PaintQueue, RequestDuringAPaintIsForTheNext) {
    PaintQueue queue;
    queue.Request(false);
    (void)queue.Begin();
    queue.Request(true);
    EXPECT_TRUE(queue.IsPending());
    EXPECT_FALSE(queue.IsDue()) << "no queued paint inside another";
    queue.End();
    EXPECT_TRUE(queue.IsDue());
    EXPECT_TRUE(queue.Begin());
}

TEST(PaintQueue, QueuedPaintIsNotDueUntilTheOuterPaintEnds) {
    PaintQueue queue;
    (void)queue.Begin();
    (void)queue.Begin();
    queue.Request(false);
    queue.End();
    EXPECT_FALSE(queue.IsDue());
    queue.End();
    EXPECT_TRUE(queue.IsDue());
}

TEST(PaintQueue, EndWithoutBeginIsIgnored) {
    PaintQueue queue;
    queue.End();
    queue.Request(false);
    (void)queue.Begin();
    queue.Request(false);
    EXPECT_FALSE(queue.IsDue());
}

TEST(PaintQueue, ClearDropsTheRequestAndTheOpenPaint) {
    PaintQueue queue;
    queue.Request(true);
    (void)queue.Begin();
    queue.Request(true);
    queue.Clear();
    EXPECT_FALSE(queue.IsPending());
    queue.Request(false);
    EXPECT_TRUE(queue.IsDue());
    EXPECT_FALSE(queue.Begin());
}

}  // namespace
