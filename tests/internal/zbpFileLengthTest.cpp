// File lengths of the platform layer are 64 bits wide on every platform.
#include "zbBase/platform/detail/zbpFileIO.h"

#include "support/zbTestFiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <system_error>

TEST(zbpFileLength, SixtyFourBitsWide) {
    zbtest::TempFolder folder;
    const std::string name = folder.file("sparse.bin");
    zbtest::writeBytes(name, "x");
    FILE* file = zbp::fopen(name.c_str(), "rb");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(zbp::_filelengthi64(zbp::_fileno(file)), 1);
    fclose(file);

    const long long lengths[] = {(1ll << 31) - 1, 1ll << 31, (1ll << 32) + 5};
    for (long long length : lengths) {
        std::error_code error;
        std::filesystem::resize_file(name, static_cast<std::uintmax_t>(length), error);
        if (error) {
            GTEST_SKIP() << "the file system here holds no sparse file of " << length << " bytes";
        }
        file = zbp::fopen(name.c_str(), "rb");
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(zbp::_filelengthi64(zbp::_fileno(file)), length);
        fclose(file);
    }
}
