#include "datafiles/zbTempFolder.h"

#include <zbBase/datafiles/CzbFileDB.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

// Reads the given file bytes into the database.
void readInto(CzbFileDB& db, const TempFolder& folder, const std::string& bytes) {
    std::string path = folder.file("in.txt");
    writeBytes(path, bytes);
    ASSERT_TRUE(db.openfile(T(path)));
}

// The documented reading, line by line through fgets, as the reference for the reader that
// takes the file in pieces; the items as dump() gives them.
std::string referenceRead(const std::string& path) {
    std::vector<std::pair<std::string, std::string>> items;
    FILE* file = std::fopen(path.c_str(), "r");
    char line[1024];
    std::string value;
    while (std::fgets(line, sizeof line, file) != nullptr && line[0] != '\0') {
        const size_t length = std::strlen(line);
        const char* found = std::strchr(line + 1, '=');
        const size_t equals = found != nullptr ? static_cast<size_t>(found - line) : length;
        if (equals + 1 >= length) {
            continue;
        }
        for (size_t q = length - 1; q >= equals + 2; --q) {
            if (line[q] == '`' || line[q] == '\'') {
                value.assign(line + equals + 2, q - equals - 2);
                break;
            }
        }
        const std::string key(line, equals);
        auto item = std::find_if(items.begin(), items.end(),
                                 [&](const auto& known) { return known.first == key; });
        item != items.end() ? void(item->second = value) : void(items.emplace_back(key, value));
    }
    std::fclose(file);
    std::string text;
    for (const auto& item : items) {
        text += item.first + "=" + item.second + "|";
    }
    return text;
}

} // namespace

TEST(CzbFileDBFile, WorkedExampleByteForByteAndBack) {
    TempFolder folder;
    CzbFileDB db;
    db.setItem(T("title"), T("demo run"));
    db.setItem(T("speed"), 12);
    db.setItem(0, T("pos"), T("1.5"));
    db.setItem(1, T("pos"), T("2.5"));
    db.setItem(T("note"), T(""));
    db.setItem(T("speed"), 13);
    std::string path = folder.file("items.txt");
    ASSERT_TRUE(db.savefile(T(path)));
    EXPECT_EQ(readBytes(path),
              "title=`demo run`" NL "speed=`13`" NL "pos_#0=`1.5`" NL "pos_#1=`2.5`" NL);

    CzbFileDB back;
    ASSERT_TRUE(back.openfile(T(path)));
    EXPECT_EQ(dump(back), "title=demo run|speed=13|pos_#0=1.5|pos_#1=2.5|");
    EXPECT_EQ(back.getItemNum(T("pos")), 2);
    // Reopening into the same object changes nothing: the empty item simply stays.
    ASSERT_TRUE(db.openfile(T(path)));
    EXPECT_EQ(dump(db), "title=demo run|speed=13|pos_#0=1.5|pos_#1=2.5|note=|");

    db.setItemClear(T("pos"));
    ASSERT_TRUE(db.savefile(T(path)));
    EXPECT_EQ(readBytes(path), "title=`demo run`" NL "speed=`13`" NL);

    // An empty file reads as no item; files that cannot be opened or made fail.
    CzbFileDB none;
    ASSERT_TRUE(none.savefile(T(path)));
    EXPECT_EQ(readBytes(path), "");
    EXPECT_TRUE(db.openfile(T(path)));
    EXPECT_EQ(db.m_items.size(), 3u);
    EXPECT_FALSE(db.openfile(T(folder.file("missing.txt"))));
    EXPECT_EQ(db.m_items.size(), 3u);
    EXPECT_FALSE(db.savefile(T(folder.file("no\\such\\folder.txt"))));
    EXPECT_FALSE(db.savefile(T(folder.file("no/such/folder.txt"))));
}

TEST(CzbFileDBFile, ReaderQuirks) {
    TempFolder folder;
    static const char withNul[] = "no key here\n=`v`\nok=`1`\n\0late=`2`\n";
    struct Case {
        std::string bytes, items;
    };
    const Case cases[] = {
        // Any closing quote, opening quote unchecked, tail ignored, CR LF and a missing last
        // line end alike.
        {"speed='13' trailing words\na=x1`\r\nq=`it's`\neq=`x=y`\n sp =` v ` \nlast=`end`",
         "speed=13|a=1|q=it's|eq=x=y| sp = v |last=end|"},
        // A line without a closing quote gives its key the value of the line before; a line
        // without "=" sets nothing.
        {"a=`1`\nb=2\nfree text\n\nc=\nd=`\ne=``\nf=`\n", "a=1|b=1|c=1|d=1|e=|f=|"},
        // A key that stands twice: the later value at the earlier place.
        {"x=`1`\ny=`2`\nx=`3`\n", "kept=old|x=3|y=2|"},
        // First line without a key adds nothing; a NUL byte at a line's start ends reading.
        {std::string(withNul, sizeof withNul - 1), "ok=1|"},
    };
    for (const Case& c : cases) {
        CzbFileDB db;
        if (c.items.compare(0, 4, "kept") == 0) {
            db.setItem(T("kept"), T("old"));
        }
        readInto(db, folder, c.bytes);
        EXPECT_EQ(dump(db), c.items);
    }
}

TEST(CzbFileDBFile, WriterAgainstReader) {
    TempFolder folder;
    std::string path = folder.file("items.txt");
    CzbFileDB db;
    db.setItem(T("quotes"), T("a`b'c"));
    db.setItem(T("=k"), T("v"));
    db.setItem(T("k=j"), T("v"));
    db.setItem(T(""), T("lost"));
    db.setItem(T("multi"), T("one\ntwo"));
    db.setItem(T("long"), T(std::string(1016, 'x')));   // 4 + 1016 = 1020 characters
    db.setItem(T("longer"), T(std::string(1015, 'y'))); // 6 + 1015 = 1021 characters
    ASSERT_TRUE(db.savefile(T(path)));
    CzbFileDB back;
    ASSERT_TRUE(back.openfile(T(path)));
    // "k=j": the place behind the first "=" is the opening quote's and is skipped. The empty
    // key is lost. "multi=`one" has no closing quote: the value before; "two`" has no "=".
    // "longer": 1023 characters without the closing quote, then the rest as a line of its own.
    const std::string x(1016, 'x');
    EXPECT_EQ(dump(back), "quotes=a`b'c|=k=v|k==`v|multi==`v|long=" + x + "|longer=" + x + "|");
}

TEST(CzbFileDBFile, PiecewiseReadingMatchesLineByLineReading) {
    // Random lines of 0 to 3000 characters over the bytes that matter (line ends, "=", both
    // quotes, NUL, CR): lines cross the reader's pieces and the 1023-character cut everywhere.
    TempFolder folder;
    std::string path = folder.file("random.txt");
    std::mt19937 random(12);
    const char alphabet[] = {'a', 'b', 'c', '=', '`', '\'', ' ', '\r', '\n', '\0', 'k', '='};
    for (int round = 0; round < 6; ++round) {
        std::string bytes;
        while (bytes.size() < 120000) {
            const size_t length = random() % (random() % 4 == 0 ? 3000 : 40);
            for (size_t i = 0; i < length; ++i) {
                char c = alphabet[random() % sizeof alphabet];
                bytes += (c == '\0' && random() % 8 != 0) ? 'z' : c;
            }
            bytes += '\n';
        }
        writeBytes(path, bytes);
        const std::string expected = referenceRead(path);
        CzbFileDB db;
        ASSERT_TRUE(db.openfile(T(path)));
        ASSERT_TRUE(dump(db) == expected) << round;
        // A merge into a filled object gives the same values behind its own items.
        CzbFileDB filled;
        filled.setItem(T("own"), T("kept"));
        ASSERT_TRUE(filled.openfile(T(path)));
        ASSERT_TRUE(dump(filled) == "own=kept|" + expected) << round;
    }
}
