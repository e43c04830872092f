#include "Options.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace zbsim {

namespace {
bool positiveNumber(const char* text, double* out) {
    errno = 0;
    char* end = nullptr;
    const double v = std::strtod(text, &end);
    if (end == text || *end != '\0' || errno == ERANGE || !std::isfinite(v) || v <= 0.0) {
        return false;
    }
    *out = v;
    return true;
}
} // namespace

const char* usageText() {
    return "usage: zbsim [options]\n"
           "Runs one simulated run of an entity along a route and writes its results.\n"
           "\n"
           "  --settings FILE        read the scenario from FILE (default: built-in scenario)\n"
           "  --write-settings FILE  write the built-in scenario to FILE and exit\n"
           "  --out DIR              output folder (default: zbsim-out)\n"
           "  --speed RATE           simulated seconds per real second (overrides the scenario)\n"
           "  --end SECONDS          simulated end time (overrides the scenario)\n"
           "  --quiet                no progress line\n"
           "  --help                 show this text\n";
}

bool parseOptions(int argc, char** argv, Options& options, std::string& error) {
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool takesValue = arg == "--settings" || arg == "--write-settings" ||
                                arg == "--out" || arg == "--speed" || arg == "--end";
        if (arg == "--help" || arg == "-h") {
            options.help = true;
            continue;
        }
        if (arg == "--quiet") {
            options.quiet = true;
            continue;
        }
        if (!takesValue) {
            error = "unknown option " + arg;
            return false;
        }
        if (i + 1 >= argc || std::strlen(argv[i + 1]) == 0) {
            error = "option " + arg + " needs a value";
            return false;
        }
        const char* value = argv[++i];
        if (arg == "--settings") {
            options.settingsPath = value;
        } else if (arg == "--write-settings") {
            options.writeSettingsPath = value;
        } else if (arg == "--out") {
            options.outputFolder = value;
        } else if (arg == "--speed" && !positiveNumber(value, &options.speedRate)) {
            error = std::string("--speed needs a number above 0, not ") + value;
            return false;
        } else if (arg == "--end" && !positiveNumber(value, &options.endTime)) {
            error = std::string("--end needs a number of seconds above 0, not ") + value;
            return false;
        }
    }
    return true;
}

} // namespace zbsim
