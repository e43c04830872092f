// A host DLL that keeps a logger as a static object, its saver running. The system ends the
// saver when the process ends; the logger's destructor runs after that.
#include <zbBase/diagnostics/CzbLogger.h>

#include <windows.h>

#include <stdio.h>
#include <string.h>

namespace {
CzbLogger s_logger(16, 128);
} // namespace

// Starts the saver on log files that cannot be opened (no file is left behind) and returns
// true once it runs and has had its first records.
extern "C" __declspec(dllexport) bool startWork(const char* missingFolder) {
    char prefix[300];
    snprintf(prefix, sizeof prefix, "%s\\zbBase-exit", missingFolder);
    s_logger.setWriteFileMode(prefix, 5);
    char format[] = "record %d";
    for (int i = 0; i < 8; ++i) {
        s_logger.setLog(format, i);
    }
    for (int wait = 0; wait < 2000 && s_logger.m_saveIndex.load() != s_logger.m_writeIndex.load();
         ++wait) {
        Sleep(1);
    }
    s_logger.setLog(format, 8); // one record left for the saver at the end
    return s_logger.m_threadState.load() == 1 &&
           s_logger.GetLogData(0)->text[strlen(s_logger.GetLogData(0)->text) - 1] == ')';
}
