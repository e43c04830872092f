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

std::vector<std::string> keysInOrder(const CzbFileDB& db) {
    std::vector<std::string> keys;
    for (const auto& entry : db.m_order) {
        keys.push_back(entry->first.GetString());
    }
    return keys;
}

std::string value(CzbFileDB& db, const char* key) {
    const char* p = db.getItemPoint(const_cast<char*>(key));
    return p != nullptr ? p : "<absent>";
}

// Reads the given file bytes into a fresh database.
void readInto(CzbFileDB& db, const TempFolder& folder, const std::string& bytes) {
    std::string path = folder.file("in.txt");
    writeBytes(path, bytes);
    ASSERT_TRUE(db.openfile(T(path)));
}

// The documented reading, line by line through fgets, as the reference for the reader that
// takes the file in pieces.
std::vector<std::pair<std::string, std::string>> referenceRead(const std::string& path) {
    std::vector<std::pair<std::string, std::string>> items;
    FILE* file = std::fopen(path.c_str(), "r");
    char line[1024];
    std::string key, value;
    while (std::fgets(line, sizeof line, file) != nullptr) {
        const size_t length = std::strlen(line);
        if (length == 0) {
            break;
        }
        size_t equals = 0;
        for (size_t i = 1; i + 1 < length && equals == 0; ++i) {
            equals = line[i] == '=' ? i : 0;
        }
        if (equals == 0) {
            continue;
        }
        key.assign(line, equals);
        for (size_t q = length - 1; q >= equals + 2; --q) {
            if (line[q] == '`' || line[q] == '\'') {
                value.assign(line + equals + 2, q - equals - 2);
                break;
            }
        }
        auto found = std::find_if(items.begin(), items.end(),
                                  [&](const auto& item) { return item.first == key; });
        if (found != items.end()) {
            found->second = value;
        } else {
            items.emplace_back(key, value);
        }
    }
    std::fclose(file);
    return items;
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
    EXPECT_EQ(keysInOrder(back), (std::vector<std::string>{"title", "speed", "pos_#0", "pos_#1"}));
    EXPECT_EQ(back.getItemNum(T("pos")), 2);
    EXPECT_EQ(value(back, "title"), "demo run");

    // Reopening into the same object changes nothing: the empty item simply stays.
    ASSERT_TRUE(db.openfile(T(path)));
    EXPECT_EQ(keysInOrder(db),
              (std::vector<std::string>{"title", "speed", "pos_#0", "pos_#1", "note"}));

    db.setItemClear(T("pos"));
    ASSERT_TRUE(db.savefile(T(path)));
    EXPECT_EQ(readBytes(path), "title=`demo run`" NL "speed=`13`" NL);
}

TEST(CzbFileDBFile, EmptyFilesAndFilesThatCannotBeOpened) {
    TempFolder folder;
    CzbFileDB db;
    std::string path = folder.file("empty.txt");
    ASSERT_TRUE(db.savefile(T(path)));
    EXPECT_EQ(readBytes(path), "");
    db.setItem(T("a"), T("1"));
    EXPECT_TRUE(db.openfile(T(path)));
    EXPECT_EQ(value(db, "a"), "1");

    EXPECT_FALSE(db.openfile(T(folder.file("missing.txt"))));
    EXPECT_EQ(db.m_items.size(), 1u);
    EXPECT_FALSE(db.savefile(T(folder.file("no\\such\\folder.txt"))));
    EXPECT_FALSE(db.savefile(T(folder.file("no/such/folder.txt"))));
}

TEST(CzbFileDBFile, ReaderQuirks) {
    TempFolder folder;
    {
        // Any closing quote, opening quote unchecked, tail ignored, CR LF and a missing
        // last line end alike.
        CzbFileDB db;
        readInto(db, folder,
                 "speed='13' trailing words\n"
                 "a=x1`\r\n"
                 "q=`it's`\n"
                 "eq=`x=y`\n"
                 " sp =` v ` \n"
                 "last=`end`");
        EXPECT_EQ(value(db, "speed"), "13");
        EXPECT_EQ(value(db, "a"), "1");
        EXPECT_EQ(value(db, "q"), "it's");
        EXPECT_EQ(value(db, "eq"), "x=y");
        EXPECT_EQ(value(db, " sp "), " v ");
        EXPECT_EQ(value(db, "last"), "end");
    }
    {
        // A line without a closing quote gives its key the value of the line before; a line
        // without "=" sets nothing.
        CzbFileDB db;
        readInto(db, folder,
                 "a=`1`\n"
                 "b=2\n"
                 "free text\n"
                 "\n"
                 "c=\n"
                 "d=`\n"
                 "e=``\n"
                 "f=`\n");
        EXPECT_EQ(value(db, "a"), "1");
        EXPECT_EQ(value(db, "b"), "1");
        EXPECT_EQ(value(db, "c"), "1");
        EXPECT_EQ(value(db, "d"), "1");
        EXPECT_EQ(value(db, "e"), "");
        EXPECT_EQ(value(db, "f"), "");
        EXPECT_EQ(db.m_items.size(), 6u);
    }
    {
        // A key that stands twice: the later value at the earlier place.
        CzbFileDB db;
        db.setItem(T("kept"), T("old"));
        readInto(db, folder, "x=`1`\ny=`2`\nx=`3`\n");
        EXPECT_EQ(keysInOrder(db), (std::vector<std::string>{"kept", "x", "y"}));
        EXPECT_EQ(value(db, "x"), "3");
        EXPECT_EQ(value(db, "kept"), "old");
    }
    {
        // First line without a key adds nothing; a NUL byte at a line's start ends reading.
        CzbFileDB db;
        static const char bytes[] = "no key here\n=`v`\nok=`1`\n\0late=`2`\n";
        readInto(db, folder, std::string(bytes, sizeof bytes - 1));
        EXPECT_EQ(keysInOrder(db), (std::vector<std::string>{"ok"}));
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
    EXPECT_EQ(value(back, "quotes"), "a`b'c");
    EXPECT_EQ(value(back, "=k"), "v");
    // The place behind the "=" is the opening quote's and is skipped.
    EXPECT_EQ(value(back, "k"), "=`v");
    EXPECT_EQ(value(back, ""), "<absent>");
    // "multi=`one" has no closing quote: it takes the value before; "two`" has no "=".
    EXPECT_EQ(value(back, "multi"), "=`v");
    EXPECT_EQ(value(back, "long"), std::string(1016, 'x'));
    // 1023 characters without the closing quote, then the rest as a line of its own.
    EXPECT_EQ(value(back, "longer"), std::string(1016, 'x'));
    EXPECT_EQ(back.m_items.size(), 6u);
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
        CzbFileDB db;
        ASSERT_TRUE(db.openfile(T(path)));
        auto expected = referenceRead(path);
        ASSERT_EQ(db.m_order.size(), expected.size());
        for (size_t i = 0; i < expected.size(); ++i) {
            ASSERT_EQ(db.m_order[i]->first.GetString(), expected[i].first) << i;
            ASSERT_EQ(db.m_order[i]->second.GetString(), expected[i].second) << i;
        }
        // A merge into a filled object gives the same values behind its own items.
        CzbFileDB filled;
        filled.setItem(T("own"), T("kept"));
        ASSERT_TRUE(filled.openfile(T(path)));
        ASSERT_EQ(filled.m_order.size(), expected.size() + 1);
        EXPECT_EQ(keysInOrder(filled).front(), "own");
        EXPECT_EQ(value(filled, "own"), "kept");
    }
}
