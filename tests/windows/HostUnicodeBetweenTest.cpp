// A UNICODE host that includes one library header, then <windows.h>, then the rest.
#define UNICODE
#define _UNICODE
#include "HostSupport.h"

#include <zbBase/diagnostics/CzbString.h>

#include <windows.h>

#include <zbBase/zbBase.h>

#define ZB_HOST HostUnicodeBetween
#include "HostChecks.h"
