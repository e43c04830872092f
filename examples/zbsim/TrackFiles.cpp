#include "Track.h"

#include <zbBase/datafiles/CzbFileDB.h>
#include <zbBase/datafiles/CzbFileMgrB.h>
#include <zbBase/geodesy/CzbWGS84.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <system_error>

namespace zbsim {

namespace {

char* text(const char* s) {
    return const_cast<char*>(s);
}

// Runs `write` on a temporary path and moves the result onto `path` only when it succeeded.
bool writeAtomically(const std::string& path,
                     const std::function<bool(const std::string&)>& write) {
    const std::string part = path + ".part";
    std::error_code ec;
    if (!write(part) || !std::filesystem::exists(part, ec)) {
        std::filesystem::remove(part, ec);
        return false;
    }
    std::filesystem::rename(part, path, ec);
    if (ec) {
        std::filesystem::remove(part, ec);
        return false;
    }
    return true;
}

// Writes with stdio and reports a failed write or close.
bool writeText(const std::string& path, const std::function<void(FILE*)>& body) {
    FILE* file = std::fopen(path.c_str(), "w");
    if (file == nullptr) {
        return false;
    }
    body(file);
    const bool ok = std::ferror(file) == 0;
    return std::fclose(file) == 0 && ok;
}

void toGeographic(const Scenario& s, double x, double y, double* lon, double* lat) {
    CzbWGS84::_TM2Bessel(x, y, s.originLongitude, s.originLatitude, lon, lat);
}

void escapeXml(FILE* file, const std::string& value) {
    for (char c : value) {
        switch (c) {
        case '<':
            std::fputs("&lt;", file);
            break;
        case '>':
            std::fputs("&gt;", file);
            break;
        case '&':
            std::fputs("&amp;", file);
            break;
        case '"':
            std::fputs("&quot;", file);
            break;
        default:
            std::fputc(c, file);
        }
    }
}

void escapeJson(FILE* file, const std::string& value) {
    for (unsigned char c : value) {
        if (c == '"' || c == '\\') {
            std::fprintf(file, "\\%c", c);
        } else if (c < 0x20) {
            std::fprintf(file, "\\u%04x", c);
        } else {
            std::fputc(c, file);
        }
    }
}

} // namespace

bool writeTrackFile(const std::string& path, const Scenario& scenario,
                    const std::vector<TrackSample>& track) {
    TrackHead head;
    std::memset(&head, 0, sizeof head);
    std::memcpy(head.magic, "ZBTRACK", 8);
    std::snprintf(head.name, sizeof head.name, "%s", scenario.name.c_str());
    head.originLongitude = scenario.originLongitude;
    head.originLatitude = scenario.originLatitude;
    head.endTime = scenario.endTime;
    head.speedRate = scenario.speedRate;
    head.waypointCount = static_cast<int32_t>(scenario.route.size());
    head.loop = scenario.loop;
    head.sampleCount = static_cast<int32_t>(track.size());

    return writeAtomically(path, [&](const std::string& part) {
        zbBase::CzbFileMgrB file;
        file.SetDataSize(sizeof(TrackHead), sizeof(TrackSample));
        file.SetHead(&head);
        for (const TrackSample& sample : track) {
            TrackSample copy = sample;
            file.AddBody(&copy);
        }
        file.MakeFile(text(part.c_str()));
        std::error_code ec;
        return std::filesystem::file_size(part, ec) ==
               sizeof(TrackHead) + track.size() * sizeof(TrackSample);
    });
}

bool writeGeoJson(const std::string& path, const Scenario& scenario,
                  const std::vector<TrackSample>& track) {
    return writeAtomically(path, [&](const std::string& part) {
        return writeText(part, [&](FILE* f) {
            std::fputs("{\n  \"type\": \"FeatureCollection\",\n  \"features\": [\n", f);
            std::fputs("    {\n      \"type\": \"Feature\",\n      \"properties\": {\"name\": \"",
                       f);
            escapeJson(f, scenario.name);
            std::fprintf(f, "\", \"kind\": \"track\", \"samples\": %zu},\n", track.size());
            std::fputs("      \"geometry\": {\"type\": \"LineString\", \"coordinates\": [", f);
            for (size_t i = 0; i < track.size(); ++i) {
                double lon = 0, lat = 0;
                toGeographic(scenario, track[i].x, track[i].y, &lon, &lat);
                std::fprintf(f, "%s\n        [%.8f, %.8f, %.2f]", i == 0 ? "" : ",", lon, lat,
                             track[i].z);
            }
            std::fputs("\n      ]}\n    },\n", f);
            std::fputs("    {\n      \"type\": \"Feature\",\n"
                       "      \"properties\": {\"kind\": \"waypoints\"},\n"
                       "      \"geometry\": {\"type\": \"MultiPoint\", \"coordinates\": [",
                       f);
            for (size_t i = 0; i < scenario.route.size(); ++i) {
                double lon = 0, lat = 0;
                toGeographic(scenario, scenario.route[i].x, scenario.route[i].y, &lon, &lat);
                std::fprintf(f, "%s\n        [%.8f, %.8f, %.2f]", i == 0 ? "" : ",", lon, lat,
                             scenario.route[i].z);
            }
            std::fputs("\n      ]}\n    }\n  ]\n}\n", f);
        });
    });
}

bool writeSvg(const std::string& path, const Scenario& scenario,
              const std::vector<TrackSample>& track) {
    double minX = 0, maxX = 0, minY = 0, maxY = 0;
    bool first = true;
    auto extend = [&](double x, double y) {
        minX = first ? x : std::min(minX, x);
        maxX = first ? x : std::max(maxX, x);
        minY = first ? y : std::min(minY, y);
        maxY = first ? y : std::max(maxY, y);
        first = false;
    };
    for (const RoutePoint& p : scenario.route) {
        extend(p.x, p.y);
    }
    for (const TrackSample& s : track) {
        extend(s.x, s.y);
    }
    const double size = 640.0, margin = 60.0;
    const double span = std::max({maxX - minX, maxY - minY, 1.0});
    const double scale = (size - 2 * margin) / span;
    // North up: the plot's y grows downward.
    auto px = [&](double x) { return margin + (x - minX) * scale; };
    auto py = [&](double y) { return size - margin - (y - minY) * scale; };

    return writeAtomically(path, [&](const std::string& part) {
        return writeText(part, [&](FILE* f) {
            std::fprintf(f,
                         "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                         "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" "
                         "height=\"%.0f\" viewBox=\"0 0 %.0f %.0f\">\n",
                         size, size + 30, size, size + 30);
            std::fputs("  <rect width=\"100%\" height=\"100%\" fill=\"#fbfbf8\"/>\n", f);
            std::fputs("  <text x=\"12\" y=\"22\" font-family=\"sans-serif\" font-size=\"14\">", f);
            escapeXml(f, scenario.name);
            std::fprintf(f, " - %zu ticks, %.0f m across</text>\n", track.size(), span);
            std::fputs("  <polyline fill=\"none\" stroke=\"#999\" stroke-dasharray=\"6 4\" "
                       "points=\"",
                       f);
            for (const RoutePoint& p : scenario.route) {
                std::fprintf(f, "%.1f,%.1f ", px(p.x), py(p.y));
            }
            std::fputs("\"/>\n  <polyline fill=\"none\" stroke=\"#1f5fbf\" stroke-width=\"2\" "
                       "points=\"",
                       f);
            for (const TrackSample& s : track) {
                std::fprintf(f, "%.1f,%.1f ", px(s.x), py(s.y));
            }
            std::fputs("\"/>\n", f);
            for (size_t i = 0; i < scenario.route.size(); ++i) {
                const RoutePoint& p = scenario.route[i];
                std::fprintf(f,
                             "  <circle cx=\"%.1f\" cy=\"%.1f\" r=\"6\" fill=\"#d9480f\"/>\n"
                             "  <text x=\"%.1f\" y=\"%.1f\" font-family=\"sans-serif\" "
                             "font-size=\"12\">WP%zu</text>\n",
                             px(p.x), py(p.y), px(p.x) + 9, py(p.y) - 9, i);
            }
            std::fputs("</svg>\n", f);
        });
    });
}

bool writeFinalState(const std::string& path, const Scenario& scenario,
                     const std::vector<TrackSample>& track) {
    return writeAtomically(path, [&](const std::string& part) {
        CzbFileDB db;
        db.setItem(text("scenario.name"), text(scenario.name.c_str()));
        db.setItem(text("run.ticks"), static_cast<int>(track.size()));
        if (!track.empty()) {
            const TrackSample& last = track.back();
            db.setItem(text("final.time"), last.time);
            db.setItem(text("final.x"), last.x);
            db.setItem(text("final.y"), last.y);
            db.setItem(text("final.z"), last.z);
            db.setItem(text("final.heading"), last.heading);
            db.setItem(text("final.pitch"), last.pitch);
            db.setItem(text("final.speed"), last.speed);
            db.setItem(text("final.waypoint"), last.waypoint);
            db.setItem(text("route.completed"), last.waypoint < 0 ? 1 : 0);
        }
        return db.savefile(text(part.c_str()));
    });
}

} // namespace zbsim
