// Runs the example host zbsim end to end on a short scenario and checks what it leaves behind.
#include "examples/zbsim/Track.h"
#include "support/zbTestFiles.h"

#include <zbBase/datafiles/CzbFileMgrB.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

class ZbsimRun : public ::testing::Test {
protected:
    // Runs zbsim in the test folder; returns its exit code, with its error output in m_err.
    int zbsim(const std::string& args) {
        const std::string command =
            "cd '" + m_dir.string() + "' && '" ZBSIM_PATH "' " + args + " >out.txt 2>err.txt";
        const int status = std::system(command.c_str());
        m_err = read(m_dir / "err.txt");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    void write(const std::string& name, const std::string& content) {
        zbtest::writeBytes(m_dir / name, content);
    }
    static std::string read(const fs::path& path) { return zbtest::readBytes(path); }

    zbtest::TempFolder m_folder;
    const fs::path m_dir = m_folder.path();
    std::string m_err;
};

// A route of three points that the model completes in about 26 s, played at 30x for 30 s.
const char* const kShortScenario = "scenario.name=`short`\n"
                                   "run.end=`30`\n"
                                   "run.speed=`30`\n"
                                   "log.periodMs=`50`\n"
                                   "wp.x_#0=`0`\nwp.y_#0=`0`\nwp.z_#0=`0`\nwp.speed_#0=`40`\n"
                                   "wp.x_#1=`400`\nwp.y_#1=`300`\nwp.z_#1=`0`\nwp.speed_#1=`40`\n"
                                   "wp.x_#2=`800`\nwp.y_#2=`0`\nwp.z_#2=`0`\nwp.speed_#2=`40`\n";

// Counts the elements of the array that follows `key` in a JSON text, at its first level.
int countArrayElements(const std::string& json, const std::string& key) {
    size_t at = json.find(key);
    at = json.find('[', at);
    int depth = 0, count = 0;
    for (size_t i = at; i < json.size(); ++i) {
        if (json[i] == '[' && ++depth == 2) {
            ++count;
        } else if (json[i] == ']' && --depth == 0) {
            return count;
        }
    }
    return -1;
}

// Brackets and braces balance and nest, outside of strings.
bool jsonBalanced(const std::string& json) {
    std::string stack;
    bool inString = false;
    for (size_t i = 0; i < json.size(); ++i) {
        const char c = json[i];
        if (inString) {
            if (c == '\\') {
                ++i;
            } else if (c == '"') {
                inString = false;
            }
        } else if (c == '"') {
            inString = true;
        } else if (c == '{' || c == '[') {
            stack += c;
        } else if (c == '}' || c == ']') {
            if (stack.empty() || stack.back() != (c == '}' ? '{' : '[')) {
                return false;
            }
            stack.pop_back();
        }
    }
    return stack.empty() && !inString;
}

// Every element is closed in order; one root element.
bool xmlWellFormed(const std::string& xml) {
    std::vector<std::string> open;
    int roots = 0;
    std::regex tag("<(/?)([A-Za-z][A-Za-z0-9:-]*)[^<>]*?(/?)>|<\\?[^<>]*\\?>");
    for (auto it = std::sregex_iterator(xml.begin(), xml.end(), tag); it != std::sregex_iterator();
         ++it) {
        const std::smatch& m = *it;
        if (m[2].length() == 0) {
            continue; // the declaration
        }
        if (m[1] == "/") {
            if (open.empty() || open.back() != m[2]) {
                return false;
            }
            open.pop_back();
        } else {
            roots += open.empty() ? 1 : 0;
            if (m[3] != "/") {
                open.push_back(m[2]);
            }
        }
    }
    return open.empty() && roots == 1;
}

} // namespace

TEST_F(ZbsimRun, ShortScenarioLeavesLogTrackGeoJsonAndSvg) {
    write("short.txt", kShortScenario);
    ASSERT_EQ(zbsim("--settings short.txt --out results --quiet"), 0) << m_err;

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
    std::istringstream log(read(logs[0]));
    const std::regex line("\\d{8}   \\d\\d/\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3}   L\\[00\\] "
                          "tick \\d+ t=\\d+\\.\\d{3} wp=-?\\d+ .*");
    int lines = 0;
    for (std::string text; std::getline(log, text); ++lines) {
        EXPECT_TRUE(std::regex_match(text, line)) << text;
    }
    EXPECT_EQ(lines, ticks);

    const std::string geojson = read(m_dir / "results/track.geojson");
    EXPECT_TRUE(jsonBalanced(geojson));
    EXPECT_NE(geojson.find("\"FeatureCollection\""), std::string::npos);
    EXPECT_EQ(countArrayElements(geojson, "\"LineString\""), ticks);
    EXPECT_EQ(countArrayElements(geojson, "\"MultiPoint\""), 3);

    const std::string svg = read(m_dir / "results/track.svg");
    EXPECT_TRUE(xmlWellFormed(svg));
    EXPECT_NE(svg.find("<polyline"), std::string::npos);

    const std::string state = read(m_dir / "results/final-state.txt");
    EXPECT_NE(state.find("run.ticks=`" + std::to_string(ticks) + "`"), std::string::npos);
    EXPECT_FALSE(fs::exists(m_dir / "results/track.zbt.part"));
}

TEST_F(ZbsimRun, MissingSettingsFileIsRefused) {
    EXPECT_EQ(zbsim("--settings nowhere.txt --out results"), 2);
    EXPECT_NE(m_err.find("nowhere.txt"), std::string::npos);
    EXPECT_EQ(std::count(m_err.begin(), m_err.end(), '\n'), 1);
    EXPECT_FALSE(fs::exists(m_dir / "results"));
}

TEST_F(ZbsimRun, MalformedSettingsAreRefused) {
    write("bad.txt", std::string(kShortScenario) + "run.speed=`fast`\n");
    EXPECT_EQ(zbsim("--settings bad.txt --out results"), 2);
    EXPECT_NE(m_err.find("run.speed"), std::string::npos);
    EXPECT_FALSE(fs::exists(m_dir / "results"));

    write("short-route.txt", "wp.x_#0=`0`\nwp.y_#0=`0`\nwp.z_#0=`0`\nwp.speed_#0=`10`\n");
    EXPECT_EQ(zbsim("--settings short-route.txt --out results"), 2);
    EXPECT_NE(m_err.find("two waypoints"), std::string::npos);
    EXPECT_FALSE(fs::exists(m_dir / "results"));
}

TEST_F(ZbsimRun, UnknownOptionIsRefused) {
    EXPECT_EQ(zbsim("--frobnicate"), 2);
    EXPECT_NE(m_err.find("--frobnicate"), std::string::npos);
    EXPECT_EQ(std::count(m_err.begin(), m_err.end(), '\n'), 1);
    EXPECT_EQ(zbsim("--speed -3"), 2);
    EXPECT_FALSE(fs::exists(m_dir / "zbsim-out"));
}

TEST_F(ZbsimRun, OutputFolderThatCannotBeCreatedIsRefused) {
    write("plain-file", "x");
    EXPECT_EQ(zbsim("--out plain-file/results"), 2);
    EXPECT_NE(m_err.find("plain-file/results"), std::string::npos);
    EXPECT_EQ(read(m_dir / "plain-file"), "x");
}

TEST_F(ZbsimRun, HelpListsEveryOptionAndSettingsRoundTrip) {
    ASSERT_EQ(zbsim("--help"), 0);
    const std::string help = read(m_dir / "out.txt");
    for (const char* option :
         {"--settings", "--write-settings", "--out", "--speed", "--end", "--quiet", "--help"}) {
        EXPECT_NE(help.find(option), std::string::npos) << option;
    }
    ASSERT_EQ(zbsim("--write-settings defaults.txt"), 0);
    EXPECT_NE(read(m_dir / "defaults.txt").find("wp.x_#4="), std::string::npos);
    // The written defaults read back as a valid scenario.
    ASSERT_EQ(zbsim("--settings defaults.txt --write-settings again.txt"), 0);
    EXPECT_EQ(read(m_dir / "defaults.txt"), read(m_dir / "again.txt"));
}
