#include "Progress.h"

#if defined(_WIN32)
#include <io.h>
#define ZBSIM_ISATTY(fd) _isatty(fd)
#define ZBSIM_FILENO(f) _fileno(f)
#else
#include <unistd.h>
#define ZBSIM_ISATTY(fd) isatty(fd)
#define ZBSIM_FILENO(f) fileno(f)
#endif

namespace zbsim {

Progress::Progress(bool enabled)
    : m_enabled(enabled), m_terminal(ZBSIM_ISATTY(ZBSIM_FILENO(stdout)) != 0) {}

void Progress::update(double time, double endTime, int waypoint, int waypointCount, double speed,
                      double heading) {
    if (!m_enabled) {
        return;
    }
    const auto now = std::chrono::steady_clock::now();
    // A terminal line is redrawn at most 20 times a second; a plain line once a second.
    const auto gap = m_terminal ? std::chrono::milliseconds(50) : std::chrono::milliseconds(1000);
    if (m_anyLine && now - m_lastLine < gap) {
        return;
    }
    m_lastLine = now;
    m_anyLine = true;
    char where[32];
    if (waypoint < 0) {
        std::snprintf(where, sizeof where, "route done");
    } else {
        std::snprintf(where, sizeof where, "to WP%d of %d", waypoint, waypointCount);
    }
    std::printf("%s  t %7.2f / %.2f s  %-14s  speed %6.1f m/s  heading %5.1f deg%s",
                m_terminal ? "\r" : "", time, endTime, where, speed, heading,
                m_terminal ? "   " : "\n");
    std::fflush(stdout);
}

void Progress::finish() {
    if (m_enabled && m_terminal && m_anyLine) {
        std::printf("\n");
    }
}

} // namespace zbsim
