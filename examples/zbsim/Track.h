// The record of a run: one sample per clock tick, and the files written from it.
#pragma once

#include "Scenario.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zbsim {

// One body record of the track file (little-endian, 72 bytes).
struct TrackSample {
    double time; // simulated seconds
    double x, y, z;
    double heading, pitch, roll; // degrees; heading clockwise from north
    double speed;
    int32_t waypoint; // index of the point the model heads for; -1 once the route is done
    int32_t result;   // what the model's step answered: 0 standing, 1 moved, 2 no route left
};
static_assert(sizeof(TrackSample) == 72, "track record layout");

// The head record of the track file (little-endian, 120 bytes).
struct TrackHead {
    char magic[8]; // "ZBTRACK"
    char name[64];
    double originLongitude;
    double originLatitude;
    double endTime;
    double speedRate;
    int32_t waypointCount;
    int32_t loop;
    int32_t sampleCount;
    int32_t reserved;
};
static_assert(sizeof(TrackHead) == 120, "track head layout");

// Each writer writes to `path` through a temporary file beside it and renames it into place,
// so that a failed write leaves nothing behind. false when the file cannot be written.
bool writeTrackFile(const std::string& path, const Scenario& scenario,
                    const std::vector<TrackSample>& track);
bool writeGeoJson(const std::string& path, const Scenario& scenario,
                  const std::vector<TrackSample>& track);
bool writeSvg(const std::string& path, const Scenario& scenario,
              const std::vector<TrackSample>& track);
bool writeFinalState(const std::string& path, const Scenario& scenario,
                     const std::vector<TrackSample>& track);

} // namespace zbsim
