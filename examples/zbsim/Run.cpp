#include "Run.h"

#include <chrono>

namespace zbsim {

Run::Run(const Scenario& scenario, CzbLogger& logger, LogFolder& logFolder, Progress& progress)
    : m_scenario(scenario), m_logger(logger), m_logFolder(logFolder), m_progress(progress) {
    for (const RoutePoint& p : scenario.route) {
        m_model.m_waypoints.push_back({p.x, p.y, p.z, p.speed});
    }
    m_model.m_loop = scenario.loop;
    m_model.m_accelerationLimit = scenario.accelerationLimit;
    m_model.m_decelerationLimit = scenario.decelerationLimit;
    m_model.m_maxTurnRate.set(scenario.maxTurnRate, scenario.maxTurnRate, scenario.maxTurnRate);
    m_model.setCurrentByWaypoint(0);
    m_track.reserve(static_cast<size_t>(scenario.endTime / 0.03) + 16);
}

bool Run::play() {
    m_clock.SetSpeedRate(m_scenario.speedRate);
    m_clock.m_endTime = m_scenario.endTime;
    m_clock.setMsgCallbackFunc(&Run::onClockMessage, this);
    m_clock.SetPlay();

    const double wallSeconds = m_scenario.endTime / m_scenario.speedRate;
    const auto limit = std::chrono::duration<double>(wallSeconds * 2.0 + 30.0);
    std::unique_lock<std::mutex> lock(m_mutex);
    const bool ended = m_endSignal.wait_for(lock, limit, [this] { return m_ended; });
    lock.unlock();
    // The end leaves the clock paused; no message is wanted after it.
    m_clock.setMsgCallbackFunc(nullptr, nullptr);
    return ended;
}

void Run::onClockMessage(int message, void* user) {
    Run* run = static_cast<Run*>(user);
    if (message == 3) {
        run->step(run->m_clock.GetTime(0));
    } else if (message == 4) {
        // The clock now shows exactly the end time: one last step up to it.
        run->step(run->m_scenario.endTime);
        std::lock_guard<std::mutex> lock(run->m_mutex);
        run->m_ended = true;
        run->m_endSignal.notify_all();
    }
}

void Run::step(double now) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_ended) {
        return;
    }
    const double elapsed = now - m_lastTime;
    m_lastTime = now;
    const int result = m_model.calculate(static_cast<float>(elapsed));

    TrackSample sample;
    sample.time = now;
    sample.x = m_model.m_position.x;
    sample.y = m_model.m_position.y;
    sample.z = m_model.m_position.z;
    sample.heading = m_model.m_attitude.x;
    sample.pitch = m_model.m_attitude.y;
    sample.roll = m_model.m_attitude.z;
    sample.speed = m_model.m_speed;
    sample.waypoint = m_model.m_currentIndex;
    sample.result = result;
    m_track.push_back(sample);

    std::string error;
    m_logFolder.ensureToday(error); // a run across midnight logs into the new day's folder
    m_logger.setLog(const_cast<char*>("tick %d t=%.3f wp=%d x=%.2f y=%.2f z=%.2f "
                                      "speed=%.2f heading=%.2f pitch=%.2f"),
                    static_cast<int>(m_track.size()), now, sample.waypoint, sample.x, sample.y,
                    sample.z, sample.speed, sample.heading, sample.pitch);
    m_progress.update(now, m_scenario.endTime, sample.waypoint,
                      static_cast<int>(m_scenario.route.size()), sample.speed, sample.heading);
}

} // namespace zbsim
