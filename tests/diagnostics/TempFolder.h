// Test helpers of the diagnostics tests, from the shared test files.
#pragma once

#include "support/zbTestFiles.h"

namespace diagtest {
using zbtest::kEol;
using zbtest::readBytes;
using zbtest::readLines;
using zbtest::TempFolder;
using zbtest::Text;
using zbtest::writeBytes;
} // namespace diagtest
