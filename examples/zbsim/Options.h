// Command line of zbsim.
#pragma once

#include <string>

namespace zbsim {

struct Options {
    std::string settingsPath;      // --settings FILE
    std::string writeSettingsPath; // --write-settings FILE
    std::string outputFolder = "zbsim-out";
    double speedRate = 0.0; // --speed; 0: the scenario's
    double endTime = 0.0;   // --end; 0: the scenario's
    bool quiet = false;
    bool help = false;
};

// false with a one-line reason in `error` for an unknown option or a bad value.
bool parseOptions(int argc, char** argv, Options& options, std::string& error);

const char* usageText();

} // namespace zbsim
