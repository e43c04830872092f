#include "Scenario.h"

#include <zbBase/datafiles/CzbFileDB.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace zbsim {

namespace {

// Item names of the settings file. Waypoints are indexed families: wp.x_#0, wp.x_#1, ...
const char* const kName = "scenario.name";
const char* const kOriginLon = "origin.longitude";
const char* const kOriginLat = "origin.latitude";
const char* const kEnd = "run.end";
const char* const kSpeed = "run.speed";
const char* const kLoop = "route.loop";
const char* const kAccel = "model.accelerationLimit";
const char* const kDecel = "model.decelerationLimit";
const char* const kTurn = "model.maxTurnRate";
const char* const kLogPeriod = "log.periodMs";
const char* const kWpX = "wp.x";
const char* const kWpY = "wp.y";
const char* const kWpZ = "wp.z";
const char* const kWpSpeed = "wp.speed";

char* text(const char* s) {
    return const_cast<char*>(s);
}

// Strict number parsing: the item holds one finite number and nothing else.
bool parseNumber(const char* value, double* out) {
    errno = 0;
    char* end = nullptr;
    const double v = std::strtod(value, &end);
    if (end == value || *end != '\0' || errno == ERANGE || !std::isfinite(v)) {
        return false;
    }
    *out = v;
    return true;
}

class Reader {
public:
    explicit Reader(CzbFileDB& db) : m_db(db) {}

    // Keeps `out` when the item is absent.
    bool number(const char* key, double* out) {
        char* value = m_db.getItemPoint(text(key));
        return value == nullptr || check(key, parseNumber(value, out));
    }
    bool indexed(int index, const char* name, double* out) {
        char* value = m_db.getItemPoint(index, text(name));
        if (value == nullptr) {
            m_error = std::string("waypoint ") + std::to_string(index) + " has no " + name;
            return false;
        }
        return check(name, parseNumber(value, out));
    }
    const std::string& error() const { return m_error; }

private:
    bool check(const char* key, bool ok) {
        if (!ok) {
            m_error = std::string("'") + key + "' is not a number";
        }
        return ok;
    }
    CzbFileDB& m_db;
    std::string m_error;
};

} // namespace

Scenario defaultScenario() {
    Scenario s;
    s.name = "harbour patrol";
    s.originLongitude = 127.0;
    s.originLatitude = 37.5;
    s.endTime = 120.0;
    s.speedRate = 24.0;
    s.loop = 0;
    s.accelerationLimit = 5.0;
    s.decelerationLimit = 2.0;
    s.maxTurnRate = 30.0;
    s.logPeriodMs = 200;
    s.route = {{0, 0, 100, 40},
               {900, 700, 150, 60},
               {1900, 500, 200, 70},
               {2300, -500, 150, 50},
               {1300, -1100, 100, 40}};
    return s;
}

bool loadScenario(const std::string& path, Scenario& scenario, std::string& error) {
    CzbFileDB db;
    if (!db.openfile(text(path.c_str()))) {
        error = "cannot read settings file " + path;
        return false;
    }
    Reader read(db);
    double loop = scenario.loop;
    double logPeriod = scenario.logPeriodMs;
    bool ok = read.number(kOriginLon, &scenario.originLongitude) &&
              read.number(kOriginLat, &scenario.originLatitude) &&
              read.number(kEnd, &scenario.endTime) && read.number(kSpeed, &scenario.speedRate) &&
              read.number(kLoop, &loop) && read.number(kAccel, &scenario.accelerationLimit) &&
              read.number(kDecel, &scenario.decelerationLimit) &&
              read.number(kTurn, &scenario.maxTurnRate) && read.number(kLogPeriod, &logPeriod);
    const int count = db.getItemNum(text(kWpX));
    std::vector<RoutePoint> route;
    for (int i = 0; ok && i < count; ++i) {
        RoutePoint p;
        ok = read.indexed(i, kWpX, &p.x) && read.indexed(i, kWpY, &p.y) &&
             read.indexed(i, kWpZ, &p.z) && read.indexed(i, kWpSpeed, &p.speed);
        route.push_back(p);
    }
    if (!ok) {
        error = path + ": " + read.error();
        return false;
    }
    if (count > 0) {
        scenario.route = route;
    }
    if (char* name = db.getItemPoint(text(kName))) {
        scenario.name = name;
    }
    scenario.loop = loop != 0.0 ? 1 : 0;
    scenario.logPeriodMs = static_cast<int>(logPeriod);

    if (scenario.route.size() < 2) {
        error = path + ": the route needs at least two waypoints";
    } else if (!(scenario.endTime > 0.0)) {
        error = path + ": '" + kEnd + "' must be above 0";
    } else if (!(scenario.speedRate > 0.0)) {
        error = path + ": '" + kSpeed + "' must be above 0";
    } else if (scenario.logPeriodMs < 0 || scenario.logPeriodMs > 10000) {
        error = path + ": '" + kLogPeriod + "' must lie between 0 and 10000";
    } else if (std::fabs(scenario.originLatitude) > 84.0 ||
               std::fabs(scenario.originLongitude) > 180.0) {
        error = path + ": the origin is not a geographic position";
    } else {
        return true;
    }
    return false;
}

bool saveScenario(const std::string& path, const Scenario& s) {
    CzbFileDB db;
    db.setItem(text(kName), text(s.name.c_str()));
    db.setItem(text(kOriginLon), s.originLongitude);
    db.setItem(text(kOriginLat), s.originLatitude);
    db.setItem(text(kEnd), s.endTime);
    db.setItem(text(kSpeed), s.speedRate);
    db.setItem(text(kLoop), s.loop);
    db.setItem(text(kAccel), s.accelerationLimit);
    db.setItem(text(kDecel), s.decelerationLimit);
    db.setItem(text(kTurn), s.maxTurnRate);
    db.setItem(text(kLogPeriod), s.logPeriodMs);
    for (size_t i = 0; i < s.route.size(); ++i) {
        const int index = static_cast<int>(i);
        db.setItem(index, text(kWpX), s.route[i].x);
        db.setItem(index, text(kWpY), s.route[i].y);
        db.setItem(index, text(kWpZ), s.route[i].z);
        db.setItem(index, text(kWpSpeed), s.route[i].speed);
    }
    return db.savefile(text(path.c_str()));
}

} // namespace zbsim
