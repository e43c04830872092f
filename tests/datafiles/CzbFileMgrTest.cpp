#include "datafiles/zbTempFolder.h"

#include <zbBase/datafiles/CzbFileMgr.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

using zbBase::CzbFileMgr;

namespace {

std::string text(CzbFileMgr& mgr, const char* name, const char* preset = "<none>") {
    char value[200];
    std::strcpy(value, preset);
    mgr.GetAttribute(const_cast<char*>(name), value);
    return value;
}

// The table as "title:name=value " per record.
std::string dump(const CzbFileMgr& mgr) {
    std::string text;
    for (const _Attribute& r : mgr.m_attributes) {
        text += std::string(r.title) + ":" + r.name + "=" + r.value + " ";
    }
    return text;
}

void openBytes(CzbFileMgr& mgr, const TempFolder& folder, const std::string& bytes) {
    std::string path = folder.file("in.ini");
    writeBytes(path, bytes);
    ASSERT_TRUE(mgr.OpenFile(T(path)));
}

} // namespace

TEST(CzbFileMgr, RecordsAndInitialState) {
    _Attribute a;
    EXPECT_EQ(std::string(reinterpret_cast<char*>(&a), sizeof a), std::string(384, '\0'));
    _Title t(T("Radar"));
    EXPECT_TRUE(t.compare(T("Radar")));
    EXPECT_FALSE(t.compare(T("radar")));
    EXPECT_FALSE(t.compare(T("Radar ")));
    t.clear();
    EXPECT_TRUE(t.compare(T("")));
    _Title cut(T(std::string(300, 'c')));
    EXPECT_EQ(std::strlen(cut.title), 127u);
    EXPECT_TRUE(cut.compare(T(std::string(300, 'c'))));
    static_assert(sizeof(_Title) == 128 && sizeof(_Attribute) == 384, "record widths");
}

TEST(CzbFileMgr, WorkedExampleByteForByte) {
    TempFolder folder;
    CzbFileMgr mgr;
    mgr.SetTitle(T("Radar"));
    EXPECT_TRUE(mgr.SetAttribute(T("range"), 120.5f));
    EXPECT_TRUE(mgr.SetAttribute(T("mode"), T("scan")));
    mgr.SetTitle(T("Track"));
    EXPECT_TRUE(mgr.SetAttribute(T("count"), 3));
    std::string path = folder.file("radar.ini");
    ASSERT_TRUE(mgr.MakeFile(T(path)));
    EXPECT_EQ(readBytes(path),
              "[Radar]" NL "range = 120.500000" NL "mode = scan" NL "[Track]" NL "count = 3" NL);
    // MakeFile leaves no title.
    EXPECT_FALSE(mgr.SetAttribute(T("x"), 1.0));

    CzbFileMgr back;
    ASSERT_TRUE(back.OpenFile(T(path)));
    EXPECT_FALSE(back.SetAttribute(T("x"), T("y")));
    back.SetTitle(T("Radar"));
    float range = 0;
    EXPECT_FALSE(back.GetAttribute(T("range"), range)); // another title follows
    EXPECT_EQ(range, 120.5f);
    back.SetTitle(T("Track"));
    int count = 0;
    double asDouble = 0;
    EXPECT_TRUE(back.GetAttribute(T("count"), count));
    EXPECT_TRUE(back.GetAttribute(T("count"), asDouble));
    EXPECT_EQ(count, 3);
    EXPECT_EQ(asDouble, 3.0);
}

TEST(CzbFileMgr, GetAttributeResultTable) {
    CzbFileMgr mgr;
    int untouched = 7;
    EXPECT_TRUE(mgr.GetAttribute(T("a"), untouched)); // empty table
    EXPECT_EQ(untouched, 7);
    mgr.SetTitle(T("A"));
    mgr.SetAttribute(T("a"), T("1"));
    mgr.SetAttribute(T("a"), T("2"));
    mgr.SetTitle(T("B"));
    mgr.SetAttribute(T("b"), T("3"));
    mgr.SetTitle(T("A")); // position 0
    EXPECT_EQ(mgr.m_position, 0);
    EXPECT_EQ(text(mgr, "a"), "2"); // last of the name wins
    char value[8] = "keep";
    EXPECT_FALSE(mgr.GetAttribute(T("a"), value));
    EXPECT_FALSE(mgr.GetAttribute(T("zz"), value));
    EXPECT_STREQ(value, "2");
    mgr.SetTitle(T("B"));
    EXPECT_EQ(mgr.m_position, 2);
    EXPECT_TRUE(mgr.GetAttribute(T("b"), value));
    EXPECT_STREQ(value, "3");
    std::strcpy(value, "keep");
    EXPECT_TRUE(mgr.GetAttribute(T("zz"), value));
    EXPECT_STREQ(value, "keep");
    // A title without records leaves the position, whose record has another title.
    mgr.SetTitle(T("C"));
    EXPECT_EQ(mgr.m_position, 2);
    EXPECT_FALSE(mgr.GetAttribute(T("b"), value));
    EXPECT_STREQ(value, "keep");
    mgr.SetTitle(T(""));
    EXPECT_EQ(mgr.m_position, 0);
    mgr.m_position = 3;
    mgr.SetTitle(T("B"));
    mgr.m_position = 3;
    EXPECT_TRUE(mgr.GetAttribute(T("b"), value)); // at the end
    EXPECT_STREQ(value, "keep");
}

TEST(CzbFileMgr, MakeFileGroupsTitlesAndFailsWithoutRecords) {
    TempFolder folder;
    std::string path = folder.file("out.ini");
    writeBytes(path, "precious");
    CzbFileMgr mgr;
    EXPECT_FALSE(mgr.MakeFile(T(path)));
    EXPECT_EQ(readBytes(path), "precious");

    mgr.SetTitle(T("A"));
    mgr.SetAttribute(T("x"), 1);
    mgr.SetTitle(T("B"));
    mgr.SetAttribute(T("y"), 2);
    mgr.SetTitle(T("A"));
    mgr.SetAttribute(T("z"), 3);
    EXPECT_FALSE(mgr.MakeFile(T(folder.file("no/such/dir.ini"))));
    EXPECT_EQ(mgr.m_title[0], 0);
    ASSERT_TRUE(mgr.MakeFile(T(path)));
    EXPECT_EQ(readBytes(path), "[A]" NL "x = 1" NL "z = 3" NL "[B]" NL "y = 2" NL);
    EXPECT_STREQ(mgr.m_attributes[1].title, "B"); // the table itself is not regrouped

    // A record whose title a host emptied is in no section; a null text is the empty text.
    CzbFileMgr edited(mgr);
    edited.m_attributes[1].title[0] = '\0';
    edited.SetTitle(T("A"));
    EXPECT_TRUE(edited.SetAttribute(nullptr, T("no name")));
    EXPECT_TRUE(edited.SetAttribute(T("no value"), static_cast<char*>(nullptr)));
    edited.SetTitle(nullptr);
    EXPECT_FALSE(edited.SetAttribute(T("no title"), 4));
    std::string other = folder.file("edited.ini");
    ASSERT_TRUE(edited.MakeFile(T(other)));
    EXPECT_EQ(readBytes(other), "[A]" NL "x = 1" NL "z = 3" NL " = no name" NL "no value = " NL);
    // A position that a host set below 0 starts no walk.
    edited.SetTitle(T("A"));
    edited.m_position = -1;
    char value[8] = "kept";
    EXPECT_TRUE(edited.GetAttribute(T("x"), value));
    EXPECT_STREQ(value, "kept");

    // Through the file the later run of A becomes reachable.
    ASSERT_TRUE(mgr.OpenFile(T(path)));
    mgr.SetTitle(T("A"));
    EXPECT_EQ(text(mgr, "z"), "3");
    EXPECT_FALSE(mgr.OpenFile(T(folder.file("missing.ini"))));
    EXPECT_TRUE(mgr.m_attributes.empty());
}

TEST(CzbFileMgr, ReaderTakesWhatTheScanPatternsTake) {
    TempFolder folder;
    CzbFileMgr mgr;
    openBytes(mgr, folder, "");
    EXPECT_EQ(dump(mgr), "");
    openBytes(mgr, folder, "a = 1\nb = 2\n");
    EXPECT_EQ(dump(mgr), ""); // no header: no title, dropped
    // A line without a value repeats the value before it under its own name; the blank line
    // repeats the record before it; "[" alone is no header.
    openBytes(mgr, folder,
              "[ One ]\r\na = 1\r\n  b =2 // comment\r\nc= 3\r\nd=4\r\ne = two words\r\n"
              "url = http://x\r\n\r\n[My Radar]\n[\nf = 5\n");
    EXPECT_EQ(dump(mgr), "One:a=1 One:b=2 One:c==2 One:d=4=2 One:e=two One:url=http: "
                         "One:url=http: My:f=5 ");
    mgr.SetTitle(T("One"));
    EXPECT_EQ(text(mgr, "e"), "two");

    // A blank line right behind the first header adds a record with empty name and value;
    // behind a later header it carries the line before into the new title.
    openBytes(mgr, folder, "[A]\n\nx = 1\n[B]\n\n[]\n");
    EXPECT_EQ(dump(mgr), "A:= A:x=1 B:x=1 ");
}

TEST(CzbFileMgr, LongTextsAreCutAt127Characters) {
    TempFolder folder;
    CzbFileMgr mgr;
    std::string longTitle(200, 't'), longName(200, 'n'), longValue(300, 'v');
    mgr.SetTitle(T(longTitle));
    EXPECT_EQ(std::strlen(mgr.m_title), 127u);
    ASSERT_TRUE(mgr.SetAttribute(T(longName), T(longValue)));
    ASSERT_TRUE(mgr.SetAttribute(T("big"), 1e300));
    EXPECT_EQ(std::strlen(mgr.m_attributes[0].name), 127u);
    EXPECT_EQ(std::strlen(mgr.m_attributes[0].value), 127u);
    EXPECT_EQ(std::strlen(mgr.m_attributes[1].value), 127u);

    char out[140];
    std::memset(out, '#', sizeof out);
    mgr.SetTitle(T(longTitle));
    EXPECT_TRUE(mgr.GetAttribute(T(longName), out));
    EXPECT_EQ(std::strlen(out), 127u);
    EXPECT_EQ(out[128], '#');

    std::string path = folder.file("long.ini");
    ASSERT_TRUE(mgr.MakeFile(T(path)));
    ASSERT_TRUE(mgr.OpenFile(T(path)));
    mgr.SetTitle(T(longTitle));
    EXPECT_EQ(text(mgr, longName.c_str()), std::string(127, 'v'));

    // Over-long words in a file are cut too, and the scan goes on behind them.
    openBytes(mgr, folder, "[" + longTitle + "]\n" + longName + " = " + longValue + "\n");
    ASSERT_EQ(mgr.m_attributes.size(), 1u);
    EXPECT_EQ(std::string(mgr.m_attributes[0].title), std::string(127, 't'));
    EXPECT_EQ(std::string(mgr.m_attributes[0].value), std::string(127, 'v'));
}

TEST(CzbFileMgr, GroupingKeepsFirstAppearanceAndRecordOrder) {
    TempFolder folder;
    CzbFileMgr mgr;
    // A title counts from its first record, not its first header: "[Empty]" has none, "[C]"
    // gets its first record after B. Lines before any header and "[]" sections have no title.
    openBytes(mgr, folder,
              "lost = 0\n[A]\na1 = 1\n[Empty]\n[B]\nb1 = 2\n[A]\na2 = 3\na1 = 4\n[]\ngone = 5\n"
              "[C]\n[B]\nb2 = 6\n[C]\nc1 = 7\n[A]\na3 = 8\n");
    EXPECT_EQ(dump(mgr), "A:a1=1 A:a2=3 A:a1=4 A:a3=8 B:b1=2 B:b2=6 C:c1=7 ");
    mgr.SetTitle(T("A"));
    EXPECT_EQ(text(mgr, "a1"), "4"); // the later of two
    EXPECT_EQ(mgr.m_position, 0);
    mgr.SetTitle(T("C"));
    EXPECT_EQ(mgr.m_position, 6);

    // Against the grouping spelled out (title list, then one pass per title) on a large table
    // of many titles, repeated and interleaved.
    std::mt19937 random(7);
    std::string bytes;
    std::vector<std::pair<std::string, std::string>> records; // title, name in file order
    std::string title;
    for (int i = 0; i < 20000; ++i) {
        if (random() % 3 == 0) {
            title = random() % 50 == 0 ? "" : "t" + std::to_string(random() % 700);
            bytes += "[" + title + "]\n";
        } else {
            std::string name = "n" + std::to_string(i);
            bytes += name + " = v\n";
            records.emplace_back(title, name);
        }
    }
    std::vector<std::string> list; // titles in the order of their first record
    std::string expected;
    for (const auto& record : records) {
        if (!record.first.empty() &&
            std::find(list.begin(), list.end(), record.first) == list.end()) {
            list.push_back(record.first);
            for (const auto& member : records) {
                expected +=
                    member.first == record.first ? member.first + ":" + member.second + "=v " : "";
            }
        }
    }
    openBytes(mgr, folder, bytes);
    EXPECT_TRUE(dump(mgr) == expected);
}
