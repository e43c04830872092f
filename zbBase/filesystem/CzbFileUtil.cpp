#include "zbBase/filesystem/CzbFileUtil.h"

#include <string.h>

CzbFileUtil::CzbFileUtil() : m_lastError(1), m_subDirCount(0) {
    m_processPath[0] = '\0';
}

CzbFileUtil::CzbFileUtil(const CzbFileUtil& other)
    : m_findData(other.m_findData), m_processData(other.m_processData),
      m_lastError(other.m_lastError), m_subDirCount(other.m_subDirCount) {
    memcpy(m_processPath, other.m_processPath, sizeof m_processPath);
}

CzbFileUtil::~CzbFileUtil() = default;

CzbFileUtil& CzbFileUtil::operator=(const CzbFileUtil& other) {
    if (this != &other) {
        memcpy(m_processPath, other.m_processPath, sizeof m_processPath);
        m_findData = other.m_findData;
        m_processData = other.m_processData;
        m_lastError = other.m_lastError;
        m_subDirCount = other.m_subDirCount;
    }
    return *this;
}

std::vector<__finddata64_t>* CzbFileUtil::getFindData() {
    return &m_findData;
}

__finddata64_t* CzbFileUtil::getFindData(char* name) {
    if (name == nullptr) {
        return nullptr;
    }
    for (__finddata64_t& entry : m_findData) {
        const char* own =
            (entry.attrib & _A_SUBDIR) != 0 ? getLastPath(entry.name) : getFileName(entry.name);
        if (strcmp(own, name) == 0) {
            return &entry;
        }
    }
    return nullptr;
}

std::vector<__finddata64_t>* CzbFileUtil::getProcessData() {
    return &m_processData;
}

char* CzbFileUtil::getProcessPath() {
    return m_processPath;
}

int CzbFileUtil::getFindSubDirCount() {
    return m_subDirCount;
}

int CzbFileUtil::getLastError() {
    return m_lastError;
}

void CzbFileUtil::clear() {
    m_findData.clear();
    m_processData.clear();
    m_lastError = 1;
    m_subDirCount = 0;
}
