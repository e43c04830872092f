// Runs the example host zbsim end to end on a short scenario and checks what it leaves behind.
// On Windows (and under Wine) zbsim.exe is started through the command interpreter, as a user
// starts it, and every file it writes in text mode ends its lines with CR LF.
#include "examples/zbsim/Track.h"
#include "support/zbTestFiles.h"

#include <zbBase/datafiles/CzbFileMgrB.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>
#if !defined(_WIN32)
#include <sys/wait.h>
#endif

namespace fs = std::filesystem;
using zbtest::kEol;

namespace {

// The program, as an absolute path in the platform's own form (taken before any test changes
// folders; under Wine the build tree's path becomes a path on drive Z:).
const std::string& zbsimProgram() {
    static const std::string path = fs::absolute(ZBSIM_PATH).make_preferred().string();
    return path;
}

class ZbsimRun : public ::testing::Test {
protected:
    // Runs zbsim in the test folder; returns its exit code, with its error output in m_err.
    int zbsim(const std::string& args) {
#if defined(_WIN32)
        const std::string command = "cd /d \"" + m_dir.string() + "\" && \"" + zbsimProgram() +
                                    "\" " + args + " >out.txt 2>err.txt";
        const int status = std::system(command.c_str());
#else
        const std::string command = "cd '" + m_dir.string() + "' && '" + zbsimProgram() + "' " +
                                    args + " >out.txt 2>err.txt";
        const int raw = std::system(command.c_str());
        const int status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
#endif
        m_err = read("err.txt");
        return status;
    }
    void write(const std::string& name, const std::string& content) {
        zbtest::writeBytes(m_dir / name, content);
    }
    std::string read(const std::string& name) {
        return zbtest::readBytes(m_dir / name);
    }

    zbtest::TempFolder m_folder;
    const fs::path m_dir = m_folder.path();
    std::string m_err;
};

// Text as a text-mode stream writes it: every line ends with the platform's line end, and there
// is no other line end (no bare LF on Windows, no CR elsewhere).
bool isText(std::string bytes) {
    const bool ended = bytes.size() >= kEol.size() &&
                       bytes.compare(bytes.size() - kEol.size(), kEol.size(), kEol) == 0;
    for (size_t at; (at = bytes.find(kEol)) != std::string::npos;) {
        bytes.erase(at, kEol.size());
    }
    return ended && bytes.find_first_of("\r\n") == std::string::npos;
}

// A route of three points that the model completes in about 26 s, played at 30x for 30 s.
const char* const kShortScenario = "scenario.name=`short`\n"
                                   "run.end=`30`\n"
                                   "run.speed=`30`\n"
                                   "log.periodMs=`50`\n"
                                   "wp.x_#0=`0`\nwp.y_#0=`0`\nwp.z_#0=`0`\nwp.speed_#0=`40`\n"
                                   "wp.x_#1=`400`\nwp.y_#1=`300`\nwp.z_#1=`0`\nwp.speed_#1=`40`\n"
                                   "wp.x_#2=`800`\nwp.y_#2=`0`\nwp.z_#2=`0`\nwp.speed_#2=`40`\n";

// Strips what `skip` matches, then innermost `pair`s until none is left: a well-formed text
// leaves nothing but blanks.
bool wellFormed(std::string text, const char* skip, const char* pair) {
    text = std::regex_replace(text, std::regex(skip), "");
    for (std::string before; before != text;) {
        before = text;
        text = std::regex_replace(text, std::regex(pair), "");
    }
    return text.find_first_not_of(" \r\n") == std::string::npos;
}

} // namespace

TEST_F(ZbsimRun, ShortScenarioLeavesLogTrackGeoJsonAndSvg) {
    // The settings file as an editor of the platform saves it, with its line ends.
    write("short.txt", std::regex_replace(kShortScenario, std::regex("\n"), kEol));
    ASSERT_EQ(zbsim("--settings short.txt --out results --quiet"), 0) << m_err;
    EXPECT_TRUE(isText(read("out.txt")));
    EXPECT_EQ(m_err, "");

    // The track file reads back with the sizes of its records.
    zbBase::CzbFileMgrB trackFile;
    trackFile.SetDataSize(sizeof(zbsim::TrackHead), sizeof(zbsim::TrackSample));
    ASSERT_TRUE(
        trackFile.OpenFile(const_cast<char*>((m_dir / "results/track.zbt").string().c_str())));
    const auto* head = static_cast<const zbsim::TrackHead*>(trackFile.GetHeadData());
    ASSERT_NE(head, nullptr);
    EXPECT_STREQ(head->magic, "ZBTRACK");
    EXPECT_EQ(head->waypointCount, 3);
    const int ticks = head->sampleCount;
    ASSERT_GT(ticks, 20);
    std::vector<zbsim::TrackSample> track;
    do {
        track.push_back(*static_cast<const zbsim::TrackSample*>(trackFile.GetBodyData()));
    } while (trackFile.MoveNext() != 0);
    ASSERT_EQ(static_cast<int>(track.size()), ticks);
    EXPECT_EQ(track.back().time, 30.0);
    // Written in binary mode: not one byte more than the records.
    EXPECT_EQ(fs::file_size(m_dir / "results/track.zbt"),
              sizeof(zbsim::TrackHead) + ticks * sizeof(zbsim::TrackSample));

    // The model stops within one step of the last waypoint.
    double longestStep = 0;
    for (size_t i = 1; i < track.size(); ++i) {
        longestStep = std::max(
            longestStep, std::hypot(track[i].x - track[i - 1].x, track[i].y - track[i - 1].y));
    }
    EXPECT_EQ(track.back().waypoint, -1);
    EXPECT_LE(std::hypot(track.back().x - 800.0, track.back().y - 0.0), longestStep);

    // One log line per tick, in the logger's format.
    std::vector<fs::path> logs;
    for (const auto& entry : fs::recursive_directory_iterator(m_dir / "results/log")) {
        if (entry.is_regular_file()) {
            logs.push_back(entry.path());
        }
    }
    ASSERT_EQ(logs.size(), 1u);
    EXPECT_TRUE(std::regex_match(logs[0].filename().string(), std::regex("zbsim_\\d{8}\\.log")));
    EXPECT_TRUE(isText(zbtest::readBytes(logs[0])));
    const std::regex line("\\d{8}   \\d\\d/\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3}   L\\[00\\] "
                          "tick \\d+ t=\\d+\\.\\d{3} wp=-?\\d+ .*");
    const std::vector<std::string> lines = zbtest::readLines(logs[0]);
    for (const std::string& text : lines) {
        EXPECT_TRUE(std::regex_match(text, line)) << text;
    }
    EXPECT_EQ(static_cast<int>(lines.size()), ticks);

    const std::string geojson = read("results/track.geojson");
    EXPECT_TRUE(isText(geojson));
    EXPECT_TRUE(wellFormed(geojson, R"("([^"\\]|\\.)*")", R"(\{[^[\]{}]*\}|\[[^[\]{}]*\])"));
    EXPECT_NE(geojson.find("\"FeatureCollection\""), std::string::npos);
    // Brackets: the features, the two lists of coordinates, one per tick and one per waypoint.
    EXPECT_EQ(std::count(geojson.begin(), geojson.end(), '['), 3 + ticks + 3);

    const std::string svg = read("results/track.svg");
    EXPECT_TRUE(isText(svg));
    EXPECT_TRUE(wellFormed(svg, R"(<\?[^>]*\?>|<[a-z][^<>]*/>)", R"(<([a-z]+)[^<>]*>[^<]*</\1>)"));
    EXPECT_NE(svg.find("<polyline"), std::string::npos);

    const std::string state = read("results/final-state.txt");
    EXPECT_TRUE(isText(state));
    EXPECT_NE(state.find("run.ticks=`" + std::to_string(ticks) + "`"), std::string::npos);
    EXPECT_FALSE(fs::exists(m_dir / "results/track.zbt.part"));
}

TEST_F(ZbsimRun, BadInvocationsAreRefused) {
    write("bad.txt", std::string(kShortScenario) + "run.speed=`fast`\n");
    write("short-route.txt", "wp.x_#0=`0`\nwp.y_#0=`0`\nwp.z_#0=`0`\nwp.speed_#0=`10`\n");
    write("plain-file", "x");
    // {arguments, what the one error line names}: exit code 2 and no output folder.
    const char* const cases[][2] = {
        {"--settings nowhere.txt --out results", "nowhere.txt"},
        {"--settings bad.txt --out results", "run.speed"},
        {"--settings short-route.txt --out results", "two waypoints"},
        {"--frobnicate", "--frobnicate"},
        {"--speed -3", "--speed"},
        {"--out plain-file/results", "plain-file/results"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(zbsim(c[0]), 2) << c[0];
        EXPECT_NE(m_err.find(c[1]), std::string::npos) << c[0] << ": " << m_err;
        EXPECT_EQ(std::count(m_err.begin(), m_err.end(), '\n'), 1) << c[0];
        EXPECT_TRUE(isText(m_err)) << c[0];
        EXPECT_FALSE(fs::exists(m_dir / "results")) << c[0];
        EXPECT_FALSE(fs::exists(m_dir / "zbsim-out")) << c[0];
    }
    EXPECT_EQ(read("plain-file"), "x");
}

TEST_F(ZbsimRun, HelpListsEveryOptionAndSettingsRoundTrip) {
    ASSERT_EQ(zbsim("--help"), 0);
    const std::string help = read("out.txt");
    EXPECT_TRUE(isText(help));
    for (const char* option :
         {"--settings", "--write-settings", "--out", "--speed", "--end", "--quiet", "--help"}) {
        EXPECT_NE(help.find(option), std::string::npos) << option;
    }
    ASSERT_EQ(zbsim("--write-settings defaults.txt"), 0);
    EXPECT_NE(read("defaults.txt").find("wp.x_#4="), std::string::npos);
    EXPECT_TRUE(isText(read("defaults.txt")));
    // The written defaults read back as a valid scenario.
    ASSERT_EQ(zbsim("--settings defaults.txt --write-settings again.txt"), 0);
    EXPECT_EQ(read("defaults.txt"), read("again.txt"));
}
