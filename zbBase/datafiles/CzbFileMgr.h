// CzbFileMgr: a table of attributes (title, name, value) and its text file of sections.
//
//     [Radar]
//     range = 120.500000
//     mode = scan
//
// A host selects a title with SetTitle and then adds attributes under it or reads them. Every
// text field holds at most 127 characters and a NUL: longer texts are cut there, never
// overrun. Values are text; the typed overloads write "%d", "%f", "%lf" and read with atoi
// and atof.
//
// The reader is forgiving rather than exact: "//" ends a line anywhere, a header line must
// begin with "[" and its title is its first word cut at "]", and an attribute line is read as
// "%s = %s", so the "=" must stand apart from the name and a value is one word. A field that
// a line does not reach keeps what the line before gave it. Lines are at most 1023 characters.
//
// The class has no lock: an object belongs to one thread at a time.
#pragma once

#include "zbBase/numeric/zbExport.h"

#include <stdint.h>
#include <vector>

// One text field of 128 bytes.
struct ZB_API _Title {
    // All 128 bytes zero.
    _Title();
    // The text, cut at 127 characters, with its NUL; the bytes behind it are zero.
    _Title(char* text);
    _Title(const _Title& other) = default;
    _Title& operator=(const _Title& other) = default;
    _Title& operator=(_Title&& other) = default;

    void clear();
    // true when the field holds the same text, byte for byte.
    bool compare(char* text);

    char title[128];
};

// One attribute: its title, name and value, each a 128-byte text field.
struct ZB_API _Attribute {
    // All three fields zero.
    _Attribute();
    _Attribute(const _Attribute& other) = default;
    _Attribute& operator=(const _Attribute& other) = default;
    _Attribute& operator=(_Attribute&& other) = default;

    char title[128];
    char name[128];
    char value[128];
};

namespace zbBase {

class ZB_API CzbFileMgr {
public:
    // Empty table, position 0, current title empty (all zero).
    CzbFileMgr();
    CzbFileMgr(const CzbFileMgr& other) = default;
    CzbFileMgr& operator=(const CzbFileMgr& other) = default;
    ~CzbFileMgr() = default;

    // Makes `title` current (cut at 127 characters). The empty title sets the position to 0;
    // else the position moves to the first record of that title, and stays if there is none.
    void SetTitle(char* title);

    // Appends (current title, name, value); false without a current title.
    bool SetAttribute(char* name, char* value);
    bool SetAttribute(char* name, int value);
    bool SetAttribute(char* name, float value);
    bool SetAttribute(char* name, double value);

    // Walks from the position while records have the current title; each record of that name
    // writes its value (the last one wins), and nothing is written without one. The result
    // says how the walk ended: true at the table's end, false at a record of another title.
    // The text overload writes at most 128 bytes.
    bool GetAttribute(char* name, char* value);
    bool GetAttribute(char* name, int& value);
    bool GetAttribute(char* name, float& value);
    bool GetAttribute(char* name, double& value);

    // Empties the current title, then writes "[title]" and "name = value" lines, one section
    // per title in order of first appearance (text mode), beside the file, and puts it in the
    // file's place only when every write, the flush and the close succeeded. false for an
    // empty table (no file is touched), or when the file cannot be written or any of that
    // failed (the old file stays as it was). The table is not changed.
    bool MakeFile(char* path);
    // Empties the current title and the table, then reads the file and groups it by title (in
    // n log n time, whatever the number of titles). false when the file cannot be opened, or
    // when its records do not fit in memory (the table is then empty).
    bool OpenFile(char* path);

    char m_title[128];
    std::vector<_Attribute> m_attributes;
    int32_t m_position;

private:
    // Groups the table by title in order of first appearance; records without a title go.
    void DataSort();
    bool appendAttribute(char* name, const char* value);
    template <typename Read> bool walkAttribute(char* name, Read read);
};

} // namespace zbBase
