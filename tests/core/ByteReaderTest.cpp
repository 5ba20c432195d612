#include "core/ByteReader.h"

#include <gtest/gtest.h>

#include "tests/Support.h"

namespace tessara {
namespace {

TEST(ByteReader, ReadsBothByteOrders) {
    const ByteVector bytes = test::Hex("01 0203 04050607 fffe");
    ByteReader reader(bytes);
    EXPECT_EQ(reader.U8(), 0x01);
    EXPECT_EQ(reader.U16Be(), 0x0203);
    EXPECT_EQ(reader.U32Le(), 0x07060504u);
    EXPECT_EQ(reader.I16Be(), -2);
    EXPECT_TRUE(reader.AtEnd());
    EXPECT_FALSE(reader.Overrun());
}

TEST(ByteReader, AReadThatDoesNotFitGivesNothingAndStays) {
    const ByteVector bytes = test::Hex("01 02 03");
    struct Case {
        const char* name;
        void (*read)(ByteReader&);
    };
    const Case cases[] = {
        {"number", [](ByteReader& reader) { EXPECT_EQ(reader.U32Le(), 0u); }},
        {"slice", [](ByteReader& reader) { EXPECT_TRUE(reader.Take(4).empty()); }},
        {"huge slice", [](ByteReader& reader) { EXPECT_TRUE(reader.Take(UINT64_MAX).empty()); }},
        {"skip", [](ByteReader& reader) { EXPECT_FALSE(reader.Skip(UINT64_MAX)); }},
        {"seek", [](ByteReader& reader) { EXPECT_FALSE(reader.Seek(4)); }},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        ByteReader reader(bytes);
        reader.Skip(1);
        row.read(reader);
        EXPECT_EQ(reader.Position(), 1u);
        EXPECT_TRUE(reader.Overrun());
    }
}

TEST(ByteReader, SeekReachesBothEdges) {
    const ByteVector bytes = test::Hex("01 02 03");
    ByteReader reader(bytes);
    EXPECT_TRUE(reader.Seek(3));
    EXPECT_TRUE(reader.Seek(0));
    EXPECT_EQ(reader.TakeUpTo(9).size(), 3u);
    EXPECT_FALSE(reader.Overrun());
}

}  // namespace
}  // namespace tessara
