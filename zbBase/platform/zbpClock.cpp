#include "zbBase/platform/detail/zbpClock.h"

#if !defined(_WIN32)

#include <chrono>
#include <thread>

namespace zbp {

BOOL QueryPerformanceCounter(LARGE_INTEGER* count) {
    count->QuadPart = std::chrono::duration_cast<std::chrono::nanoseconds>(
                          std::chrono::steady_clock::now().time_since_epoch())
                          .count();
    return TRUE;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency) {
    frequency->QuadPart = 1000000000LL;
    return TRUE;
}

__time64_t _time64(__time64_t* out) {
    __time64_t now = static_cast<__time64_t>(::time(nullptr));
    if (out != nullptr) {
        *out = now;
    }
    return now;
}

struct tm* _localtime64(const __time64_t* time) {
    static thread_local struct tm buffer;
    if (time == nullptr || *time < 0) {
        return nullptr;
    }
    time_t t = static_cast<time_t>(*time);
    return localtime_r(&t, &buffer) != nullptr ? &buffer : nullptr;
}

void GetLocalTime(SYSTEMTIME* out) {
    struct timespec ts;
    clock_gettime(CLOCK_REALTIME, &ts);
    // The broken-down time changes once a second: each thread keeps the last one, which
    // spares frequent callers (the logger) the runtime's time-zone lock.
    static thread_local time_t cachedSecond = -1;
    static thread_local struct tm cachedLocal;
    time_t t = ts.tv_sec;
    if (t != cachedSecond) {
        localtime_r(&t, &cachedLocal);
        cachedSecond = t;
    }
    const struct tm& local = cachedLocal;
    out->wYear = static_cast<WORD>(local.tm_year + 1900);
    out->wMonth = static_cast<WORD>(local.tm_mon + 1);
    out->wDayOfWeek = static_cast<WORD>(local.tm_wday);
    out->wDay = static_cast<WORD>(local.tm_mday);
    out->wHour = static_cast<WORD>(local.tm_hour);
    out->wMinute = static_cast<WORD>(local.tm_min);
    out->wSecond = static_cast<WORD>(local.tm_sec);
    out->wMilliseconds = static_cast<WORD>(ts.tv_nsec / 1000000);
}

void Sleep(DWORD milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

} // namespace zbp

#endif
