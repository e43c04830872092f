// The item file reader of CzbFileDB on arbitrary bytes, read from memory through the parser
// behind openfile, then the writer behind savefile and a second read of what it wrote: the
// second read must give back every non-empty item, in order, with its value.
#include <zbBase/datafiles/CzbFileDB.h>
#include <zbBase/datafiles/detail/zbItemText.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

using namespace zbBase::detail;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CzbFileDB db;
    db.setItem(const_cast<char*>("pre"), 1);
    MemorySource source(data, size);
    if (!mergeItemText(db, source)) {
        __builtin_trap();
    }
    db.getItemNum(const_cast<char*>("pos"));

    StringSink sink;
    if (!writeItemText(db, sink)) {
        __builtin_trap();
    }
    CzbFileDB back;
    MemorySource saved(sink.bytes().data(), sink.bytes().size());
    if (!mergeItemText(back, saved)) {
        __builtin_trap();
    }
    size_t next = 0;
    for (const CzbFileDB::ItemMap::iterator& entry : db.m_order) {
        if (entry->second.GetLength() == 0) {
            continue;
        }
        if (next >= back.m_order.size() ||
            std::strcmp(back.m_order[next]->first, entry->first) != 0 ||
            std::strcmp(back.m_order[next]->second, entry->second) != 0) {
            __builtin_trap();
        }
        ++next;
    }
    if (next != back.m_order.size()) {
        __builtin_trap();
    }
    return 0;
}
