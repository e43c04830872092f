// Counter, calendar time and sleeping, under their Windows names, in namespace zbp.
#pragma once

#include "zbBase/platform/detail/zbpSystem.h"

#include <time.h>

namespace zbp {

#if defined(_WIN32)
using ::_localtime64;
using ::_time64;
using ::GetLocalTime;
using ::QueryPerformanceCounter;
using ::QueryPerformanceFrequency;
using ::Sleep;
#else
// Monotonic counter in nanoseconds; the frequency is therefore 1e9.
BOOL QueryPerformanceCounter(LARGE_INTEGER* count);
BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency);
// Seconds since the epoch; also stored through `out` when it is not null.
__time64_t _time64(__time64_t* out);
// Local broken-down time in a buffer of the calling thread; null if the time cannot be shown.
struct tm* _localtime64(const __time64_t* time);
// Local time of day with milliseconds.
void GetLocalTime(SYSTEMTIME* time);
void Sleep(DWORD milliseconds);
#endif

} // namespace zbp
