#include <zbBase/simulation/CzbTrajcetoryModel.h>

#include <gtest/gtest.h>

using zbBase::CzbTrajcetoryModel;

namespace {
// Opens the protected angle helpers to the tests.
class Model : public CzbTrajcetoryModel {
public:
    using CzbTrajcetoryModel::getAngle3d;
    using CzbTrajcetoryModel::getHeading;
};
} // namespace

TEST(CzbTrajcetoryModel, StartValues) {
    CzbTrajcetoryModel m;
    EXPECT_EQ(m.m_acceleration, 10.0);
    EXPECT_EQ(m.m_accelerationLimit, 5.0);
    EXPECT_EQ(m.m_decelerationLimit, 1.0);
    EXPECT_EQ(m.m_maxTurnRate.x, 30.0);
    EXPECT_EQ(m.m_maxTurnRate.z, 30.0);
    EXPECT_EQ(m.m_loop, 0);
    EXPECT_EQ(m.m_currentIndex, -1);
    EXPECT_EQ(m.calculate(1.0f), 2);
    EXPECT_EQ(m.m_targetPosition.x, 0.0);
    EXPECT_EQ(m.m_position.y, 0.0);
}

TEST(CzbTrajcetoryModel, StraightRunEndsOneStepShort) {
    CzbTrajcetoryModel m;
    m.m_waypoints.push_back({0, 0, 0, 10});
    m.m_waypoints.push_back({0, 100, 0, 10});
    m.setCurrentByWaypoint(1); // the last point cannot be a start
    EXPECT_EQ(m.m_currentIndex, -1);
    m.setCurrentByWaypoint(0);
    EXPECT_EQ(m.m_attitude.x, 0.0);
    EXPECT_EQ(m.m_attitude.y, 0.0);
    EXPECT_EQ(m.m_speed, 10.0);
    EXPECT_EQ(m.m_acceleration, 0.0);
    EXPECT_EQ(m.m_currentIndex, 1);

    for (int i = 1; i <= 8; ++i) {
        ASSERT_EQ(m.calculate(1.0f), 1);
        EXPECT_EQ(m.m_position.y, 10.0 * i);
        EXPECT_EQ(m.m_currentIndex, 1);
    }
    EXPECT_EQ(m.calculate(1.0f), 1); // 10 remain: no more than the step
    EXPECT_EQ(m.m_position.x, 0.0);
    EXPECT_EQ(m.m_position.y, 90.0);
    EXPECT_EQ(m.m_currentIndex, -1);
    EXPECT_EQ(m.calculate(1.0f), 2);
    EXPECT_EQ(m.m_position.y, 90.0);

    CzbTrajcetoryModel loop(m);
    loop.m_loop = 1;
    loop.setCurrentByWaypoint(0);
    for (int i = 0; i < 9; ++i) {
        loop.calculate(1.0f);
    }
    EXPECT_EQ(loop.m_currentIndex, 0);
    EXPECT_EQ(m.m_waypoints.size(), loop.m_waypoints.size());
}

TEST(CzbTrajcetoryModel, SpeedLimits) {
    CzbTrajcetoryModel m;
    m.m_waypoints.push_back({0, 1000, 0, 10});
    m.m_currentIndex = 0;
    m.m_speed = 0.0;
    m.calculate(1.0f);
    EXPECT_EQ(m.m_speed, 5.0);
    EXPECT_EQ(m.m_position.y, 5.0); // the step uses the new speed
    m.calculate(1.0f);
    EXPECT_EQ(m.m_speed, 10.0);
    EXPECT_EQ(m.m_acceleration, 10.0);
    m.calculate(1.0f);
    EXPECT_EQ(m.m_speed, 10.0);
    EXPECT_EQ(m.m_acceleration, 0.0);

    m.m_waypoints[0].speed = 0.0;
    int steps = 0;
    while (m.m_speed > 0.0 && steps < 100) {
        m.calculate(1.0f);
        ++steps;
    }
    EXPECT_EQ(steps, 10);
    EXPECT_EQ(m.m_targetSpeed, 0.0);

    // A change that would overshoot the target speed stops on it, on both sides, and the
    // step is made with the speed as cut.
    CzbTrajcetoryModel cut;
    cut.m_waypoints.push_back({0, 1000, 0, 10});
    cut.m_currentIndex = 0;
    cut.m_speed = 0.0;
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
    CzbTrajcetoryModel m;
    m.m_waypoints.push_back({100, 0, 0, 0}); // 90 degrees off the heading
    m.m_currentIndex = 0;
    m.m_speed = 0.0;
    m.m_attitude.z = 45.0;
    ASSERT_EQ(m.calculate(1.0f), 1);
    EXPECT_DOUBLE_EQ(m.m_attitude.x, 30.0);
    EXPECT_DOUBLE_EQ(m.m_turnRate.x, 30.0);
    EXPECT_EQ(m.m_turnRate.z, 0.0);
    EXPECT_EQ(m.m_attitude.z, 0.0); // the roll is not limited
    m.calculate(1.0f);
    m.calculate(1.0f);
    EXPECT_DOUBLE_EQ(m.m_attitude.x, 90.0);
    m.calculate(1.0f);
    EXPECT_DOUBLE_EQ(m.m_turnRate.x, 0.0);

    // Turning left across north: the heading is reduced to [0, 360).
    CzbTrajcetoryModel left;
    left.m_waypoints.push_back({-100, 0, 0, 0});
    left.m_currentIndex = 0;
    left.m_speed = 0.0;
    left.m_maxTurnRate.x = 20.0;
    left.calculate(0.5f);
    EXPECT_DOUBLE_EQ(left.m_attitude.x, 350.0);
    EXPECT_DOUBLE_EQ(left.m_turnRate.x, -20.0);

    // A pitch turn keeps its sign and is not reduced.
    CzbTrajcetoryModel down;
    down.m_waypoints.push_back({0, 100, -50, 0});
    down.m_currentIndex = 0;
    down.m_speed = 0.0;
    down.m_maxTurnRate.y = 10.0;
    down.calculate(1.0f);
    EXPECT_DOUBLE_EQ(down.m_attitude.y, -10.0);
    EXPECT_DOUBLE_EQ(down.m_turnRate.y, -10.0);
    // Exactly 45 degrees below, horizontal distance plus dz is 0: the wanted pitch is 90.
    down.m_waypoints[0].z = -100;
    down.m_maxTurnRate.y = 30.0;
    down.calculate(1.0f);
    EXPECT_DOUBLE_EQ(down.m_attitude.y, 20.0);

    // No time: no move, no turn, and a rate of 0 rather than NaN.
    CzbTrajcetoryModel still;
    still.m_waypoints.push_back({100, 0, 0, 5});
    still.m_currentIndex = 0;
    still.m_speed = 5.0;
    EXPECT_EQ(still.calculate(0.0f), 1);
    EXPECT_EQ(still.m_turnRate.x, 0.0);
    EXPECT_EQ(still.m_turnRate.y, 0.0);
    EXPECT_EQ(still.m_attitude.x, 0.0);
    EXPECT_EQ(still.m_position.x, 0.0);
}

TEST(CzbTrajcetoryModel, StandingOnThePointGivesZero) {
    CzbTrajcetoryModel m;
    m.m_waypoints.push_back({5, 5, 5, 7});
    m.m_currentIndex = 0;
    m.m_position.set(5.005, 5, 5);
    m.m_speed = 1.0;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(m.calculate(1.0f), 0);
    }
    EXPECT_EQ(m.m_position.x, 5.005);
    EXPECT_EQ(m.m_speed, 1.0);
    EXPECT_EQ(m.m_targetSpeed, 7.0);
    EXPECT_EQ(m.m_currentIndex, 0);
}

TEST(CzbTrajcetoryModel, OwnHeadingRule) {
    Model m;
    EXPECT_EQ(m.getHeading(5, -5), 0.0);
    EXPECT_EQ(m.getHeading(-5, 5), 0.0);
    EXPECT_EQ(m.getHeading(0, 0), 0.0);
    EXPECT_DOUBLE_EQ(m.getHeading(1, 0), 90.0);
    EXPECT_DOUBLE_EQ(m.getHeading(0, -1), 180.0);
    EXPECT_DOUBLE_EQ(m.getHeading(-1, 0), 270.0);
    EXPECT_DOUBLE_EQ(m.getHeading(1, -2), 180.0 - 26.56505117707799);
    double h = -1, p = -1;
    m.getAngle3d(1, 1, 1, 1, 1, 1, &h, &p); // same place
    EXPECT_EQ(h, 0.0);
    EXPECT_EQ(p, 90.0);
    m.getAngle3d(0, 0, 0, 0, 1, -1, &h, &p); // 45 degrees below
    EXPECT_EQ(p, 90.0);
    m.getAngle3d(0, 0, 0, 0, 1, 1, &h, &p);
    EXPECT_DOUBLE_EQ(p, 45.0);
    m.getAngle3d(0, 0, 0, 0, 2, -1, &h, &p);
    EXPECT_DOUBLE_EQ(p, -26.56505117707799);

    Model same;
    same.m_waypoints.push_back({3, 4, 5, 1});
    same.m_waypoints.push_back({3, 4, 5, 1});
    same.setCurrentByWaypoint(0);
    EXPECT_EQ(same.m_attitude.x, 0.0);
    EXPECT_EQ(same.m_attitude.y, 90.0);

    // Wanted heading toward (5, -5) is 0 here, so the model keeps its course.
    Model diag;
    diag.m_waypoints.push_back({5, -5, 0, 0});
    diag.m_currentIndex = 0;
    diag.m_speed = 0.0;
    diag.calculate(1.0f);
    EXPECT_EQ(diag.m_attitude.x, 0.0);
}

TEST(CzbTrajcetoryModel, BadInputDoesNothing) {
    CzbTrajcetoryModel m;
    m.m_currentIndex = 3; // written index on an empty list
    EXPECT_EQ(m.calculate(1.0f), 2);
    m.m_waypoints.push_back({0, 0, 0, 1});
    m.m_waypoints.push_back({0, 10, 0, 1});
    m.m_currentIndex = -1;
    for (int index : {-5, -1, 1, 2, 2147483647}) {
        m.setCurrentByWaypoint(index);
        EXPECT_EQ(m.m_currentIndex, -1);
        EXPECT_EQ(m.m_speed, 0.0);
    }
}
