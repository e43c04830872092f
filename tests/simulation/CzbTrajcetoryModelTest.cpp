#include <zbBase/simulation/CzbTrajcetoryModel.h>

#include <gtest/gtest.h>

#include <tuple>

using zbBase::CzbTrajcetoryModel;

namespace {
// Opens the protected angle helpers to the tests.
class Model : public CzbTrajcetoryModel {
public:
    using CzbTrajcetoryModel::getAngle3d;
    using CzbTrajcetoryModel::getHeading;
};

// A model standing at the origin, heading 0, with one point to go to.
Model toward(double x, double y, double z, double speed) {
    Model m;
    m.m_waypoints.push_back({x, y, z, speed});
    m.m_currentIndex = 0;
    m.m_speed = 0.0;
    return m;
}
} // namespace

TEST(CzbTrajcetoryModel, StraightRunEndsOneStepShort) {
    CzbTrajcetoryModel m;
    EXPECT_EQ(m.m_acceleration, 10.0);
    EXPECT_EQ(m.calculate(1.0f), 2); // a new model: nothing to do
    EXPECT_EQ(m.m_position.y, 0.0);
    m.m_waypoints.push_back({0, 0, 0, 10});
    m.m_waypoints.push_back({0, 100, 0, 10});
    m.setCurrentByWaypoint(1); // the last point cannot be a start
    EXPECT_EQ(m.m_currentIndex, -1);
    m.setCurrentByWaypoint(0);
    EXPECT_EQ(std::make_tuple(m.m_attitude.x, m.m_attitude.y, m.m_speed, m.m_acceleration,
                              m.m_currentIndex),
              std::make_tuple(0.0, 0.0, 10.0, 0.0, 1));
    for (int i = 1; i <= 8; ++i) {
        ASSERT_EQ(m.calculate(1.0f), 1);
        EXPECT_EQ(std::make_tuple(m.m_position.y, m.m_currentIndex), std::make_tuple(10.0 * i, 1));
    }
    EXPECT_EQ(m.calculate(1.0f), 1); // 10 remain: no more than the step
    EXPECT_EQ(std::make_tuple(m.m_position.x, m.m_position.y, m.m_currentIndex),
              std::make_tuple(0.0, 90.0, -1));
    EXPECT_EQ(m.calculate(1.0f), 2);
    EXPECT_EQ(m.m_position.y, 90.0);

    CzbTrajcetoryModel loop(m);
    loop.m_loop = 1;
    loop.setCurrentByWaypoint(0);
    for (int i = 0; i < 9; ++i) {
        loop.calculate(1.0f);
    }
    EXPECT_EQ(loop.m_currentIndex, 0);

    // Indexes without a point after them, and a written index on an empty list, do nothing.
    for (int index : {-5, -1, 1, 2, 2147483647}) {
        m.setCurrentByWaypoint(index);
        EXPECT_EQ(m.m_currentIndex, -1);
    }
    CzbTrajcetoryModel empty;
    empty.m_currentIndex = 3;
    EXPECT_EQ(empty.calculate(1.0f), 2);
}

TEST(CzbTrajcetoryModel, SpeedLimits) {
    Model m = toward(0, 1000, 0, 10);
    for (double expected : {5.0, 10.0, 10.0}) {
        const double y = m.m_position.y;
        m.calculate(1.0f);
        EXPECT_EQ(m.m_speed, expected);
        EXPECT_EQ(m.m_position.y - y, expected); // the step uses the new speed
    }
    EXPECT_EQ(m.m_acceleration, 0.0);
    m.m_waypoints[0].speed = 0.0;
    int steps = 0;
    for (; m.m_speed > 0.0 && steps < 100; ++steps) {
        m.calculate(1.0f);
    }
    EXPECT_EQ(steps, 10);
    EXPECT_EQ(m.m_targetSpeed, 0.0);

    // A change that would overshoot the target speed stops on it, on both sides, and the
    // step is made with the speed as cut.
    Model cut = toward(0, 1000, 0, 10);
    cut.m_accelerationLimit = 4.0;
    for (double expected : {4.0, 8.0, 10.0, 10.0}) {
        cut.calculate(1.0f);
        EXPECT_EQ(cut.m_speed, expected);
    }
    EXPECT_EQ(cut.m_position.y, 32.0);
    cut.m_waypoints[0].speed = 1.5;
    cut.m_decelerationLimit = 3.0;
    for (double expected : {7.0, 4.0, 1.5, 1.5}) {
        cut.calculate(1.0f);
        EXPECT_EQ(cut.m_speed, expected);
    }
    EXPECT_EQ(cut.m_position.y, 46.0);
}

TEST(CzbTrajcetoryModel, TurnLimit) {
    Model m = toward(100, 0, 0, 0); // 90 degrees off the heading
    m.m_attitude.z = 45.0;
    ASSERT_EQ(m.calculate(1.0f), 1);
    EXPECT_DOUBLE_EQ(m.m_attitude.x, 30.0);
    EXPECT_DOUBLE_EQ(m.m_turnRate.x, 30.0);
    EXPECT_EQ(std::make_pair(m.m_turnRate.z, m.m_attitude.z), std::make_pair(0.0, 0.0)); // roll
    m.calculate(1.0f);
    m.calculate(1.0f);
    EXPECT_DOUBLE_EQ(m.m_attitude.x, 90.0);
    m.calculate(1.0f);
    EXPECT_DOUBLE_EQ(m.m_turnRate.x, 0.0);

    Model left = toward(-100, 0, 0, 0); // turning left across north: reduced to [0, 360)
    left.m_maxTurnRate.x = 20.0;
    left.calculate(0.5f);
    EXPECT_DOUBLE_EQ(left.m_attitude.x, 350.0);
    EXPECT_DOUBLE_EQ(left.m_turnRate.x, -20.0);

    Model down = toward(0, 100, -50, 0); // a pitch turn keeps its sign and is not reduced
    down.m_maxTurnRate.y = 10.0;
    down.calculate(1.0f);
    EXPECT_DOUBLE_EQ(down.m_attitude.y, -10.0);
    EXPECT_DOUBLE_EQ(down.m_turnRate.y, -10.0);
    // Exactly 45 degrees below, horizontal distance plus dz is 0: the wanted pitch is 90.
    down.m_waypoints[0].z = -100;
    down.m_maxTurnRate.y = 30.0;
    down.calculate(1.0f);
    EXPECT_DOUBLE_EQ(down.m_attitude.y, 20.0);

    Model still = toward(100, 0, 0, 5); // no time: no move, no turn, a rate of 0, not NaN
    still.m_speed = 5.0;
    EXPECT_EQ(still.calculate(0.0f), 1);
    EXPECT_EQ(std::make_tuple(still.m_turnRate.x, still.m_turnRate.y, still.m_attitude.x,
                              still.m_position.x),
              std::make_tuple(0.0, 0.0, 0.0, 0.0));

    Model near = toward(5, 5, 5, 7); // within 0.01 of the point: 0, and nothing moves
    near.m_position.set(5.005, 5, 5);
    near.m_speed = 1.0;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(near.calculate(1.0f), 0);
    }
    EXPECT_EQ(
        std::make_tuple(near.m_position.x, near.m_speed, near.m_targetSpeed, near.m_currentIndex),
        std::make_tuple(5.005, 1.0, 7.0, 0));
}

TEST(CzbTrajcetoryModel, OwnHeadingRule) {
    Model m;
    // Every offset with y = -x counts as none.
    const double half = 26.56505117707799; // atan(1/2) in degrees
    const double headings[][3] = {{5, -5, 0},           {-5, 5, 0},   {0, 0, 0},
                                  {1, 0, 90},           {0, -1, 180}, {-1, 0, 270},
                                  {1, -2, 180.0 - half}};
    for (const auto& h : headings) {
        EXPECT_DOUBLE_EQ(m.getHeading(h[0], h[1]), h[2]) << h[0] << " " << h[1];
    }
    // {dy, dz, pitch}: the same place and 45 degrees below both give 90.
    const double pitches[][3] = {{0, 0, 90}, {1, -1, 90}, {1, 1, 45}, {2, -1, -half}};
    for (const auto& p : pitches) {
        double h = -1, pitch = -1;
        m.getAngle3d(0, 0, 0, 0, p[0], p[1], &h, &pitch);
        EXPECT_DOUBLE_EQ(pitch, p[2]) << p[0] << " " << p[1];
    }

    Model same; // two points at one place: heading 0, pitch 90
    same.m_waypoints.push_back({3, 4, 5, 1});
    same.m_waypoints.push_back({3, 4, 5, 1});
    same.setCurrentByWaypoint(0);
    EXPECT_EQ(std::make_pair(same.m_attitude.x, same.m_attitude.y), std::make_pair(0.0, 90.0));

    Model diag = toward(5, -5, 0, 0); // wanted heading 0, not 135: the course stays
    diag.calculate(1.0f);
    EXPECT_EQ(diag.m_attitude.x, 0.0);
}
