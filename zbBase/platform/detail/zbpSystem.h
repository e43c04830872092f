// The system's own records for the library's sources; never included by a public header.
//
// On Windows: <windows.h> in the configuration the library is built with, and the checks
// that the records of the public headers have the layout of the system's. Elsewhere the
// stand-ins of zbPlatformTypes.h play the system's part.
#pragma once

#include "zbBase/platform/zbPlatformTypes.h"

#include <stddef.h>

#if defined(_WIN32)

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

static_assert(sizeof(zbBase::zbCriticalSection) == sizeof(CRITICAL_SECTION) &&
                  alignof(zbBase::zbCriticalSection) == alignof(CRITICAL_SECTION),
              "zbCriticalSection must have the size and alignment of CRITICAL_SECTION");

static_assert(zbBase::detail::IsSystemTimeRecord<SYSTEMTIME>::value &&
                  sizeof(zbBase::zbSystemTime) == sizeof(SYSTEMTIME) &&
                  offsetof(zbBase::zbSystemTime, wYear) == offsetof(SYSTEMTIME, wYear) &&
                  offsetof(zbBase::zbSystemTime, wMonth) == offsetof(SYSTEMTIME, wMonth) &&
                  offsetof(zbBase::zbSystemTime, wDayOfWeek) == offsetof(SYSTEMTIME, wDayOfWeek) &&
                  offsetof(zbBase::zbSystemTime, wDay) == offsetof(SYSTEMTIME, wDay) &&
                  offsetof(zbBase::zbSystemTime, wHour) == offsetof(SYSTEMTIME, wHour) &&
                  offsetof(zbBase::zbSystemTime, wMinute) == offsetof(SYSTEMTIME, wMinute) &&
                  offsetof(zbBase::zbSystemTime, wSecond) == offsetof(SYSTEMTIME, wSecond) &&
                  offsetof(zbBase::zbSystemTime, wMilliseconds) ==
                      offsetof(SYSTEMTIME, wMilliseconds),
              "zbSystemTime must have the fields of SYSTEMTIME in their places");

#endif
