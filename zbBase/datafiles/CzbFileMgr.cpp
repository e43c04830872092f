#include "zbBase/datafiles/CzbFileMgr.h"

#include "zbBase/datafiles/detail/zbTextField.h"
#include "zbBase/datafiles/detail/zbTextNumber.h"

#include <cstdio>
#include <cstring>

using namespace zbBase::detail;

// ---- records ----

_Title::_Title() {
    clear();
}

_Title::_Title(char* text) {
    clear();
    copyField(title, text);
}

void _Title::clear() {
    std::memset(title, 0, sizeof title);
}

bool _Title::compare(char* text) {
    return sameField(title, text);
}

_Attribute::_Attribute() {
    std::memset(title, 0, sizeof title);
    std::memset(name, 0, sizeof name);
    std::memset(value, 0, sizeof value);
}

namespace zbBase {

CzbFileMgr::CzbFileMgr() : m_attributes(), m_position(0) {
    std::memset(m_title, 0, sizeof m_title);
}

void CzbFileMgr::SetTitle(char* title) {
    copyField(m_title, title);
    if (m_title[0] == '\0') {
        m_position = 0;
    }
    for (size_t i = 0; i < m_attributes.size(); ++i) {
        if (sameFields(m_attributes[i].title, m_title)) {
            m_position = static_cast<int32_t>(i);
            break;
        }
    }
}

bool CzbFileMgr::appendAttribute(char* name, const char* value) {
    if (m_title[0] == '\0') {
        return false;
    }
    _Attribute record;
    copyField(record.title, m_title);
    copyField(record.name, name);
    copyField(record.value, value);
    m_attributes.push_back(record);
    return true;
}

bool CzbFileMgr::SetAttribute(char* name, char* value) {
    return appendAttribute(name, value);
}

bool CzbFileMgr::SetAttribute(char* name, int value) {
    char text[kFieldSize];
    std::snprintf(text, sizeof text, "%d", value);
    return appendAttribute(name, text);
}

bool CzbFileMgr::SetAttribute(char* name, float value) {
    char text[kFieldSize];
    std::snprintf(text, sizeof text, "%f", static_cast<double>(value));
    return appendAttribute(name, text);
}

bool CzbFileMgr::SetAttribute(char* name, double value) {
    char text[kFieldSize];
    std::snprintf(text, sizeof text, "%lf", value);
    return appendAttribute(name, text);
}

template <typename Read> bool CzbFileMgr::walkAttribute(char* name, Read read) {
    if (m_position < 0) {
        return true;
    }
    for (size_t i = static_cast<size_t>(m_position); i < m_attributes.size(); ++i) {
        const _Attribute& record = m_attributes[i];
        if (!sameFields(record.title, m_title)) {
            return false;
        }
        if (sameField(record.name, name)) {
            read(record.value);
        }
    }
    return true;
}

bool CzbFileMgr::GetAttribute(char* name, char* value) {
    return walkAttribute(name, [value](const char* field) {
        size_t length = fieldLength(field);
        std::memmove(value, field, length);
        value[length] = '\0';
    });
}

bool CzbFileMgr::GetAttribute(char* name, int& value) {
    return walkAttribute(name, [&value](const char* field) {
        char text[kFieldSize + 1];
        copyField(text, field);
        value = textToInt(text);
    });
}

bool CzbFileMgr::GetAttribute(char* name, float& value) {
    return walkAttribute(name, [&value](const char* field) {
        char text[kFieldSize + 1];
        copyField(text, field);
        value = textToFloat(text);
    });
}

bool CzbFileMgr::GetAttribute(char* name, double& value) {
    return walkAttribute(name, [&value](const char* field) {
        char text[kFieldSize + 1];
        copyField(text, field);
        value = textToDouble(text);
    });
}

} // namespace zbBase
