// zbsim: a host program that runs one simulated run through the zbBase library.
//
//  1. reads its scenario with CzbFileDB (--settings FILE, or the built-in default);
//  2. starts a CzbLogger that saves into dated folders under the output folder;
//  3. fills a CzbTrajcetoryModel with the route and starts it at the first waypoint;
//  4. plays a CzbTimeManagerAdv at a speed rate, stepping the model at every tick and
//     logging a line per tick;
//  5. shows a progress line;
//  6. at the end writes the final state (CzbFileDB), the track (CzbFileMgrB), a GeoJSON track
//     in longitude and latitude (CzbWGS84) and an SVG plot;
//  7. lets the logger put every record on disk and reports where everything went.
#include "LogFolder.h"
#include "Options.h"
#include "Progress.h"
#include "Run.h"
#include "Scenario.h"
#include "Track.h"

#include <zbBase/diagnostics/CzbLogger.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

namespace {

int fail(const std::string& message, int code) {
    std::fprintf(stderr, "zbsim: error: %s\n", message.c_str());
    return code;
}

struct Outputs {
    std::string state, track, geojson, svg;
};

Outputs outputsIn(const std::string& folder) {
    return {folder + "/final-state.txt", folder + "/track.zbt", folder + "/track.geojson",
            folder + "/track.svg"};
}

} // namespace

int main(int argc, char** argv) {
    zbsim::Options options;
    std::string error;
    if (!zbsim::parseOptions(argc, argv, options, error)) {
        return fail(error + " (see --help)", 2);
    }
    if (options.help) {
        std::printf("%s", zbsim::usageText());
        return 0;
    }

    // 1. The scenario.
    zbsim::Scenario scenario = zbsim::defaultScenario();
    if (!options.settingsPath.empty() &&
        !zbsim::loadScenario(options.settingsPath, scenario, error)) {
        return fail(error, 2);
    }
    if (options.speedRate > 0.0) {
        scenario.speedRate = options.speedRate;
    }
    if (options.endTime > 0.0) {
        scenario.endTime = options.endTime;
    }
    if (!options.writeSettingsPath.empty()) {
        if (!zbsim::saveScenario(options.writeSettingsPath, scenario)) {
            return fail("cannot write settings file " + options.writeSettingsPath, 2);
        }
        std::printf("settings written to %s\n", options.writeSettingsPath.c_str());
        return 0;
    }

    // 2. The output folder and the logger.
    std::error_code ec;
    const bool madeOutput = !std::filesystem::exists(options.outputFolder, ec);
    std::filesystem::create_directories(options.outputFolder, ec);
    if (ec || !std::filesystem::is_directory(options.outputFolder, ec)) {
        return fail("cannot create output folder " + options.outputFolder +
                        (ec ? ": " + ec.message() : std::string()),
                    2);
    }
    zbsim::LogFolder logFolder(options.outputFolder + "/log");
    if (!logFolder.ensureToday(error)) {
        if (madeOutput) {
            std::filesystem::remove_all(options.outputFolder, ec);
        }
        return fail(error, 2);
    }
    auto logger = std::make_unique<CzbLogger>(2000, 512);
    logger->setWriteFileMode2(const_cast<char*>(logFolder.base().c_str()),
                              const_cast<char*>("zbsim"), scenario.logPeriodMs);

    std::printf("zbsim: \"%s\", %zu waypoints, %.1f simulated seconds at %.1fx\n",
                scenario.name.c_str(), scenario.route.size(), scenario.endTime, scenario.speedRate);

    // 3 to 5. The run.
    zbsim::Progress progress(!options.quiet);
    auto run = std::make_unique<zbsim::Run>(scenario, *logger, logFolder, progress);
    const bool ended = run->play();
    progress.finish();
    if (!ended) {
        logger->resetLogCount(1);
        return fail("the clock did not reach its end time", 1);
    }

    // 6. The results.
    const Outputs out = outputsIn(options.outputFolder);
    const auto& track = run->track();
    if (!zbsim::writeFinalState(out.state, scenario, track) ||
        !zbsim::writeTrackFile(out.track, scenario, track) ||
        !zbsim::writeGeoJson(out.geojson, scenario, track) ||
        !zbsim::writeSvg(out.svg, scenario, track)) {
        logger->resetLogCount(1);
        return fail("cannot write the results into " + options.outputFolder, 1);
    }

    const size_t ticks = track.size();
    const zbsim::TrackSample last = track.empty() ? zbsim::TrackSample{} : track.back();

    // 7. Every log record on disk, then the objects go.
    logger->resetLogCount(1);
    run.reset();
    logger.reset();

    std::printf("zbsim: %zu ticks; final position (%.1f, %.1f, %.1f) m, %s\n", ticks, last.x,
                last.y, last.z, last.waypoint < 0 ? "route completed" : "route not completed");
    std::printf("  log          %s/zbsim_*.log\n", logFolder.today().c_str());
    std::printf("  final state  %s\n", out.state.c_str());
    std::printf("  track        %s\n", out.track.c_str());
    std::printf("  geojson      %s\n", out.geojson.c_str());
    std::printf("  svg          %s\n", out.svg.c_str());
    return 0;
}
