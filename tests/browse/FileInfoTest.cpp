#include "browse/FileInfo.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/Support.h"

namespace tessara {
namespace {

FindData DataOf(std::uint32_t high, std::uint32_t low, std::int64_t time = 0) {
    FindData data;
    data.lastWriteTime = time;
    data.nFileSizeHigh = high;
    data.nFileSizeLow = low;
    return data;
}

TEST(FileInfo, BytesAreOneSignedHalfOfTheSize) {
    struct Row {
        const char* name;
        std::uint32_t high;
        std::uint32_t low;
        const char* bytesText;
    };
    constexpr Row kRows[] = {
        {"empty", 0, 0, "0"},
        {"small", 0, 123456, "123456"},
        {"last below 2 GB", 0, 0x7fffffff, "2147483647"},
        {"2 GB turns negative", 0, 0x80000000, "-2147483648"},
        {"last below 4 GB", 0, 0xffffffff, "-1"},
        {"of 4 GB the high word counts", 1, 0, "1"},
        {"of 12 GB and a little", 3, 77, "3"},
    };
    for (const Row& row : kRows) {
        const FileInfoTexts info = FileInfoOf(DataOf(row.high, row.low));
        EXPECT_EQ(info.bytesText, row.bytesText) << row.name;
        EXPECT_EQ(std::to_string(info.bytes), row.bytesText) << row.name;
    }
}

TEST(FileInfo, DatesArePlainNumbersInUtc) {
    EXPECT_EQ(FileInfoOf(DataOf(0, 0, 1078470549)).dateText, "2004-3-5  7:9:9");
    EXPECT_EQ(FileInfoOf(DataOf(0, 0, 1078470542)).dateText, "2004-3-5  7:9:2");
    EXPECT_EQ(FileInfoOf(DataOf(0, 0, 946684799)).dateText, "1999-12-31  23:59:59");
    EXPECT_EQ(FileInfoOf(DataOf(0, 0, -1)).dateText, "1969-12-31  23:59:59");
}

TEST(FileInfo, ReadsSizeAndTimeOfAFile) {
    const test::TemporaryFolder folder;
    const std::string path = folder.File("a.bmp");
    test::WriteWhole(path, ByteVector(1500));
    const timespec times[2] = {{1078470542, 0}, {1078470542, 999999999}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    FindData data;
    FindFile(path, data);
    EXPECT_EQ(data.cFileName, "a.bmp");
    const FileInfoTexts info = FileInfo(path);
    EXPECT_EQ(info.bytesText, "1500");
    EXPECT_EQ(info.dateText, "2004-3-5  7:9:2");
}

TEST(FindFile, AMissingFileIsMarkedAndLeavesTheOtherFields) {
    const test::TemporaryFolder folder;
    FindData data = DataOf(1, 2, 3);
    FindFile(folder.File("missing"), data);
    EXPECT_EQ(data.cFileName, "Error");
    EXPECT_EQ(data.nFileSizeHigh, 1u);
    EXPECT_EQ(data.nFileSizeLow, 2u);
    EXPECT_EQ(data.lastWriteTime, 3);
}

TEST(BrowseRootCode, SkipsTheFourFreeNumbers) {
    constexpr int kRows[][2] = {{-3, 0}, {1, 0}, {2, 2}, {11, 11}, {12, 16}, {20, 24}};
    for (const auto& [selector, code] : kRows) EXPECT_EQ(BrowseRootCode(selector), code) << selector;
}

TEST(SizeText, OneDecimalWithoutALeadingZero) {
    struct Row {
        std::int32_t bytes;
        const char* text;
    };
    constexpr Row kRows[] = {
        {0, "0KB"},
        {512, ".5KB"},
        {12 * 1024, "12KB"},
        {123456, "120.6KB"},
        {256, ".2KB"},  // 2.5 tenths: a tie goes to the even number
        {768, ".8KB"},
        {51, "0KB"},
        {1024 * 1024, "1024KB"},
        {1024 * 1024 + 103, "1MB"},
        {1536 * 1024, "1.5MB"},
        {2147483647, "2048MB"},
        {-2147483647 - 1, "-2097152KB"},
        {-512, "-.5KB"},
    };
    for (const Row& row : kRows) EXPECT_EQ(SizeText(row.bytes), row.text) << row.bytes;
}

TEST(SizeNumber, AValueThatDoesNotFitStaysUnrounded) {
    EXPECT_EQ(SizeNumber(3276.7F), "3276.7");
    EXPECT_EQ(SizeNumber(3276.74F), "3276.7");
    EXPECT_EQ(SizeNumber(3276.78F), "3276.78");
    EXPECT_EQ(SizeNumber(5000.125F), "5000.125");
    EXPECT_EQ(SizeNumber(-3276.78F), "-3276.8");
    EXPECT_EQ(SizeNumber(-3276.88F), "-3276.88");
}

}  // namespace
}  // namespace tessara
