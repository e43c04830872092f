#include <zbBase/simulation/CzbWaypoint.h>

#include <gtest/gtest.h>

using zbBase::CzbWaypoint;
using zbBase::zbVector3d;

namespace {
zbVector3d P(double v) {
    return zbVector3d(v, v + 0.5, -v);
}
} // namespace

TEST(CzbWaypoint, GrowsInBlocksOfHundred) {
    CzbWaypoint list;
    EXPECT_EQ(list.size(), 0);
    EXPECT_EQ(list.m_capacity, 0);
    EXPECT_EQ(list.m_points, nullptr);
    for (int i = 0; i < 100; ++i) {
        list.pointAdd(P(i));
    }
    EXPECT_EQ(list.m_capacity, 100);
    list.pointAdd(P(100));
    EXPECT_EQ(list.m_capacity, 200);
    ASSERT_EQ(list.size(), 101);
    for (unsigned i = 0; i <= 100; ++i) {
        EXPECT_EQ(list[i].x, i);
        EXPECT_EQ(list[i].z, -static_cast<double>(i));
    }
    EXPECT_EQ(list.m_points[150].y, 0.0); // fresh places are zero

    list.clear();
    EXPECT_EQ(list.m_capacity, 0);
    EXPECT_EQ(list.m_points, nullptr);
    list.clear();
    list.pointAdd(P(1));
    EXPECT_EQ(list.m_capacity, 100);
}

TEST(CzbWaypoint, InsertAndDelete) {
    CzbWaypoint list;
    list.pointInsert(0, P(1));
    EXPECT_EQ(list.size(), 1);
    list.pointAdd(P(2));
    list.pointInsert(1, P(9)); // (1, 9, 2)
    ASSERT_EQ(list.size(), 3);
    EXPECT_EQ(list[0].x, 1);
    EXPECT_EQ(list[1].x, 9);
    EXPECT_EQ(list[2].x, 2);
    list.pointInsert(7, P(5)); // past the end: appended once
    ASSERT_EQ(list.size(), 4);
    EXPECT_EQ(list[3].x, 5);

    list.pointDelete(4); // at size(): nothing
    EXPECT_EQ(list.size(), 4);
    list.pointDelete(0xFFFFFFFFu);
    EXPECT_EQ(list.size(), 4);
    list.pointDelete(0); // (9, 2, 5)
    ASSERT_EQ(list.size(), 3);
    EXPECT_EQ(list[0].x, 9);
    EXPECT_EQ(list[2].x, 5);
    list.pointDelete(2); // the last: only the count drops
    EXPECT_EQ(list.size(), 2);
    EXPECT_EQ(list.m_points[2].x, 5);
    EXPECT_EQ(list.m_capacity, 100);

    // Insert at the front of a full block grows it and keeps every point.
    CzbWaypoint full;
    for (int i = 0; i < 100; ++i) {
        full.pointAdd(P(i));
    }
    full.pointInsert(0, P(-1));
    EXPECT_EQ(full.m_capacity, 200);
    ASSERT_EQ(full.size(), 101);
    EXPECT_EQ(full[0].x, -1);
    EXPECT_EQ(full[100].x, 99);
}

TEST(CzbWaypoint, AssignmentIsADeepCopySizedByCount) {
    CzbWaypoint source;
    for (int i = 0; i < 100; ++i) {
        source.pointAdd(P(i));
    }
    CzbWaypoint target;
    target.pointAdd(P(42));
    target = source;
    EXPECT_EQ(target.m_capacity, 200); // 100 points give 200, not 100
    EXPECT_EQ(target.size(), 100);
    EXPECT_NE(target.m_points, source.m_points);
    target[5].x = 1000;
    EXPECT_EQ(source[5].x, 5);

    CzbWaypoint small;
    small.pointAdd(P(3));
    target = small;
    EXPECT_EQ(target.m_capacity, 100);
    EXPECT_EQ(target.size(), 1);

    target = target; // itself: points stay
    EXPECT_EQ(target.size(), 1);
    EXPECT_EQ(target[0].x, 3);

    CzbWaypoint empty;
    target = empty;
    EXPECT_EQ(target.m_capacity, 0);
    EXPECT_EQ(target.size(), 0);
    EXPECT_EQ(target.m_points, nullptr);

    CzbWaypoint copy(source); // copies too, never shares the block
    EXPECT_EQ(copy.size(), 100);
    EXPECT_NE(copy.m_points, source.m_points);
}
