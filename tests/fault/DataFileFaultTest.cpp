// The data file classes under faults: a full disk never costs the previous good file, a write
// that fails is reported, and hostile files cost memory in proportion to what they hold.
#include <zbBase/datafiles/CzbFileDB.h>
#include <zbBase/datafiles/CzbFileMgr.h>
#include <zbBase/datafiles/CzbFileMgrAdv.h>
#include <zbBase/datafiles/CzbFileMgrB.h>

#include "support/zbDescriptorLimit.h"
#include "support/zbFaults.h"
#include "support/zbMemoryLimit.h"
#include "support/zbTestFiles.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#if !defined(_WIN32)

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
using zbtest::Text;

namespace {

const int kLines = 20000;

size_t entries(const fs::path& folder) {
    return static_cast<size_t>(std::distance(fs::directory_iterator(folder), {}));
}

// The items, sections or records of the writers: 20000 lines (or records) whose bytes change
// with `variant`, so that old and new files differ.
void fillDatabase(CzbFileDB& db, int variant) {
    char key[32], value[32];
    for (int i = 0; i < kLines; ++i) {
        std::snprintf(key, sizeof key, "key%05d", i);
        std::snprintf(value, sizeof value, "v%d_%05d", variant, i);
        db.setItem(key, value);
    }
}

void fillSections(zbBase::CzbFileMgr& mgr, int variant) {
    char name[32];
    for (int i = 0; i < kLines - 1; ++i) {
        std::snprintf(name, sizeof name, "n%05d", i);
        mgr.SetAttribute(name, variant * 100000 + i);
    }
}

// A list of 600 blocks of 0 to 39 bytes: its size table is longer than a stream's buffer.
void fillBlocks(zbBase::CzbFileMgrAdv& list, std::vector<std::string>& blocks) {
    for (int i = 0; i < 600; ++i) {
        blocks.push_back(std::string(static_cast<size_t>(i % 40), static_cast<char>('a' + i % 26)));
    }
    for (std::string& block : blocks) {
        list.addDataSize(block.empty() ? nullptr : &block[0], block.size());
    }
}

// The four whole-file writers; each gives its result (true for CzbFileMgrB, which has none).
struct Writers {
    std::string blockData[2] = {std::string(kLines * 16, 'a'), std::string(kLines * 16, 'b')};

    bool write(const std::string& path, int kind, int variant) {
        if (kind == 0) {
            CzbFileDB db;
            fillDatabase(db, variant);
            return db.savefile(Text(path));
        }
        if (kind == 1) {
            zbBase::CzbFileMgr mgr;
            mgr.SetTitle(Text("T"));
            fillSections(mgr, variant);
            return mgr.MakeFile(Text(path));
        }
        if (kind == 2) {
            zbBase::CzbFileMgrB mgr;
            mgr.SetDataSize(16, 16);
            char block[16];
            std::memset(block, 'a' + variant, sizeof block);
            mgr.SetHead(block);
            for (int i = 0; i < kLines; ++i) {
                std::memcpy(block, &i, sizeof i);
                mgr.AddBody(block);
            }
            mgr.MakeFile(Text(path));
            return true;
        }
        zbBase::CzbFileMgrAdv mgr;
        mgr.addDataSize(&blockData[variant][0], blockData[variant].size());
        mgr.addDataSize(nullptr, 0);
        return mgr.writeFile(Text(path), 1.5f);
    }
};

// Writes file0..file3 in the folder, one per writer; returns their bytes.
std::vector<std::string> writeEach(Writers& writers, const zbtest::TempFolder& dir) {
    std::vector<std::string> old;
    for (int kind = 0; kind < 4; ++kind) {
        const std::string path = dir.file("file" + std::to_string(kind));
        EXPECT_TRUE(writers.write(path, kind, 0));
        old.push_back(zbtest::readBytes(path));
    }
    return old;
}

void expectUnchanged(const zbtest::TempFolder& dir, const std::vector<std::string>& old) {
    for (int kind = 0; kind < 4; ++kind) {
        EXPECT_TRUE(zbtest::readBytes(dir.file("file" + std::to_string(kind))) == old[kind]);
    }
    EXPECT_EQ(entries(dir.path()), 4u);
}

const char* const kKinds[] = {"savefile", "CzbFileMgr::MakeFile", "CzbFileMgrB::MakeFile",
                              "writeFile"};

} // namespace

TEST(DataFileFault, WholeFileWritersKeepTheOldFileOnAFullDisk) {
    Writers writers;
    // Each writer replaces its file of some 330 KB on a disk that stops it: a file size limit,
    // then a tmpfs with room for one such file, not for two.
    for (bool tmpfs : {false, true}) {
        for (int kind = 0; kind < 4; ++kind) {
            SCOPED_TRACE(std::string(kKinds[kind]) + (tmpfs ? " on a small tmpfs" : ""));
            zbtest::TempFolder folder;
            std::optional<zbtest::SmallTmpfs> disk;
            if (tmpfs && !disk.emplace(512 * 1024).ok()) {
                GTEST_SKIP() << disk->why();
            }
            const fs::path where = tmpfs ? fs::path(disk->path()) : folder.path();
            const std::string path = (where / "data").string();
            ASSERT_TRUE(writers.write(path, kind, 0));
            const std::string old = zbtest::readBytes(path);
            if (kind < 2) {
                EXPECT_EQ(zbtest::readLines(path).size(), static_cast<size_t>(kLines));
            }
            {
                std::optional<zbtest::FileSizeLimit> limit;
                if (!tmpfs) {
                    limit.emplace(64 * 1024);
                }
                EXPECT_EQ(writers.write(path, kind, 1), kind == 2);
            }
            EXPECT_TRUE(zbtest::readBytes(path) == old);
            EXPECT_EQ(entries(where), 1u); // no new file left beside the old one
        }
    }
    // A device is written in place: /dev/full takes no byte, and that is reported.
    for (int kind = 0; kind < 4; ++kind) {
        EXPECT_EQ(writers.write("/dev/full", kind, 1), kind == 2) << kKinds[kind];
    }
}

TEST(DataFileFault, AFullDeviceFailsEveryWriterWhicheverWriteMeetsIt) {
    // The stream's buffer fills at 4096 bytes; the first write past that point fails. A first
    // text of every length moves that point over every write of a line.
    for (size_t pad = 1; pad <= 20; ++pad) {
        CzbFileDB db;
        zbBase::CzbFileMgr mgr;
        db.setItem(Text("first"), Text(std::string(pad, 'p')));
        mgr.SetTitle(Text("First"));
        mgr.SetAttribute(Text("first"), Text(std::string(pad, 'p')));
        fillDatabase(db, 0);
        fillSections(mgr, 0);
        EXPECT_FALSE(db.savefile(Text("/dev/full"))) << pad;
        EXPECT_FALSE(mgr.MakeFile(Text("/dev/full"))) << pad;
    }
    // A size table longer than the buffer, a block without data, a block with data.
    std::string data(10000, 'd');
    std::vector<std::string> blocks;
    zbBase::CzbFileMgrAdv table, zeros, bytes;
    fillBlocks(table, blocks);
    zeros.addDataSize(nullptr, data.size());
    bytes.addDataSize(&data[0], data.size());
    for (zbBase::CzbFileMgrAdv* mgr : {&table, &zeros, &bytes}) {
        EXPECT_FALSE(mgr->writeFile(Text("/dev/full"), 1.0f));
    }
    // A head longer than the buffer, given or left unset, and bodies: no result to give, and
    // the device stays a device.
    zbBase::CzbFileMgrB records;
    records.SetDataSize(8192, 16);
    records.MakeFile(Text("/dev/full"));
    records.SetHead(&data[0]);
    records.MakeFile(Text("/dev/full"));
    records.SetDataSize(4, 4096);
    records.AddBody(&data[0]);
    records.AddBody(&data[0]);
    records.MakeFile(Text("/dev/full"));
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST(DataFileFault, DescriptorsRunningOut) {
    ZBTEST_SKIP_WHEN_DESCRIPTORS_ARE_NEEDED();
    zbtest::TempFolder dir;
    Writers writers;
    const std::vector<std::string> old = writeEach(writers, dir);
    zbtest::Text blocks(dir.file("file3"));
    zbtest::Text edit("edit");
    zbBase::CzbFileMgrAdv mgr;
    {
        // One descriptor: the file to edit opens, the file beside it cannot be made.
        zbtest::DescriptorLimit limit(1);
        EXPECT_FALSE(mgr.editFile(blocks, 1, edit, 4));
    }
    {
        zbtest::DescriptorLimit limit(0);
        for (int kind = 0; kind < 4; ++kind) {
            EXPECT_EQ(writers.write(dir.file("file" + std::to_string(kind)), kind, 1), kind == 2);
        }
        EXPECT_FALSE(mgr.editFile(blocks, 1, edit, 4));
    }
    expectUnchanged(dir, old);
}

TEST(DataFileFault, ReadOnlyTargetsAreNotWrittenByAnUnprivilegedUser) {
    zbtest::TempFolder dir;
    fs::permissions(dir.path(), fs::perms::all);
    Writers writers;
    const std::vector<std::string> old = writeEach(writers, dir);
    for (int kind = 0; kind < 4; ++kind) {
        fs::permissions(dir.file("file" + std::to_string(kind)),
                        fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    }
    // Each writer that reports success on a read-only file sets its bit.
    int rc = zbtest::asUnprivileged([&] {
        int wrote = 0;
        for (int kind = 0; kind < 4; ++kind) {
            if (writers.write(dir.file("file" + std::to_string(kind)), kind, 1) && kind != 2) {
                wrote |= 1 << kind;
            }
        }
        zbBase::CzbFileMgrAdv mgr;
        if (mgr.editFile(Text(dir.file("file3")), 1, Text("edit"), 4)) {
            wrote |= 16;
        }
        return wrote;
    });
    EXPECT_EQ(rc, 0);
    expectUnchanged(dir, old);
}

TEST(DataFileFault, EditFileWithAFailingWriteKeepsTheOldFile) {
    // A file of 600 blocks, edited under a limit at every 500 bytes of the new file: in the
    // table, in the copied blocks, in the new block, and in the blocks behind it. Only the edit
    // that fits is made.
    zbtest::TempFolder dir;
    const std::string many = dir.file("many.bin");
    std::vector<std::string> blocks;
    zbBase::CzbFileMgrAdv list;
    fillBlocks(list, blocks);
    ASSERT_TRUE(list.writeFile(Text(many), 0.5f));
    const std::string before = zbtest::readBytes(many);
    const size_t editedSize = before.size() - blocks[300].size() + 5000;
    std::string data(5000, 'n'); // the new block from bytes, or as zeros without them
    for (size_t limit = 0; limit < editedSize; limit += 500) {
        {
            zbtest::FileSizeLimit disk(limit);
            char* bytes = limit % 1000 == 0 ? nullptr : &data[0];
            ASSERT_FALSE(list.editFile(Text(many), 300, bytes, 5000)) << limit;
        }
        ASSERT_TRUE(zbtest::readBytes(many) == before) << limit;
    }
    EXPECT_EQ(entries(dir.path()), 1u);
    // With room, the edit gives the file that the list with the new block gives.
    ASSERT_TRUE(list.editFile(Text(many), 300, nullptr, 5000)); // a block without data: zeros
    list.setDataSize(300, nullptr, 5000);
    list.setDataSize(600, &blocks[1][0], 1); // no such entry: nothing changes
    list.setDataSize(-1, &blocks[1][0], 1);
    const std::string expected = dir.file("expected.bin");
    ASSERT_TRUE(list.writeFile(Text(expected), 0.5f));
    EXPECT_EQ(zbtest::readBytes(many).size(), editedSize);
    EXPECT_TRUE(zbtest::readBytes(many) == zbtest::readBytes(expected));

    // On a small disk the edit needs a second copy beside the first, and there is no room.
    zbtest::SmallTmpfs disk(256 * 1024);
    if (!disk.ok()) {
        GTEST_SKIP() << disk.why();
    }
    std::string first(100000, 'f'), second(100000, 's'), grown(150000, 'g');
    zbBase::CzbFileMgrAdv mgr;
    mgr.addDataSize(&first[0], first.size());
    mgr.addDataSize(&second[0], second.size());
    const std::string small = disk.file("blocks.bin");
    ASSERT_TRUE(mgr.writeFile(Text(small), 2.5f));
    const std::string old = zbtest::readBytes(small);
    EXPECT_FALSE(mgr.editFile(Text(small), 1, &grown[0], grown.size()));
    EXPECT_TRUE(zbtest::readBytes(small) == old);
    EXPECT_EQ(entries(disk.path()), 1u);
}

const rlim_t kMiB = 1 << 20;

// A sparse file of `size` bytes that starts with `head`: it costs no disk, only what a reader
// makes of it.
std::string sparse(const zbtest::TempFolder& dir, const char* name, const std::string& head,
                   off_t size) {
    const std::string path = dir.file(name);
    zbtest::writeBytes(path, head);
    EXPECT_EQ(truncate(path.c_str(), size), 0);
    return path;
}

TEST(DataFileFault, HugeSparseAndBodySizeOneRecordFilesUnderAMemoryLimit) {
    ZBTEST_SKIP_WHEN_SANITIZED();
    zbtest::TempFolder dir;
    // A sparse head-and-body file of 2^40 bytes, under 1 GiB: longer than a 32-bit length can
    // say, so a failed read with nothing kept and nothing read, whatever the sizes, and no
    // exception. The same file cut to 1 MiB reads.
    const std::string huge = sparse(dir, "huge.bin", "", 1ll << 40);
    auto body = [&] {
        zbBase::CzbFileMgrB mgr;
        for (unsigned bodySize : {4096u, 1u, 0u}) {
            mgr.SetDataSize(16, bodySize);
            if (mgr.OpenFile(Text(huge)) || mgr.GetHeadData() != nullptr ||
                !mgr.m_readBodies.empty()) {
                return 1;
            }
        }
        if (truncate(huge.c_str(), 1 << 20) != 0) {
            return 2;
        }
        mgr.SetDataSize(16, 4096);
        return mgr.OpenFile(Text(huge)) && mgr.m_readBodies.size() == 255 ? 0 : 3;
    };
    EXPECT_EQ(zbtest::withAddressSpace(1024 * kMiB, body), 0);

    // A body size of 1 on an 8 MiB file: the bytes once and a pointer per body (some 72 MiB),
    // not a heap block per body.
    const std::string bodies = dir.file("bodies.bin");
    std::string bytes(8 * kMiB, '\0');
    for (size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>(i * 7);
    }
    zbtest::writeBytes(bodies, bytes);
    auto bytewise = [&] {
        zbBase::CzbFileMgrB mgr;
        mgr.SetDataSize(0, 1);
        if (!mgr.OpenFile(Text(bodies)) || mgr.m_readBodies.size() != bytes.size()) {
            return 1;
        }
        for (size_t i = 0; i < bytes.size(); i += 4099) {
            if (*mgr.m_readBodies[i] != bytes[i]) {
                return 2;
            }
        }
        zbBase::CzbFileMgrB copy(mgr); // one more image, not 8 million blocks
        return *copy.m_readBodies.back() == bytes.back() ? 0 : 3;
    };
    EXPECT_EQ(zbtest::withAddressSpace(zbtest::addressSpace() + 192 * kMiB, bytewise), 0);
}

TEST(DataFileFault, RecordAndBlockFilesThatDoNotFitInMemory) {
    ZBTEST_SKIP_WHEN_SANITIZED();
    zbtest::TempFolder dir;
    const std::string image = sparse(dir, "image.bin", "head", 48 << 20);
    const std::string pointers = sparse(dir, "pointers.bin", "", 8 << 20);
    auto records = [&] {
        zbBase::CzbFileMgrB mgr;
        mgr.SetDataSize(4, 1);
        // The image of 48 MiB does not fit; nor does a pointer per body of 8 MiB; nor do the
        // bytes of a device without end.
        if (mgr.OpenFile(Text(image)) || mgr.GetHeadData() != nullptr) {
            return 1;
        }
        if (mgr.OpenFile(Text(pointers)) || !mgr.m_readBodies.empty()) {
            return 2;
        }
        if (mgr.OpenFile(Text("/dev/zero")) || mgr.GetHeadData() != nullptr) {
            return 3;
        }
        // A read side that fits once but not twice: the copy throws, and nothing is lost.
        mgr.SetDataSize(4, 1 << 20);
        if (truncate(image.c_str(), 4 + (24 << 20)) != 0 || !mgr.OpenFile(Text(image)) ||
            mgr.m_readBodies.size() != 24) {
            return 4;
        }
        try {
            zbBase::CzbFileMgrB copy(mgr);
            return 5;
        } catch (const std::bad_alloc&) {
        }
        return mgr.m_readBodies.size() == 24 ? 0 : 6;
    };
    EXPECT_EQ(zbtest::withAddressSpace(zbtest::addressSpace() + 40 * kMiB, records), 0);

    // A block file of 1 GiB whose header claims a block for every 8 bytes behind it: the size
    // table does not fit, and the edit fails with the file as it was.
    std::string header(152, '\0');
    const unsigned long long count = ((1ull << 30) - 152) / 8;
    for (int i = 0; i < 8; ++i) {
        header[16 + i] = static_cast<char>(count >> (8 * i));
    }
    const std::string blocks = sparse(dir, "blocks.bin", header, 1ll << 30);
    auto edit = [&] {
        zbBase::CzbFileMgrAdv mgr;
        return mgr.editFile(Text(blocks), 0, Text("x"), 1) ? 1 : 0;
    };
    EXPECT_EQ(zbtest::withAddressSpace(zbtest::addressSpace() + 64 * kMiB, edit), 0);
    EXPECT_EQ(fs::file_size(blocks), 1ull << 30);
    EXPECT_EQ(entries(dir.path()), 3u);
}

TEST(DataFileFault, TextFilesThatDoNotFitLeaveTheObjectAsItWas) {
    ZBTEST_SKIP_WHEN_SANITIZED();
    zbtest::TempFolder dir;
    // Three million empty lines under one title are three million records of 384 bytes each:
    // more than 1 GiB holds. The read fails with an empty table, and no exception leaves.
    const std::string sections = dir.file("empty-lines.ini");
    zbtest::writeBytes(sections, "[T]\nname = value\n" + std::string(3000000, '\n'));
    auto titled = [&] {
        zbBase::CzbFileMgr mgr;
        return !mgr.OpenFile(Text(sections)) && mgr.m_attributes.empty() && mgr.m_title[0] == 0 ? 0
                                                                                                : 1;
    };
    EXPECT_EQ(zbtest::withAddressSpace(1024 * kMiB, titled), 0);

    // An item file that does not fit: the object stays as it was, old values included.
    const std::string items = dir.file("items.txt");
    std::string text = "keep=`new`\n";
    char line[32];
    for (int i = 0; i < 1500000; ++i) {
        std::snprintf(line, sizeof line, "k%07d=`v`\n", i);
        text += line;
    }
    zbtest::writeBytes(items, text);
    text.clear();
    text.shrink_to_fit();
    auto body = [&] {
        CzbFileDB db;
        db.setItem(Text("keep"), Text("old"));
        db.setItem(Text("other"), 7);
        if (db.openfile(Text(items))) {
            return 1;
        }
        char value[16] = "";
        db.getItem(Text("keep"), value, Text("gone"));
        if (db.m_order.size() != 2 || db.m_items.size() != 2 || std::strcmp(value, "old") != 0) {
            return 2;
        }
        CzbFileDB empty;
        return !empty.openfile(Text(items)) && empty.m_items.empty() ? 0 : 3;
    };
    EXPECT_EQ(zbtest::withAddressSpace(zbtest::addressSpace() + 96 * kMiB, body), 0);
}

TEST(DataFileFault, EditOfAFileWithAHugeSparseBlock) {
    ZBTEST_SKIP_WHEN_SANITIZED();
    zbtest::TempFolder dir;
    // Blocks of 512 MiB (sparse) and 3 bytes: editing the first holds no block in memory.
    const std::string blocks = dir.file("blocks.bin");
    zbBase::CzbFileMgrAdv mgr;
    char small[] = "abc";
    mgr.addDataSize(nullptr, 0);
    mgr.addDataSize(small, 3);
    ASSERT_TRUE(mgr.writeFile(Text(blocks), 0.5f));
    std::string file = zbtest::readBytes(blocks);
    const unsigned long long big = 512ull << 20;
    for (int i = 0; i < 8; ++i) {
        file[8 + i] = static_cast<char>((big + 3) >> (8 * i)); // totalSize
        file[152 + i] = static_cast<char>(big >> (8 * i));     // size of block 0
    }
    zbtest::writeBytes(blocks, file.substr(0, 168));
    ASSERT_EQ(truncate(blocks.c_str(), static_cast<off_t>(168 + big)), 0);
    FILE* tail = std::fopen(blocks.c_str(), "ab");
    std::fputs("abc", tail);
    std::fclose(tail);

    auto body = [&] { return mgr.editFile(Text(blocks), 0, Text("xy"), 2) ? 0 : 1; };
    EXPECT_EQ(zbtest::withAddressSpace(zbtest::addressSpace() + 64 * kMiB, body), 0);
    const std::string edited = zbtest::readBytes(blocks);
    EXPECT_EQ(edited.size(), 152u + 16u + 5u);
    EXPECT_EQ(edited.substr(168), "xyabc");
}

#endif
