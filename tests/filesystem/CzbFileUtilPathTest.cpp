#include <zbBase/filesystem/CzbFileUtil.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

struct Row {
    const char* path;
    const char* ext;
    const char* name;
    const char* last;
    const char* folder;
};

std::string normalised(const std::string& text) {
    std::vector<char> buffer(text.begin(), text.end());
    buffer.push_back('\0');
    CzbFileUtil::changeAbsolutePath(buffer.data());
    return buffer.data();
}

int network(const std::string& text) {
    std::vector<char> buffer(text.begin(), text.end());
    buffer.push_back('\0');
    return CzbFileUtil::isNetworkPath(buffer.data());
}

} // namespace

TEST(CzbFileUtilPath, ResultsAtAGlance) {
    const Row rows[] = {
        {"D:\\d\\a.txt", "txt", "a.txt", "a.txt", "D:\\d\\"},
        {"D:\\d\\a.tar.gz", "gz", "a.tar.gz", "a.tar.gz", "D:\\d\\"},
        {"D:\\d\\a", "", "a", "a", "D:\\d\\a"},
        {"D:\\d\\", "", "", "d\\", "D:\\d\\"},
        {"D:\\d.x\\a", "", "a", "a", "D:\\d.x\\a"},
        {"a.txt", "txt", "a.txt", "", ""},
        {"a", "a", "", "", "a"},
        {"a.", "", "a.", "", ""},
        {"\\\\host\\share\\a.txt", "txt", "a.txt", "a.txt", "\\\\host\\share\\"},
        {"\\\\host\\share", "", "share", "share", "\\\\host\\share"},
        {"", "", "", "", ""},
        // The forward slash separates as well.
        {"D:/d/a.txt", "txt", "a.txt", "a.txt", "D:/d/"},
        {"D:/d/", "", "", "d/", "D:/d/"},
        {".profile", "profile", ".profile", "", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        std::vector<char> path(row.path, row.path + std::strlen(row.path) + 1);
        char* begin = path.data();
        char* end = begin + std::strlen(begin);

        char* ext = CzbFileUtil::getFileExt(begin);
        char* name = CzbFileUtil::getFileName(begin);
        char* last = CzbFileUtil::getLastPath(begin);
        EXPECT_STREQ(ext, row.ext);
        EXPECT_STREQ(name, row.name);
        EXPECT_STREQ(last, row.last);
        // Results point into the argument, an empty one at its terminator.
        for (char* result : {ext, name, last}) {
            EXPECT_GE(result, begin);
            EXPECT_LE(result, end);
            if (*result == '\0') {
                EXPECT_EQ(result, end);
            }
        }
        char folder[64];
        std::memset(folder, 'z', sizeof folder);
        CzbFileUtil::getPath(folder, sizeof folder, begin);
        EXPECT_STREQ(folder, row.folder);
        EXPECT_EQ(folder[sizeof folder - 1], '\0'); // the whole buffer was cleared
    }
    // The whole text, not a copy of it.
    char whole[] = "a";
    EXPECT_EQ(CzbFileUtil::getFileExt(whole), whole);
}

TEST(CzbFileUtilPath, LastPathIntoABuffer) {
    char buffer[16];
    char closing[] = "D:\\a\\b\\";
    EXPECT_EQ(CzbFileUtil::getLastPath(buffer, sizeof buffer, closing), 5);
    EXPECT_STREQ(buffer, "b");
    EXPECT_STREQ(CzbFileUtil::getLastPath(closing), "b\\");

    char plain[] = "x/y/name";
    EXPECT_EQ(CzbFileUtil::getLastPath(buffer, sizeof buffer, plain), 4);
    EXPECT_STREQ(buffer, "name");

    char drive[] = "D:\\";
    EXPECT_STREQ(CzbFileUtil::getLastPath(drive), "");
    for (const char* text : {"single", "", "\\\\", "D:\\"}) {
        SCOPED_TRACE(text);
        std::vector<char> path(text, text + std::strlen(text) + 1);
        std::memset(buffer, 'z', sizeof buffer);
        EXPECT_EQ(CzbFileUtil::getLastPath(buffer, sizeof buffer, path.data()), -1);
        EXPECT_EQ(buffer[sizeof buffer - 1], '\0');
    }
    // A component larger than the buffer is not cut: nothing is copied.
    char longName[] = "D:\\a_component_longer_than_sixteen";
    std::memset(buffer, 'z', sizeof buffer);
    EXPECT_EQ(CzbFileUtil::getLastPath(buffer, sizeof buffer, longName), -1);
    EXPECT_STREQ(buffer, "");
    std::memset(buffer, 'z', sizeof buffer);
    CzbFileUtil::getPath(buffer, sizeof buffer, longName);
    EXPECT_STREQ(buffer, "");
}

TEST(CzbFileUtilPath, NetworkPathCountsSeparatorsAndDots) {
    EXPECT_EQ(network("\\\\192.168.0.10\\share"), 15);
    EXPECT_EQ(network("\\\\192.168.0.10\\share\\a.txt"), 15);
    EXPECT_EQ(network("\\one\\1.2.3.4"), -1);         // one leading backslash
    EXPECT_EQ(network("\\\\host\\share\\a.txt"), -1); // a host by name
    EXPECT_EQ(network("\\\\1.2.3.4.5\\share"), -1);   // four dots in the host
    EXPECT_EQ(network("D:\\a.b.c.d"), 9);             // the counters alone decide
    EXPECT_EQ(network("//10.0.0.1/s"), 11);
    EXPECT_EQ(network("\\\\"), -1);
    EXPECT_EQ(network("ab"), -1);
    EXPECT_EQ(network(""), -1);
}

TEST(CzbFileUtilPath, ChangeAbsolutePathTable) {
    const char* table[][2] = {
        {"D:/a/b", "D:\\a\\b"},
        {"D:\\a\\..\\b", "D:\\b"},
        {"D:\\a\\.\\b\\", "D:\\a\\b\\"},
        {"D:\\a\\\\\\\\b", "D:\\a\\b"},
        {"D:\\..\\a", "D:\\a"},
        {"D:\\..", "D:"},
        {"a\\..\\b", "a\\b"},
        {"..\\a", "a"},
        {"\\a\\..\\b", "\\b"},
        {"", ""},
        {".", ""},
        {"..", ""},
        {"\\", "\\"},
        {"\\\\host\\s", "\\host\\s"},
        {"a\\...\\b", "a\\...\\b"},
        {"/x//y/./z/../", "\\x\\y\\"},
        {"a\\..", "a"},           // no backslash before a: nothing to take off
        {"x\\.a\\..\\b", "x\\b"}, // a dot name is a name
        {"x\\.a", "x\\.a"},
        {"\\.", ""},
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row[0]);
        EXPECT_EQ(normalised(row[0]), row[1]);
    }
    // 511 characters are worked on; longer text is left as it stands.
    std::string fits = "a/" + std::string(509, 'b');
    EXPECT_EQ(normalised(fits), "a\\" + std::string(509, 'b'));
    std::string over = "a/" + std::string(510, 'b');
    EXPECT_EQ(normalised(over), over);
}

TEST(CzbFileUtilPath, NullAndTooSmallArguments) {
    EXPECT_EQ(CzbFileUtil::getFileExt(nullptr), nullptr);
    EXPECT_EQ(CzbFileUtil::getFileName(nullptr), nullptr);
    EXPECT_EQ(CzbFileUtil::getLastPath(nullptr), nullptr);
    EXPECT_EQ(CzbFileUtil::isNetworkPath(nullptr), -1);
    CzbFileUtil::changeAbsolutePath(nullptr);

    char path[] = "D:\\dir\\name.txt";
    char buffer[16];
    std::memset(buffer, 'z', sizeof buffer);
    EXPECT_EQ(CzbFileUtil::getLastPath(buffer, sizeof buffer, nullptr), -1);
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_EQ(CzbFileUtil::getLastPath(nullptr, 16, path), -1);
    std::memset(buffer, 'z', sizeof buffer);
    EXPECT_EQ(CzbFileUtil::getLastPath(buffer, 0, path), -1);
    EXPECT_EQ(CzbFileUtil::getLastPath(buffer, -5, path), -1);
    EXPECT_EQ(buffer[0], 'z'); // a size below 1 gives no room to write into
    CzbFileUtil::getPath(nullptr, 16, path);
    CzbFileUtil::getPath(buffer, 0, path);
    CzbFileUtil::getPath(buffer, -1, path);
    EXPECT_EQ(buffer[0], 'z');
    CzbFileUtil::getPath(buffer, sizeof buffer, nullptr);
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_EQ(buffer[sizeof buffer - 1], '\0');
    EXPECT_STREQ(path, "D:\\dir\\name.txt"); // never changed
}
