// The dated folders that the logger writes into: <base>/<YYYYMMDD>/. The logger never creates
// folders, so zbsim makes today's before the run and the next day's when a run crosses midnight.
#pragma once

#include <string>

namespace zbsim {

class LogFolder {
public:
    explicit LogFolder(std::string base) : m_base(std::move(base)) {}
    const std::string& base() const { return m_base; }
    // Creates today's folder if it does not exist yet. false with a reason in `error`.
    bool ensureToday(std::string& error);
    // The folder of today, as the logger names it.
    std::string today() const;

private:
    std::string m_base;
    std::string m_made; // the last folder known to exist
};

} // namespace zbsim
