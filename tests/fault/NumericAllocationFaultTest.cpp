// Memory that runs out at a chosen allocation (failing(), through a replaced operator new): the
// classes that throw nothing keep what they made, those that throw change nothing. POSIX only.
#if !defined(_WIN32)

#include "support/zbInterpolationSamples.h"

#include <zbBase/simulation/CzbWaypoint.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <new>
#include <optional>
#include <utility>
#include <vector>

namespace {

thread_local long t_failFrom = -1;     // allocations from this index on fail; -1: none
thread_local long t_failTo = LONG_MAX; //   up to this index, not included
thread_local long t_allocations = 0;   // allocations since the heap was armed
thread_local long t_failures = 0;      // allocations refused since then

void* allocate(size_t size) {
    const long index = t_allocations++;
    if (t_failFrom >= 0 && index >= t_failFrom && index < t_failTo) {
        ++t_failures;
        return nullptr;
    }
    return std::malloc(size == 0 ? 1 : size);
}

// Runs `change` with this thread's allocations failing from the `from`-th on (only that one if
// `once`), counted from 0; whether any was refused.
template <class Change> bool failing(long from, bool once, Change change) {
    struct Disarm {
        ~Disarm() { t_failFrom = -1; }
    } disarm;
    t_allocations = t_failures = 0;
    t_failTo = once ? from + 1 : LONG_MAX;
    t_failFrom = from;
    change();
    return t_failures != 0;
}

// Out of line, so that no compiler flags operator new's blocks as released by free.
__attribute__((noinline)) void release(void* p) {
    std::free(p);
}

} // namespace

void* operator new(size_t size) {
    if (void* p = allocate(size)) {
        return p;
    }
    throw std::bad_alloc();
}
void* operator new[](size_t size) {
    return operator new(size);
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void operator delete(void* p) noexcept {
    release(p);
}
void operator delete[](void* p) noexcept {
    release(p);
}
void operator delete(void* p, size_t) noexcept {
    release(p);
}
void operator delete[](void* p, size_t) noexcept {
    release(p);
}
void operator delete(void* p, const std::nothrow_t&) noexcept {
    release(p);
}
void operator delete[](void* p, const std::nothrow_t&) noexcept {
    release(p);
}

using zbBase::CzbInterpolation;
using zbBase::CzbWaypoint;
using zbBase::zbVector3d;
using zbtest::results;
using zbtest::Samples;

namespace {

// The control points, shown by linear samples on a copy: every test point has a whole x.
Samples points(const CzbInterpolation& c) {
    CzbInterpolation copy(c);
    copy.ClearPoint();
    copy.CaculationLinear(0);
    return results(copy);
}

bool isPrefix(const Samples& part, const Samples& whole) {
    return part.size() <= whole.size() && std::equal(part.begin(), part.end(), whole.begin());
}

CzbInterpolation hump() {
    return zbtest::curve({{0, 0}, {1, 1}, {2, 0}});
}

} // namespace

TEST(NumericFault, InterpolationCopiesStayWholeOrEmptyWhenMemoryFails) {
    CzbInterpolation source = hump();
    source.CaculationCubicSpline(2.0);
    const Samples sourcePoints = points(source);
    const Samples sourceResults = results(source);

    // Copy construction: the control points come first; a copy without room for them has
    // nothing, one without room for the results has the points alone.
    for (long from = 0;; ++from) {
        std::optional<CzbInterpolation> copy;
        if (!failing(from, false, [&] { copy.emplace(source); })) {
            EXPECT_EQ(points(*copy), sourcePoints);
            EXPECT_EQ(results(*copy), sourceResults);
            EXPECT_EQ(from, 2);
            break;
        }
        ASSERT_LT(from, 2);
        EXPECT_EQ(points(*copy), from == 0 ? Samples() : sourcePoints) << from;
        EXPECT_EQ(results(*copy), Samples()) << from;
    }

    // Assignment that memory cannot hold changes nothing.
    for (long from = 0;; ++from) {
        CzbInterpolation target;
        target.AddPoint(5, 5);
        target.AddPoint(6, 7);
        target.CaculationLinear(0);
        const Samples before = results(target);
        if (!failing(from, false, [&] { target = source; })) {
            EXPECT_EQ(results(target), sourceResults);
            break;
        }
        EXPECT_EQ(results(target), before) << from;
        EXPECT_EQ(points(target), (Samples{{5, 5}, {6, 7}})) << from;
    }

    // A point that memory cannot hold is dropped, at the end as at the front.
    CzbInterpolation grown = hump(); // a copy holds exactly its points: the next one allocates
    CzbInterpolation exact(grown);
    failing(0, false, [&] {
        exact.AddPoint(3, 9);
        exact.AddPoint(-1, 9);
    });
    EXPECT_EQ(points(exact), points(hump()));
    exact.AddPoint(-1, 9);
    EXPECT_EQ(points(exact), (Samples{{-1, 9}, {0, 0}, {1, 1}, {2, 0}}));
}

TEST(NumericFault, InterpolationKeepsItsSamplesWhateverAllocationFails) {
    struct Calculation {
        const char* name;
        void (*run)(CzbInterpolation&);
    };
    const Calculation calculations[] = {
        {"spline", [](CzbInterpolation& c) { c.CaculationCubicSpline(3.0); }},
        {"linear", [](CzbInterpolation& c) { c.CaculationLinear(0); }},
        {"polynomial", [](CzbInterpolation& c) { c.CaculationPolinomial(-1.0, 3.0, 0.25); }},
    };
    for (const Calculation& calc : calculations) {
        CzbInterpolation model = hump();
        calc.run(model);
        const Samples whole = results(model);
        ASSERT_GE(whole.size(), 3u) << calc.name;
        // Every allocation from the n-th on fails, for n = 0, 1, ... until none is refused;
        // then only the n-th fails. Either way the list is a beginning of the whole list,
        // and losing the room reserved ahead costs no sample.
        for (bool once : {false, true}) {
            for (long from = 0;; ++from) {
                CzbInterpolation curve = hump();
                const bool refused = failing(from, once, [&] { calc.run(curve); });
                const Samples made = results(curve);
                EXPECT_TRUE(isPrefix(made, whole)) << calc.name << " " << from;
                if (!refused) {
                    EXPECT_EQ(made, whole) << calc.name;
                    break;
                }
                ASSERT_LT(from, 100) << calc.name;
            }
        }
    }
}

TEST(NumericFault, WaypointListStaysAsItWasWhenMemoryFails) {
    CzbWaypoint list;
    for (int i = 0; i < 100; ++i) {
        list.pointAdd(zbVector3d(i, i, i));
    }
    CzbWaypoint other;
    other.pointAdd(zbVector3d(7, 7, 7));
    const zbVector3d* block = list.m_points;
    failing(0, false, [&] { // a check that fails throws too, from its own message
        EXPECT_THROW(list.pointAdd(zbVector3d(1, 2, 3)), std::bad_alloc);
        EXPECT_THROW(list.pointInsert(0, zbVector3d(1, 2, 3)), std::bad_alloc);
        EXPECT_THROW(other = list, std::bad_alloc);
    });
    EXPECT_EQ(list.m_points, block);
    EXPECT_EQ(list.m_capacity, 100);
    ASSERT_EQ(list.size(), 100);
    EXPECT_EQ(list[0].x, 0.0);
    EXPECT_EQ(list[99].z, 99.0);
    ASSERT_EQ(other.size(), 1);
    EXPECT_EQ(other.m_capacity, 100);
    EXPECT_EQ(other[0].y, 7.0);
}

#endif
