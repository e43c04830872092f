// A host with NOMINMAX and WIN32_LEAN_AND_MEAN of its own, <windows.h> before and after the
// library's headers (the second inclusion does nothing).
#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include "HostSupport.h"

#include <windows.h>

#include <zbBase/zbBase.h>

#include <windows.h>

#define ZB_HOST HostLeanNominmax
#include "HostChecks.h"
