// A host that uses the min and max macros of <windows.h>, as GDI+ code does. Visual C++'s
// <windows.h> defines them unless NOMINMAX is set; MinGW's never does in C++, so they are
// defined here as <windows.h> defines them. Every standard header comes first: a standard
// library may take the macros away.
#include "HostSupport.h"

#undef NOMINMAX
#include <windows.h>
#ifndef max
#define max(a, b) (((a) > (b)) ? (a) : (b))
#endif
#ifndef min
#define min(a, b) (((a) < (b)) ? (a) : (b))
#endif

#include <zbBase/zbBase.h>

#if !defined(min) || !defined(max)
#error "the library's headers must leave the host's min and max macros alone"
#endif

#define ZB_HOST HostMinMaxMacros
#include "HostChecks.h"

TEST(HostMinMaxMacros, TheMacrosStillWork) {
    EXPECT_EQ(max(2, 3), 3);
    EXPECT_EQ(min(2.5, -1.0), -1.0);
}
