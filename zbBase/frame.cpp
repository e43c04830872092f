// The process-wide objects of the library, defined in one translation unit so that they are
// built at load in this order and destroyed at unload in reverse.
#include "zbBase/diagnostics/CzbString.h"
#include "zbBase/diagnostics/CzbText.h"
#include "zbBase/diagnostics/CzbTrace.h"
#include "zbBase/numeric/CzbRandom.h"
#include "zbBase/platform/detail/zbpClock.h"

#include <cstdint>

namespace zbBase {
// Seconds since the epoch at load, cut to the low 32 bits.
int CzbRandom::ms_randomseed = static_cast<int>(static_cast<uint32_t>(zbp::_time64(nullptr)));
} // namespace zbBase

// The ring of short-lived texts, then the trace object; unload destroys them in reverse.
CzbText CzbTextExt::m_zbText;
CzbTrace CzbTraceExt::m_Instance;

// The buffer of charToWchar: constant-initialised, so no code runs for it at load.
wchar_t* m_pWstrTemp = nullptr;
