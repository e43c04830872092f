// The scenario of one zbsim run: where, how long, how fast, and the route.
#pragma once

#include <string>
#include <vector>

namespace zbsim {

struct RoutePoint {
    double x = 0.0; // metres east of the origin
    double y = 0.0; // metres north of the origin
    double z = 0.0; // metres up
    double speed = 0.0;
};

struct Scenario {
    std::string name;
    double originLongitude = 0.0; // degrees; the local plane's origin
    double originLatitude = 0.0;
    double endTime = 0.0;   // simulated seconds
    double speedRate = 1.0; // simulated seconds per real second
    int loop = 0;
    double accelerationLimit = 0.0;
    double decelerationLimit = 0.0;
    double maxTurnRate = 0.0; // degrees per second, heading and pitch
    int logPeriodMs = 0;
    std::vector<RoutePoint> route;
};

// The built-in default: a one-way route of five points that the model completes in about
// 100 simulated seconds; the run lasts 120 simulated seconds, played in 5 s of wall time.
Scenario defaultScenario();

// Reads a settings file written by saveScenario (or by hand in the same form). Keys that the
// file does not name keep the default. false with a one-line reason in `error` when the file
// cannot be read or a value is not usable.
bool loadScenario(const std::string& path, Scenario& scenario, std::string& error);

// Writes the scenario as a settings file.
bool saveScenario(const std::string& path, const Scenario& scenario);

} // namespace zbsim
