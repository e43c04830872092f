#include <zbBase/simulation/CzbWaypoint.h>

#include <gtest/gtest.h>

#include <vector>

using zbBase::CzbWaypoint;
using zbBase::zbVector3d;

namespace {
zbVector3d P(double v) {
    return zbVector3d(v, v + 0.5, -v);
}

// The x of every point in use.
std::vector<double> xs(CzbWaypoint& list) {
    std::vector<double> out;
    for (unsigned i = 0; i < static_cast<unsigned>(list.size()); ++i) {
        out.push_back(list[i].x);
    }
    return out;
}

void fill(CzbWaypoint& list, int count) {
    for (int i = 0; i < count; ++i) {
        list.pointAdd(P(i));
    }
}
} // namespace

TEST(CzbWaypoint, GrowsInBlocksOfHundred) {
    CzbWaypoint list;
    EXPECT_EQ(list.size(), 0);
    EXPECT_EQ(list.m_points, nullptr);
    fill(list, 100);
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
    list.pointInsert(1, P(9));
    EXPECT_EQ(xs(list), (std::vector<double>{1, 9, 2}));
    list.pointInsert(7, P(5)); // past the end: appended once
    EXPECT_EQ(xs(list), (std::vector<double>{1, 9, 2, 5}));

    list.pointDelete(4); // at size(): nothing
    list.pointDelete(0xFFFFFFFFu);
    list.pointDelete(0);
    EXPECT_EQ(xs(list), (std::vector<double>{9, 2, 5}));
    list.pointDelete(2); // the last: only the count drops
    EXPECT_EQ(list.size(), 2);
    EXPECT_EQ(list.m_points[2].x, 5);
    EXPECT_EQ(list.m_capacity, 100);

    // Insert at the front of a full block grows it and keeps every point.
    CzbWaypoint full;
    fill(full, 100);
    full.pointInsert(0, P(-1));
    EXPECT_EQ(full.m_capacity, 200);
    ASSERT_EQ(full.size(), 101);
    EXPECT_EQ(full[0].x, -1);
    EXPECT_EQ(full[100].x, 99);
}

TEST(CzbWaypoint, AssignmentIsADeepCopySizedByCount) {
    CzbWaypoint source, target, small, empty;
    fill(source, 100);
    target.pointAdd(P(42));
    target = source;
    EXPECT_EQ(target.m_capacity, 200); // 100 points give 200, not 100
    EXPECT_EQ(target.size(), 100);
    target[5].x = 1000;
    EXPECT_EQ(source[5].x, 5);

    small.pointAdd(P(3));
    target = small;
    EXPECT_EQ(target.m_capacity, 100);
    target = target; // itself: points stay
    EXPECT_EQ(xs(target), (std::vector<double>{3}));
    target = empty;
    EXPECT_EQ(target.m_capacity, 0);
    EXPECT_EQ(target.size(), 0);
    EXPECT_EQ(target.m_points, nullptr);

    CzbWaypoint copy(source); // copies too, never shares the block
    EXPECT_EQ(copy.size(), 100);
    EXPECT_NE(copy.m_points, source.m_points);
}
