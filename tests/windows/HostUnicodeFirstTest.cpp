// A UNICODE host that includes <windows.h> before the library's headers: GetFullPathName is
// GetFullPathNameW there.
#define UNICODE
#define _UNICODE
#include "HostSupport.h"

#include <windows.h>

#include <zbBase/zbBase.h>

#define ZB_HOST HostUnicodeFirst
#include "HostChecks.h"
