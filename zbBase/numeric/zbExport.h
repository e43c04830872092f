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

#if defined(_MSC_VER)
// C4251 ("needs to have dll-interface to be used by clients") fires for every exported class
// that holds a standard-library member (std::vector, std::atomic, std::string, ...). Those
// templates are not exported: the host compiles their inline code from its own headers and
// works on members that the DLL laid out. That is sound only when host and zbBase.dll are
// built with the same toolset, the same runtime library (/MD, the DLL runtime, so that both
// sides share one heap) and the same configuration (a Debug host with the Debug DLL
// zbBased.dll: the debug runtime changes the layout of the standard containers). Under those
// conditions, which the README's platform notes require, the warning tells nothing, so it is
// turned off for every file that includes a zbBase header.
#pragma warning(disable : 4251)
#endif
