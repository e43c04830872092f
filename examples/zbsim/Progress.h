// The progress line of zbsim: rewritten in place on a terminal, plain lines otherwise.
#pragma once

#include <chrono>
#include <cstdio>

namespace zbsim {

class Progress {
public:
    explicit Progress(bool enabled);
    // Called on the clock's player thread at each tick.
    void update(double time, double endTime, int waypoint, int waypointCount, double speed,
                double heading);
    // Ends the line on a terminal.
    void finish();

private:
    bool m_enabled;
    bool m_terminal;
    std::chrono::steady_clock::time_point m_lastLine;
    bool m_anyLine = false;
};

} // namespace zbsim
