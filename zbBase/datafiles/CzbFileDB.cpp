#include "zbBase/datafiles/CzbFileDB.h"

#include "zbBase/datafiles/detail/zbTextNumber.h"
#include "zbBase/platform/detail/zbpNumber.h"
#include "zbBase/platform/detail/zbpThread.h"

#include <algorithm>
#include <cstring>

using zbBase::CzbStringT;
using namespace zbBase::detail;

namespace {

const char* orEmpty(const char* text) {
    return text != nullptr ? text : "";
}

CzbStringT indexedKey(int index, const char* name) {
    CzbStringT key;
    key.Format("%s%s%d", orEmpty(name), "_#", index);
    return key;
}

CzbStringT familyPrefix(const char* name) {
    CzbStringT prefix;
    prefix.Format("%s%s", orEmpty(name), "_#");
    return prefix;
}

bool inFamily(const CzbStringT& key, const CzbStringT& prefix) {
    return std::strncmp(key.GetString(), prefix.GetString(),
                        static_cast<size_t>(prefix.GetLength())) == 0;
}

} // namespace

CzbFileDB::CzbFileDB() {
    zbp::InitializeCriticalSection(&m_lock);
}

CzbFileDB::CzbFileDB(const CzbFileDB& other) {
    zbp::InitializeCriticalSection(&m_lock);
    copyItemsFrom(other);
}

CzbFileDB& CzbFileDB::operator=(const CzbFileDB& other) {
    if (this != &other) {
        clear();
        copyItemsFrom(other);
    }
    return *this;
}

CzbFileDB::~CzbFileDB() {
    zbp::DeleteCriticalSection(&m_lock);
}

void CzbFileDB::copyItemsFrom(const CzbFileDB& other) {
    m_order.reserve(other.m_order.size());
    for (const ItemMap::iterator& entry : other.m_order) {
        addOrReplace(entry->first, entry->second);
    }
}

void CzbFileDB::addOrReplace(const CStringT& key, const CStringT& value) {
    ItemMap::iterator found = m_items.find(key);
    if (found != m_items.end()) {
        found->second = value;
        return;
    }
    ItemMap::iterator added = m_items.emplace(key, value).first;
    try {
        m_order.push_back(added);
    } catch (...) {
        // Keep every entry referenced exactly once, then let the failure reach the caller.
        m_items.erase(added);
        throw;
    }
}

const CzbFileDB::CStringT* CzbFileDB::find(const char* key) const {
    ItemMap::const_iterator found = m_items.find(CStringT(key));
    return found != m_items.end() ? &found->second : nullptr;
}

// ---- reading ----

void CzbFileDB::getItem(char* key, char* out, char* defaultValue) {
    const CStringT* value = find(key);
    const char* text = value != nullptr ? value->GetString() : orEmpty(defaultValue);
    std::memmove(out, text, std::strlen(text) + 1);
}

void CzbFileDB::getItem(char* key, int* out, int defaultValue) {
    const CStringT* value = find(key);
    *out = value != nullptr ? textToInt(value->GetString()) : defaultValue;
}

void CzbFileDB::getItem(char* key, long* out, long defaultValue) {
    const CStringT* value = find(key);
    *out = value != nullptr ? zbp::atol(value->GetString()) : defaultValue;
}

void CzbFileDB::getItem(char* key, float* out, float defaultValue) {
    const CStringT* value = find(key);
    *out = value != nullptr ? textToFloat(value->GetString()) : defaultValue;
}

void CzbFileDB::getItem(char* key, double* out, double defaultValue) {
    const CStringT* value = find(key);
    *out = value != nullptr ? textToDouble(value->GetString()) : defaultValue;
}

void CzbFileDB::getItem(char* key, CStringT* out, char* defaultValue) {
    const CStringT* value = find(key);
    if (value != nullptr) {
        *out = *value;
    } else {
        *out = defaultValue;
    }
}

void CzbFileDB::getItem(int index, char* name, char* out, char* defaultValue) {
    CStringT key = indexedKey(index, name);
    getItem(const_cast<char*>(key.GetString()), out, defaultValue);
}

void CzbFileDB::getItem(int index, char* name, int* out, int defaultValue) {
    CStringT key = indexedKey(index, name);
    getItem(const_cast<char*>(key.GetString()), out, defaultValue);
}

void CzbFileDB::getItem(int index, char* name, float* out, float defaultValue) {
    CStringT key = indexedKey(index, name);
    getItem(const_cast<char*>(key.GetString()), out, defaultValue);
}

void CzbFileDB::getItem(int index, char* name, double* out, double defaultValue) {
    CStringT key = indexedKey(index, name);
    getItem(const_cast<char*>(key.GetString()), out, defaultValue);
}

void CzbFileDB::getItem(int index, char* name, CStringT* out, char* defaultValue) {
    CStringT key = indexedKey(index, name);
    getItem(const_cast<char*>(key.GetString()), out, defaultValue);
}

char* CzbFileDB::getItemPoint(char* key) {
    ItemMap::iterator found = m_items.find(CStringT(key));
    return found != m_items.end() ? found->second.GetBuffer() : nullptr;
}

char* CzbFileDB::getItemPoint(int index, char* name) {
    CStringT key = indexedKey(index, name);
    return getItemPoint(const_cast<char*>(key.GetString()));
}

int CzbFileDB::getItemNum(char* name) {
    CStringT prefix = familyPrefix(name);
    int count = 0;
    for (const ItemMap::value_type& item : m_items) {
        if (inFamily(item.first, prefix)) {
            ++count;
        }
    }
    return count;
}

// ---- writing ----

void CzbFileDB::setItem(char* key, char* value) {
    addOrReplace(CStringT(key), CStringT(value));
}

void CzbFileDB::setItem(char* key, int value) {
    CStringT text;
    text.Format("%d", value);
    addOrReplace(CStringT(key), text);
}

void CzbFileDB::setItem(char* key, long value) {
    // Two's complement wrap of the low 32 bits, as a 32-bit long would hold it.
    setItem(key, static_cast<int>(static_cast<unsigned int>(static_cast<unsigned long>(value))));
}

void CzbFileDB::setItem(char* key, float value) {
    CStringT text;
    text.Format("%f", static_cast<double>(value));
    addOrReplace(CStringT(key), text);
}

void CzbFileDB::setItem(char* key, double value) {
    CStringT text;
    text.Format("%lf", value);
    addOrReplace(CStringT(key), text);
}

void CzbFileDB::setItem(int index, char* name, char* value) {
    addOrReplace(indexedKey(index, name), CStringT(value));
}

void CzbFileDB::setItem(int index, char* name, int value) {
    CStringT key = indexedKey(index, name);
    setItem(const_cast<char*>(key.GetString()), value);
}

void CzbFileDB::setItem(int index, char* name, float value) {
    CStringT key = indexedKey(index, name);
    setItem(const_cast<char*>(key.GetString()), value);
}

void CzbFileDB::setItem(int index, char* name, double value) {
    CStringT key = indexedKey(index, name);
    setItem(const_cast<char*>(key.GetString()), value);
}

// ---- removing ----

void CzbFileDB::setItemClear(char* name) {
    CStringT prefix = familyPrefix(name);
    m_order.erase(std::remove_if(m_order.begin(), m_order.end(),
                                 [&prefix](const ItemMap::iterator& entry) {
                                     return inFamily(entry->first, prefix);
                                 }),
                  m_order.end());
    for (ItemMap::iterator it = m_items.begin(); it != m_items.end();) {
        if (inFamily(it->first, prefix)) {
            it = m_items.erase(it);
        } else {
            ++it;
        }
    }
}

int CzbFileDB::deleteItem(char* key) {
    if (key == nullptr) {
        return -1;
    }
    ItemMap::iterator found = m_items.find(CStringT(key));
    if (found != m_items.end()) {
        // m_order refers to every entry exactly once.
        m_order.erase(std::find(m_order.begin(), m_order.end(), found));
        m_items.erase(found);
    }
    return 0;
}

int CzbFileDB::deleteItem(int position) {
    if (position < 0 || static_cast<size_t>(position) >= m_order.size()) {
        return -1;
    }
    ItemMap::iterator entry = m_order[static_cast<size_t>(position)];
    m_order.erase(m_order.begin() + position);
    m_items.erase(entry);
    return 0;
}

void CzbFileDB::clear() {
    m_order.clear();
    m_items.clear();
}

void CzbFileDB::setWriteEnter() {
    zbp::EnterCriticalSection(&m_lock);
}

void CzbFileDB::setWriteRelease() {
    zbp::LeaveCriticalSection(&m_lock);
}
