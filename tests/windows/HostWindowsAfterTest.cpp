// A host that includes the library's headers first and <windows.h> after them, as an MFC host
// must, whose own headers refuse a <windows.h> that came before them.
#include "HostSupport.h"

#include <zbBase/zbBase.h>

#if defined(_WINDOWS_) || defined(_INC_WINDOWS) || defined(WIN32_LEAN_AND_MEAN)
#error "the library's headers must neither include <windows.h> nor configure it"
#endif
#if defined(NOMINMAX) && !defined(__GLIBCXX__)
#error "the library's headers must leave NOMINMAX to the host"
#endif

#include <windows.h>

#define ZB_HOST HostWindowsAfter
#include "HostChecks.h"
