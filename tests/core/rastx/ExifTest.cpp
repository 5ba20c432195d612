#include "core/rastx/Exif.h"

#include "core/ByteReader.h"
#include "tests/Support.h"

namespace tessara {
namespace {

using test::Draw;
using test::Hex;
using test::Must;
using test::Sketch;

// Orientation 6, 300 and 150 dots; then a directory with a thumbnail of three bytes at the block's end.
constexpr std::string_view kEntries =
    "0400 1201 0300 01000000 06000000"
    "     1A01 0500 01000000 3E000000"
    "     1B01 0500 01000000 46000000"
    "     2801 0300 01000000 ";
constexpr std::string_view kRest =
    "     4E000000"
    "2C010000 01000000 58020000 04000000"
    "0200 0102 0400 01000000 6C000000 0202 0400 01000000 03000000 00000000"
    "FFD8FF";

ByteVector Block(std::string_view unit) {
    return Hex("49492A00 08000000" + std::string(kEntries) + std::string(unit) + std::string(kRest));
}

TEST(Exif, OrientationAndResolutionAreRead) {
    const struct {
        const char* name;
        ByteVector block;
        int orientation;
        double x, y;
    } cases[] = {
        {"inches", Block("02000000"), 6, 300, 150},
        {"centimetres", Block("03000000"), 6, 762, 381},
        {"no unit, only an aspect", Block("01000000"), 6, 0, 0},
        {"big endian", Hex("4D4D002A 00000008 0001 0112 0003 00000001 00030000"), 3, 0, 0},
        {"orientation out of range", Hex("4D4D002A 00000008 0001 0112 0003 00000001 00090000"), 1, 0, 0},
        {"resolution behind the end", Hex("4D4D002A 00000008 0001 011A 0005 00000001 7FFFFFFF"), 1, 0, 0},
        {"directory behind the end", Hex("4D4D002A FFFFFFFF"), 1, 0, 0},
        {"no TIFF header", Hex("0001020304050607"), 1, 0, 0},
        {"nothing", {}, 1, 0, 0},
    };
    for (const auto& row : cases) {
        const ExifFields fields = ReadExif(row.block);
        EXPECT_EQ(fields.orientation, row.orientation) << row.name;
        EXPECT_DOUBLE_EQ(fields.resolution.x, row.x) << row.name;
        EXPECT_DOUBLE_EQ(fields.resolution.y, row.y) << row.name;
    }
}

TEST(Exif, AnUprightBlockLosesOnlyOrientationAndThumbnail) {
    const ByteVector block = Block("02000000");
    const ByteVector upright = UprightExif(block);
    EXPECT_EQ(ReadExif(upright).orientation, 1);
    EXPECT_EQ(ReadExif(upright).resolution.x, 300);
    EXPECT_EQ(upright.size(), block.size() - 3) << "the thumbnail's bytes are cut off";
    ByteReader reader(upright);
    reader.Seek(10 + 4 * 12);
    EXPECT_EQ(reader.U32Le(), 0u) << "no second directory";
}

TEST(Exif, ABlockIsWrittenWithTheSizeOfItsPicture) {
    constexpr const char* kWidth = "A002 0003 00000001 10000000 ";
    constexpr const char* kHeight = "A003 0004 00000001 00010000";
    Picture picture = Draw("RGB");
    picture.SetMeta({{},
                     std::make_shared<const ByteVector>(
                         Hex("4D4D002A 00000008 0001 8769 0004 00000001 0000001A 00000000 0002" +
                             std::string(kWidth) + kHeight + "00000000"))});
    const std::vector<ExifEntry> photo = ReadExifDirectories(ExifOf(picture)).photo;
    ASSERT_EQ(photo.size(), 2u);
    EXPECT_EQ(photo[0].values, Hex("0300"));
    EXPECT_EQ(photo[1].values, Hex("01000000"));
}

TEST(Exif, EntriesThatShareTheirBytesTakeNoMoreThanTheBlock) {
    constexpr std::uint32_t kMany = 1000, kPhoto = 34665, kUndefined = 7, kLong = 4;
    ByteWriter block;
    block.Text("II").U16Le(42).U32Le(8);
    block.U16Le(1).U16Le(kPhoto).U16Le(kLong).U32Le(1).U32Le(26).U32Le(0);
    block.U16Le(kMany);
    for (std::uint32_t i = 0; i < kMany; ++i) block.U16Le(i).U16Le(kUndefined).U32Le(5000).U32Le(0);
    block.U32Le(0);
    std::size_t taken = 0;
    for (const ExifEntry& entry : ReadExifDirectories(block.Written()).photo) taken += entry.values.size();
    EXPECT_EQ(taken, 10'000u) << "two of them fit into the 12030 bytes of the block";
}

// A block of thousands of such entries, each for a directory as long, would take minutes.
TEST(Exif, OfSeveralEntriesForADirectoryOneIsFollowed) {
    const ByteVector block =
        Hex("4D4D002A 00000008 0002 8769 0004 00000001 00000026 8769 0004 00000001 00000038 00000000"
            "0001 0001 0003 00000001 00070000 00000000"
            "0001 0002 0003 00000001 00080000 00000000");
    const std::vector<ExifEntry> photo = ReadExifDirectories(block).photo;
    ASSERT_EQ(photo.size(), 1u);
    EXPECT_EQ(photo[0].tag, 1);
}

TEST(Exif, OrientationsTurnThePictureUpright) {
    const Picture stored = Draw("RGB KWY");
    const struct {
        int orientation;
        const char* upright;
    } cases[] = {
        {1, "RGB KWY"},  {2, "BGR YWK"},  {3, "YWK BGR"},  {4, "KWY RGB"},
        {5, "RK GW BY"}, {6, "KR WG YB"}, {7, "YB WG KR"}, {8, "BY GW RK"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Sketch(Must(ApplyOrientation(stored, row.orientation))), row.upright) << row.orientation;
}

TEST(Exif, BandsOfRowsGiveTheSameAsTheWholePicture) {
    Picture stored = test::PhotoLike(37, 50);
    stored.SetResolution({300, 150});
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const Picture whole = Must(ApplyOrientation(stored, orientation));
        EXPECT_EQ(whole.Meta().resolution.x, SwapsSides(orientation) ? 150 : 300);
        Picture banded = Must(Picture::Create(whole.Width(), whole.Height(), Alpha::None));
        for (int y = 0; y < 50; y += 20)
            PlaceOriented(stored.Pixels().subspan(37u * y, 37u * std::min(20, 50 - y)), y, 37, 50,
                          orientation, banded.MutablePixels());
        EXPECT_EQ(test::LargestDifference(whole, banded), 0) << orientation;
    }
}

}  // namespace
}  // namespace tessara
