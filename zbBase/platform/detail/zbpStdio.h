// Opening C streams by a path in the library's form, in namespace zbp.
//
// The mode strings are those of the C runtime ("a", "w", ...); without "b" a stream is in
// text mode, which on Windows writes CR LF for every line end.
#pragma once

#include <stdio.h>

namespace zbp {

#if defined(_WIN32)
using ::fopen;
using ::fopen_s;
#else
// Opens the file; null when it cannot be opened.
FILE* fopen(const char* path, const char* mode);
// Opens the file into *file; 0 on success, otherwise an error number with *file null.
int fopen_s(FILE** file, const char* path, const char* mode);
#endif

} // namespace zbp
