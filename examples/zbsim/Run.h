// One simulated run: the clock plays, each tick steps the trajectory model and logs a line.
#pragma once

#include "LogFolder.h"
#include "Progress.h"
#include "Scenario.h"
#include "Track.h"

#include <zbBase/diagnostics/CzbLogger.h>
#include <zbBase/simulation/CzbTimeManagerAdv.h>
#include <zbBase/simulation/CzbTrajcetoryModel.h>

#include <condition_variable>
#include <mutex>
#include <vector>

namespace zbsim {

class Run {
public:
    Run(const Scenario& scenario, CzbLogger& logger, LogFolder& logFolder, Progress& progress);

    // Plays the clock until its end message. false if the end did not come within the
    // wall time the run should take plus a generous margin.
    bool play();

    const std::vector<TrackSample>& track() const { return m_track; }

private:
    // The clock's message callback: 3 ticks on the player thread, 4 ends the run.
    static void onClockMessage(int message, void* user);
    void step(double now);

    const Scenario& m_scenario;
    CzbLogger& m_logger;
    LogFolder& m_logFolder;
    Progress& m_progress;
    zbBase::CzbTrajcetoryModel m_model;
    std::vector<TrackSample> m_track;
    double m_lastTime = 0.0;

    std::mutex m_mutex;
    std::condition_variable m_endSignal;
    bool m_ended = false;

    // Declared last: destroyed first, so the player stops before the members it uses go.
    zbBase::CzbTimeManagerAdv m_clock;
};

} // namespace zbsim
