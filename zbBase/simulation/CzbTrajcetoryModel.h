// CzbTrajcetoryModel: steps one entity through a list of points under limits on speed change
// and turn rate.
//
// Angles are degrees. The heading counts clockwise from +y (+x is 90); the pitch counts upward
// from the horizontal and is kept signed and unreduced, as is the roll. Each calculate(dt)
// step changes the speed toward the current point's speed (up by at most dt *
// m_accelerationLimit, down by at most dt * m_decelerationLimit), turns toward the point (by
// at most dt * m_maxTurnRate.x in heading and .y in pitch; the roll returns to 0 at once),
// then moves dt * speed along the new heading and pitch. A point counts as reached when the
// horizontal distance that remains is no more than the step just made: the model does not
// land on it and may stop up to one step short of the last point.
//
// Hosts read and write the members directly and fill m_waypoints themselves. The model holds
// no lock; one thread at a time per model.
#pragma once

#include "zbBase/numeric/CzbDE.h"
#include "zbBase/numeric/zbExport.h"
#include "zbBase/numeric/zbVector.h"

#include <vector>

namespace zbBase {

class ZB_API CzbTrajcetoryModel {
public:
    // One entry of the list: a position and the speed wanted there.
    struct _TrajectoryPoint {
        double x;
        double y;
        double z;
        double speed;
    };

    CzbTrajcetoryModel();
    CzbTrajcetoryModel(const CzbTrajcetoryModel& other) = default;
    CzbTrajcetoryModel& operator=(const CzbTrajcetoryModel& other) = default;
    ~CzbTrajcetoryModel() = default;

    // One step of dt = elapsed seconds. Returns 0 when the model already stands within 0.01 of
    // the current point (nothing but m_targetPosition and m_targetSpeed changes), 1 for a
    // step made, 2 when there is no current point (m_currentIndex negative, or not an index
    // into m_waypoints) and nothing changes. With elapsed 0 nothing moves or turns and
    // m_turnRate is (0, 0, 0).
    virtual int calculate(float elapsed);
    // Places the model at point index, aimed at point index + 1, with that point's speed;
    // the next step heads for index + 1. Does nothing unless both points exist.
    void setCurrentByWaypoint(int index);

    zbVector3d m_position;
    zbVector3d m_attitude; // x heading, y pitch, z roll
    double m_speed;        // length units per second
    double m_acceleration; // 0.0 once a step finds the target speed; no step reads it
    zbVector3d m_turnRate; // degrees per second turned by the last step (heading, pitch, 0)
    zbVector3d m_targetPosition;
    double m_targetSpeed;
    double m_auxiliary[4]; // free for the host
    double m_accelerationLimit;
    double m_decelerationLimit;
    zbVector3d m_maxTurnRate; // degrees per second: x heading, y pitch; z unused
    int m_loop;               // non-zero: the first point follows the last
    int m_currentIndex;       // negative: no current point
    std::vector<_TrajectoryPoint> m_waypoints;
    CzbDE m_de;

protected:
    // CzbDE::getHeading, except that every offset with x + y exactly 0 gives 0 (so (5, -5)
    // gives 0, not 135).
    double getHeading(double x, double y);
    // Heading (clockwise) and signed pitch from point 1 to point 2, both through getHeading
    // above; the pitch is 90 when the horizontal distance plus dz is exactly 0.
    void getAngle3d(double x1, double y1, double z1, double x2, double y2, double z2,
                    double* heading, double* pitch);
};

typedef CzbTrajcetoryModel::_TrajectoryPoint _TrajectoryPoint;

} // namespace zbBase
