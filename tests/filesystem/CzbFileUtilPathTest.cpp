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
        // Results point into the argument ("a" gives the whole text), an empty one at its end.
        for (char* result : {ext, name, last}) {
            EXPECT_TRUE(result >= begin && result <= end && (*result != '\0' || result == end));
        }
        char folder[64];
        std::memset(folder, 'z', sizeof folder);
        CzbFileUtil::getPath(folder, sizeof folder, begin);
        EXPECT_STREQ(folder, row.folder);
        EXPECT_EQ(folder[sizeof folder - 1], '\0'); // the whole buffer was cleared
    }
}

TEST(CzbFileUtilPath, LastPathIntoABuffer) {
    // The component's index and the buffer's text (null: open); -1 where no separator stands
    // left of it, and for a component larger than the buffer, which is not cut.
    const struct {
        const char* path;
        int index;
        const char* copied;
    } rows[] = {{"D:\\a\\b\\", 5, "b"},
                {"x/y/name", 4, "name"},
                {"D:\\a_component_longer_than_16", -1, ""},
                {"single", -1, nullptr},
                {"", -1, nullptr},
                {"\\\\", -1, nullptr},
                {"D:\\", -1, nullptr}};
    char buffer[16];
    for (const auto& row : rows) {
        std::vector<char> path(row.path, row.path + std::strlen(row.path) + 1);
        std::memset(buffer, 'z', sizeof buffer);
        EXPECT_EQ(CzbFileUtil::getLastPath(buffer, sizeof buffer, path.data()), row.index)
            << row.path;
        EXPECT_EQ(buffer[sizeof buffer - 1], '\0') << row.path;
        EXPECT_STREQ(row.copied ? buffer : nullptr, row.copied) << row.path;
    }
    char closing[] = "D:\\a\\b\\", drive[] = "D:\\", longName[] = "D:\\a_component_longer_than_16";
    EXPECT_STREQ(CzbFileUtil::getLastPath(closing), "b\\");
    EXPECT_STREQ(CzbFileUtil::getLastPath(drive), "");
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
    // getLastPath gives -1; the buffer after it and getPath: cleared for a null path, left alone
    // for no buffer or a size below 1.
    char path[] = "D:\\dir\\name.txt";
    char buffer[16];
    const struct {
        char* buffer;
        int size;
        char* path;
        char fill;
    } rows[] = {{buffer, 16, nullptr, '\0'},
                {nullptr, 16, path, 'z'},
                {buffer, 0, path, 'z'},
                {buffer, -5, path, 'z'}};
    for (const auto& row : rows) {
        std::memset(buffer, 'z', sizeof buffer);
        EXPECT_EQ(CzbFileUtil::getLastPath(row.buffer, row.size, row.path), -1);
        CzbFileUtil::getPath(row.buffer, row.size, row.path);
        EXPECT_EQ(std::string(buffer, sizeof buffer), std::string(sizeof buffer, row.fill));
    }
    EXPECT_STREQ(path, "D:\\dir\\name.txt"); // never changed
}
