// Export macro of the zbBase shared library.
//
// ZB_API marks every class, record, data object and free function that a host may use.
// While the library itself is compiled ZBBASE_BUILDING is defined: on Windows the names are
// exported from zbBase.dll, and a host that includes the headers imports them. On ELF
// platforms the library is built with -fvisibility=hidden and ZB_API restores default
// visibility for the exported names only.
#pragma once

#if defined(_WIN32)
#if defined(ZBBASE_BUILDING)
#define ZB_API __declspec(dllexport)
#else
#define ZB_API __declspec(dllimport)
#endif
#else
#define ZB_API __attribute__((visibility("default")))
#endif
