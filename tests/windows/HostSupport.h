// What the host programs of this folder need besides the library and <windows.h>: the test
// framework, the standard headers (also those of the library's headers, so that a variant
// that defines min and max macros has every standard header behind it) and the file helpers.
#pragma once

#include "support/zbTestFiles.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <deque>
#include <io.h>
#include <map>
#include <stdint.h>
#include <stdio.h>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>
