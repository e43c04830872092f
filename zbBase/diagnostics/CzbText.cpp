// The text operations of CzbText; taking slots and sharing them is in CzbTextRing.cpp.
#include "zbBase/diagnostics/CzbText.h"
#include "zbBase/diagnostics/detail/zbFormat.h"

#include "zbBase/platform/detail/zbpClock.h"
#include "zbBase/platform/detail/zbpPath.h"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

namespace {

struct tm localNow() {
    __time64_t now = zbp::_time64(nullptr);
    struct tm* local = zbp::_localtime64(&now);
    struct tm result;
    if (local != nullptr) {
        result = *local;
    } else {
        memset(&result, 0, sizeof result);
        result.tm_mday = 1;
    }
    return result;
}

const int kDateTimeBytes = 64;
const int kPathBytes = 260;
const int kFormatBytes = 512;

} // namespace

char* CzbText::getFormat(char* format, ...) {
    const int slot = claimSlot(kFormatBytes);
    char* block = getBuffer(slot);
    va_list args;
    va_start(args, format);
    zbBase::detail::formatBounded(block, kFormatBytes, format, args);
    va_end(args);
    finishSlot(slot);
    return block;
}

char* CzbText::getDate() {
    char empty[] = "";
    return getDate(empty, empty, empty);
}

char* CzbText::getDate(char* separator) {
    char empty[] = "";
    return getDate(separator, separator, empty);
}

char* CzbText::getDate(char* first, char* second, char* third) {
    struct tm now = localNow();
    return getStamp("%04d%s%02d%s%02d%s", now.tm_year + 1900, first, now.tm_mon + 1, second,
                    now.tm_mday, third);
}

char* CzbText::getStamp(const char* format, int a, char* first, int b, char* second, int c,
                        char* third) {
    const int slot = claimSlot(kDateTimeBytes);
    char* block = getBuffer(slot);
    // Caller's texts too long for the block are cut.
    (void)!snprintf(block, kDateTimeBytes, format, a, first, b, second, c, third);
    finishSlot(slot);
    return block;
}

char* CzbText::getTime() {
    char empty[] = "";
    return getTime(empty, empty, empty);
}

char* CzbText::getTime(char* separator) {
    char empty[] = "";
    return getTime(separator, separator, empty);
}

char* CzbText::getTime(char* first, char* second, char* third) {
    struct tm now = localNow();
    return getStamp("%02d%s%02d%s%02d%s", now.tm_hour, first, now.tm_min, second, now.tm_sec,
                    third);
}

char* CzbText::getCurrentDirectory() {
    const int slot = claimSlot(kPathBytes);
    char* block = getBuffer(slot);
    block[0] = '\0';
    zbp::GetCurrentDirectoryA(kPathBytes, block);
    block[kPathBytes - 1] = '\0';
    finishSlot(slot);
    return block;
}

char* CzbText::getModuleFileName() {
    const int slot = claimSlot(kPathBytes);
    char* block = getBuffer(slot);
    block[0] = '\0';
    zbp::GetModuleFileNameA(nullptr, block, kPathBytes);
    block[kPathBytes - 1] = '\0';
    finishSlot(slot);
    return block;
}

CzbText* CzbTextExt::getInstance() {
    return &m_zbText;
}
