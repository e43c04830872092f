// A host that includes <windows.h> (without NOMINMAX or WIN32_LEAN_AND_MEAN, without UNICODE)
// before the library's headers.
#include "HostSupport.h"

#include <windows.h>

#include <zbBase/zbBase.h>

#define ZB_HOST HostWindowsFirst
#include "HostChecks.h"
