#include "LogFolder.h"

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <system_error>

namespace zbsim {

std::string LogFolder::today() const {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
#if defined(_WIN32)
    localtime_s(&local, &now);
#else
    localtime_r(&now, &local);
#endif
    char date[32];
    std::snprintf(date, sizeof date, "%04d%02d%02d", local.tm_year + 1900, local.tm_mon + 1,
                  local.tm_mday);
    return m_base + "/" + date;
}

bool LogFolder::ensureToday(std::string& error) {
    const std::string folder = today();
    if (folder == m_made) {
        return true;
    }
    std::error_code ec;
    std::filesystem::create_directories(folder, ec);
    if (ec) {
        error = "cannot create log folder " + folder + ": " + ec.message();
        return false;
    }
    m_made = folder;
    return true;
}

} // namespace zbsim
