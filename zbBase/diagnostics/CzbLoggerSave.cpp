// The save pass of CzbLogger: runs on the saving thread only.
#include "zbBase/diagnostics/CzbLogger.h"

#include "zbBase/platform/detail/zbpClock.h"
#include "zbBase/platform/detail/zbpFileIO.h"
#include "zbBase/platform/detail/zbpThread.h"

#include <string.h>
#include <vector>

namespace {

const char kOpenFailMark[] = "(File Open Fail)";

// Appends the mark to a text block of `bytes` bytes, cutting the text to make room; a block
// too small for the whole mark gets what fits of it.
void appendOpenFailMark(char* text, int bytes) {
    size_t room = static_cast<size_t>(bytes - 1);
    size_t markLength = sizeof kOpenFailMark - 1;
    if (markLength >= room) {
        memcpy(text, kOpenFailMark, room);
        text[room] = '\0';
        return;
    }
    size_t length = strnlen(text, room);
    if (length + markLength > room) {
        length = room - markLength;
    }
    memcpy(text + length, kOpenFailMark, markLength + 1);
}

} // namespace

bool CzbLogger::buildName(char* name, size_t bytes, const zbBase::zbSystemTime& t) const {
    int length;
    if (m_fileMode == 1) {
        length = snprintf(name, bytes, "%s\\%02d%02d%02d\\%s_%02d%02d%02d.log", m_folder, t.wYear,
                          t.wMonth, t.wDay, m_filePrefix, t.wYear, t.wMonth, t.wDay);
    } else {
        length = snprintf(name, bytes, "%s_%02d%02d%02d.log", m_filePrefix, t.wYear % 100, t.wMonth,
                          t.wDay);
    }
    // A name cut to fit would be another file: such a record counts as not openable.
    return length > 0 && static_cast<size_t>(length) < bytes;
}

void CzbLogger::funcLogFileSave() {
    int save = m_saveIndex.load();
    if (save == m_writeIndex.load()) {
        return;
    }
    SYSTEMTIME now;
    zbp::GetLocalTime(&now);
    const zbBase::zbSystemTime pass = now;

    std::vector<char> text(static_cast<size_t>(m_stringLen));
    zbBase::zbSystemTime fileDate = pass;
    FILE* file = nullptr;
    while (save != m_writeIndex.load()) {
        int slot = (save + 1) % m_bufferSize;
        _LoggerData record;
        {
            // The record is copied under the writers' lock, so it is never seen half-filled.
            zbp::CriticalSectionGuard guard(&m_lock);
            if (m_saveIndex.load() != save) {
                break; // a reset came in between
            }
            record = m_logData[slot];
            size_t length = strnlen(record.text, text.size() - 1);
            memcpy(text.data(), record.text, length);
            text[length] = '\0';
        }
        record.text = text.data();

        const zbBase::zbSystemTime& t = m_fileMode == 1 ? pass : record.time;
        // Consecutive records of one day share one opening of their file within a pass.
        bool sameFile = file != nullptr && t.wYear == fileDate.wYear &&
                        t.wMonth == fileDate.wMonth && t.wDay == fileDate.wDay;
        if (!sameFile) {
            if (file != nullptr) {
                fclose(file);
                file = nullptr;
            }
            char name[256];
            if (buildName(name, sizeof name, t)) {
                file = zbp::fopen(name, "a");
                fileDate = t;
            }
        }
        if (file != nullptr) {
            setLogDataToFile(file, &record);
            // On disk before the record counts as saved: resetLogCount(1) relies on it.
            fflush(file);
        } else {
            zbp::CriticalSectionGuard guard(&m_lock);
            _LoggerData& stored = m_logData[slot];
            if (m_saveIndex.load() == save && stored.number == record.number) {
                appendOpenFailMark(stored.text, m_stringLen);
            }
        }
        if (!m_saveIndex.compare_exchange_strong(save, slot)) {
            break;
        }
        save = slot;
    }
    if (file != nullptr) {
        fclose(file);
    }
}
