// CzbFileDB: an in-memory store of named text items, with typed accessors and a text file.
//
// Every value is text: numbers are formatted when set ("%d", "%f", "%lf") and parsed when read
// (atoi, atol, atof; text that does not parse reads 0, leading digits count). Keys are unique
// and kept in byte order; m_order remembers the order in which keys were first added, which
// is the order of saving and of deleteItem(int).
//
// Indexed items are a naming rule: index 3 of "speed" is the key "speed_#3", and the family of
// "speed" is every key that begins with "speed_#". Nothing stores a family or its length.
//
// File: one line "key=`value`" per non-empty item (see savefile and openfile). Lines are read
// through a 1024-byte buffer, so an item reads back whole when key and value together have at
// most 1020 characters.
//
// No operation takes m_lock by itself: a host that shares an object between threads brackets
// its accesses with setWriteEnter and setWriteRelease (re-entrant on the holding thread).
// Arguments are not checked, except that a null text counts as the empty text.
#pragma once

#include "zbBase/datafiles/CzbStringT.h"
#include "zbBase/numeric/zbExport.h"
#include "zbBase/platform/zbPlatformTypes.h"

#include <map>
#include <vector>

class ZB_API CzbFileDB {
public:
    typedef zbBase::CzbStringT CStringT;
    typedef std::map<CStringT, CStringT> ItemMap;

    // Starts empty; touches no file.
    CzbFileDB();
    // Own entries in the source's order and a lock of its own; no lock is taken.
    CzbFileDB(const CzbFileDB& other);
    CzbFileDB& operator=(const CzbFileDB& other);
    // Nothing is saved.
    ~CzbFileDB();

    // Reading: the value when the key is present (an empty value too), else the default.
    // The text overloads copy with the NUL into `out`, whose room the caller provides.
    void getItem(char* key, char* out, char* defaultValue);
    void getItem(char* key, int* out, int defaultValue);
    void getItem(char* key, long* out, long defaultValue);
    void getItem(char* key, float* out, float defaultValue);
    void getItem(char* key, double* out, double defaultValue);
    void getItem(char* key, CStringT* out, char* defaultValue);
    void getItem(int index, char* name, char* out, char* defaultValue);
    void getItem(int index, char* name, int* out, int defaultValue);
    void getItem(int index, char* name, float* out, float defaultValue);
    void getItem(int index, char* name, double* out, double defaultValue);
    void getItem(int index, char* name, CStringT* out, char* defaultValue);

    // The item's own characters (writable within their length), or null when absent. Valid
    // until the item changes or goes, or the object is destroyed.
    char* getItemPoint(char* key);
    char* getItemPoint(int index, char* name);
    // Number of keys that begin with name + "_#"; not the highest index plus one.
    int getItemNum(char* name);

    // Adds the key at the end of the order, or replaces the value in place.
    void setItem(char* key, char* value);
    void setItem(char* key, int value);
    // Stored with "%d" as the int overload; where long is 64 bits wide only its low 32 bits count.
    void setItem(char* key, long value);
    void setItem(char* key, float value);
    void setItem(char* key, double value);
    void setItem(int index, char* name, char* value);
    void setItem(int index, char* name, int value);
    void setItem(int index, char* name, float value);
    void setItem(int index, char* name, double value);

    // Removes the family of name; the other items keep their order.
    void setItemClear(char* name);
    // -1 for a null key, else 0 whether or not the key was present.
    int deleteItem(char* key);
    // Removes the item at `position` of the order (0 is the oldest); -1 if out of range.
    int deleteItem(int position);
    // Empties the items; the lock is untouched.
    void clear();

    void setWriteEnter();
    void setWriteRelease();

    // Writes every non-empty item, in order, as "%s=`%s`\n" in text mode, beside the file, and
    // puts it in the file's place only when every write, the flush and the close succeeded.
    // false when the file cannot be written or any of that failed; the old file then stays as
    // it was.
    bool savefile(char* path);
    // Merges the file into the items (keys it does not name stay); false when it cannot be
    // opened, or when its items do not fit in memory, and then nothing changes. Per line (at
    // most 1023 characters): the key is what stands before the first "=" among characters 1 to
    // L-2; the value runs from two places behind that "=" to the last backquote or single
    // quote of the line. A line without "=" sets nothing; a line without a closing quote gives
    // its key the value of the line before (the empty text before any). Reading stops at a line
    // that begins with a NUL byte.
    bool openfile(char* path);

    ItemMap m_items;
    std::vector<ItemMap::iterator> m_order;
    zbBase::zbCriticalSection m_lock;

private:
    void addOrReplace(const CStringT& key, const CStringT& value);
    void copyItemsFrom(const CzbFileDB& other);
    const CStringT* find(const char* key) const;
};
