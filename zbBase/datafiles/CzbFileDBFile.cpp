// The item file of CzbFileDB: savefile and openfile.
#include "zbBase/datafiles/CzbFileDB.h"

#include "zbBase/datafiles/detail/zbItemText.h"
#include "zbBase/datafiles/detail/zbLineReader.h"
#include "zbBase/platform/detail/zbpAtomicFile.h"
#include "zbBase/platform/detail/zbpFileIO.h"

#include <cstdio>
#include <cstring>
#include <new>

namespace zbBase {
namespace detail {

namespace {

typedef CzbFileDB::ItemMap ItemMap;
typedef std::vector<ItemMap::iterator> ItemOrder;

void addOrReplace(ItemMap& items, ItemOrder& order, const CzbFileDB::CStringT& key,
                  const CzbFileDB::CStringT& value) {
    // One search serves both cases: the place found is the hint for a new key.
    ItemMap::iterator found = items.lower_bound(key);
    if (found != items.end() && !(key < found->first)) {
        found->second = value;
        return;
    }
    ItemMap::iterator added = items.emplace_hint(found, key, value);
    try {
        order.push_back(added);
    } catch (...) {
        items.erase(added);
        throw;
    }
}

// The lines of the source merged into items and order; memory exhaustion leaves them partly
// merged and passes on.
void mergeLines(ItemMap& items, ItemOrder& order, ByteSource& source) {
    LineReader lines(source);
    char* line = nullptr;
    size_t stored = 0;
    // The pending pair lives from line to line; before any line sets a key nothing is added.
    CzbFileDB::CStringT key;
    CzbFileDB::CStringT value;
    while (lines.next(line, stored)) {
        const size_t length = std::strlen(line);
        if (length == 0) {
            break;
        }
        // The first "=" among characters 1 to L-2.
        const char* found =
            length > 2 ? static_cast<const char*>(std::memchr(line + 1, '=', length - 2)) : nullptr;
        if (found == nullptr) {
            // No new pair: applying the pending one again would change nothing.
            continue;
        }
        const size_t equals = static_cast<size_t>(found - line);
        line[equals] = '\0';
        key = line;
        // The last quote character from the line's end down to two places behind the "=";
        // the place right behind the "=" holds the opening quote and is not looked at.
        for (size_t q = length - 1; q >= equals + 2; --q) {
            if (line[q] == '`' || line[q] == '\'') {
                line[q] = '\0';
                value = line + equals + 2;
                break;
            }
        }
        addOrReplace(items, order, key, value);
    }
}

} // namespace

bool mergeItemText(CzbFileDB& db, ByteSource& source) {
    if (db.m_items.empty()) {
        try {
            mergeLines(db.m_items, db.m_order, source);
            return true;
        } catch (const std::bad_alloc&) {
            db.m_order.clear();
            db.m_items.clear();
            return false;
        }
    }
    // Merged into a copy that takes the object's place only when it is complete.
    ItemMap items;
    ItemOrder order;
    try {
        order.reserve(db.m_order.size());
        for (const ItemMap::iterator& entry : db.m_order) {
            addOrReplace(items, order, entry->first, entry->second);
        }
        mergeLines(items, order, source);
    } catch (const std::bad_alloc&) {
        return false;
    }
    db.m_items.swap(items);
    db.m_order.swap(order);
    return true;
}

bool writeItemText(const CzbFileDB& db, ByteSink& sink) {
    for (const ItemMap::iterator& entry : db.m_order) {
        if (entry->second.GetLength() == 0) {
            continue;
        }
        // As "%s" takes them: a NUL that a host put into a text ends it.
        if (!sink.write(entry->first.GetString()) || !sink.write("=`") ||
            !sink.write(entry->second.GetString()) || !sink.write("`\n")) {
            return false;
        }
    }
    return true;
}

} // namespace detail
} // namespace zbBase

bool CzbFileDB::savefile(char* path) {
    zbp::AtomicFile file;
    if (!file.open(path, "w")) {
        return false;
    }
    zbBase::detail::FileSink sink(file.stream());
    if (!zbBase::detail::writeItemText(*this, sink)) {
        file.fail();
    }
    return file.commit();
}

bool CzbFileDB::openfile(char* path) {
    FILE* file = zbp::fopen(path, "r");
    if (file == nullptr) {
        return false;
    }
    zbBase::detail::FileSource source(file);
    bool merged = zbBase::detail::mergeItemText(*this, source);
    std::fclose(file);
    return merged;
}
