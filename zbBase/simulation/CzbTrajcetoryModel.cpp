#include "zbBase/simulation/CzbTrajcetoryModel.h"

#include <algorithm>
#include <cmath>

namespace zbBase {

namespace {
const double kPi = 3.141592653589793;
} // namespace

CzbTrajcetoryModel::CzbTrajcetoryModel()
    : m_position(), m_attitude(), m_speed(0.0), m_acceleration(10.0), m_turnRate(),
      m_targetPosition(), m_targetSpeed(0.0), m_auxiliary{0.0, 0.0, 0.0, 0.0},
      m_accelerationLimit(5.0), m_decelerationLimit(1.0), m_maxTurnRate(30.0, 30.0, 30.0),
      m_loop(0), m_currentIndex(-1), m_waypoints(), m_de() {}

double CzbTrajcetoryModel::getHeading(double x, double y) {
    if (x + y == 0.0) {
        return 0.0;
    }
    if (x >= 0.0 && y >= 0.0) {
        return std::atan(x / y) * 180.0 / kPi;
    }
    if (x >= 0.0 && y < 0.0) {
        return 180.0 - std::atan(-(x / y)) * 180.0 / kPi;
    }
    if (x < 0.0 && y < 0.0) {
        return std::atan(x / y) * 180.0 / kPi + 180.0;
    }
    if (x < 0.0 && y >= 0.0) {
        return 360.0 - std::atan(-(x / y)) * 180.0 / kPi;
    }
    return 0.0;
}

void CzbTrajcetoryModel::getAngle3d(double x1, double y1, double z1, double x2, double y2,
                                    double z2, double* heading, double* pitch) {
    const double dx = x2 - x1;
    const double dy = y2 - y1;
    const double dz = z2 - z1;
    *heading = getHeading(dx, dy);
    *pitch = -(getHeading(std::sqrt(dy * dy + dx * dx), dz) - 90.0);
}

int CzbTrajcetoryModel::calculate(float elapsed) {
    const double dt = elapsed;
    if (m_currentIndex < 0 || static_cast<size_t>(m_currentIndex) >= m_waypoints.size()) {
        return 2;
    }
    const _TrajectoryPoint& target = m_waypoints[static_cast<size_t>(m_currentIndex)];
    m_targetPosition.set(target.x, target.y, target.z);
    m_targetSpeed = target.speed;

    if (0.01 >= m_de.distance3d(m_position.x, m_position.y, m_position.z, m_targetPosition.x,
                                m_targetPosition.y, m_targetPosition.z)) {
        return 0;
    }

    if (m_speed == m_targetSpeed) {
        m_acceleration = 0.0;
    } else if (m_targetSpeed > m_speed) {
        m_speed += dt * m_accelerationLimit;
        if (m_speed > m_targetSpeed) {
            m_speed = m_targetSpeed;
        }
    } else {
        m_speed -= dt * m_decelerationLimit;
        if (m_speed < m_targetSpeed) {
            m_speed = m_targetSpeed;
        }
    }

    const double step = dt * m_speed;
    const double headingLimit = dt * m_maxTurnRate.x;
    const double pitchLimit = dt * m_maxTurnRate.y;

    double wantedHeading = 0.0;
    double wantedPitch = 0.0;
    getAngle3d(m_position.x, m_position.y, m_position.z, m_targetPosition.x, m_targetPosition.y,
               m_targetPosition.z, &wantedHeading, &wantedPitch);

    double headingTurn = m_de.GetAngleClosing(wantedHeading, m_attitude.x, 0);
    double pitchTurn = m_de.GetAngleClosing(wantedPitch, m_attitude.y, 0);
    const double rollTurn = m_de.GetAngleClosing(0.0, m_attitude.z, 0);
    if (headingTurn != 0.0) {
        headingTurn *= std::min(1.0, std::fabs(headingLimit / headingTurn));
    }
    if (pitchTurn != 0.0) {
        pitchTurn *= std::min(1.0, std::fabs(pitchLimit / pitchTurn));
    }

    m_attitude.x += headingTurn;
    m_attitude.y += pitchTurn;
    m_attitude.z += rollTurn;
    m_attitude.x = m_de.GetAngle360(m_attitude.x);

    // A step of no time turns nothing; its rate is 0 rather than 0 / 0.
    if (dt != 0.0) {
        m_turnRate.set(headingTurn / dt, pitchTurn / dt, 0.0);
    } else {
        m_turnRate.set(0.0, 0.0, 0.0);
    }

    // The motion operations count the heading counter-clockwise; this class clockwise.
    m_de.getRotatePostion(&m_position.x, &m_position.y, &m_position.z, -m_attitude.x, m_attitude.y,
                          step);

    const double ex = m_position.x - m_targetPosition.x;
    const double ey = m_position.y - m_targetPosition.y;
    const double remaining = std::sqrt(ey * ey + ex * ex);
    if (step >= remaining) {
        const int count = static_cast<int>(m_waypoints.size());
        m_currentIndex += 1;
        if (m_loop != 0) {
            m_currentIndex = m_currentIndex % count;
        } else if (m_currentIndex >= count) {
            m_currentIndex = -1;
        }
    }
    return 1;
}

void CzbTrajcetoryModel::setCurrentByWaypoint(int index) {
    // A negative index has no point to stand on; -1 would read before the list.
    if (index < 0 || static_cast<size_t>(index) + 1 >= m_waypoints.size()) {
        return;
    }
    const _TrajectoryPoint& from = m_waypoints[static_cast<size_t>(index)];
    const _TrajectoryPoint& to = m_waypoints[static_cast<size_t>(index) + 1];
    m_position.set(from.x, from.y, from.z);
    m_attitude.set(0.0, 0.0, 0.0);
    getAngle3d(from.x, from.y, from.z, to.x, to.y, to.z, &m_attitude.x, &m_attitude.y);
    m_speed = from.speed;
    m_acceleration = 0.0;
    m_currentIndex = index + 1;
}

} // namespace zbBase
