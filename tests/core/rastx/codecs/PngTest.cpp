#include "core/rastx/codecs/Png.h"

#include <libdeflate.h>

#include "core/ByteReader.h"
#include "core/ByteSink.h"
#include "tests/Support.h"
#include "tests/core/rastx/Profiles.h"

namespace tessara {
namespace {

using test::Draw;
using test::Encode;
using test::Hex;
using test::Must;
using test::Sketch;

ByteVector Chunk(std::string_view type, Bytes data) {
    ByteVector body = ByteWriter().Text(type).Append(data).TakeBytes();
    const std::uint32_t crc = libdeflate_crc32(0, body.data(), body.size());
    return ByteWriter().U32Be(static_cast<std::uint32_t>(data.size())).Append(body).U32Be(crc).TakeBytes();
}

/// Rows as they lie in the stream, deflated without compression.
ByteVector Stored(Bytes rows) {
    libdeflate_compressor* compressor = libdeflate_alloc_compressor(0);
    ByteVector deflated(libdeflate_zlib_compress_bound(compressor, rows.size()));
    deflated.resize(
        libdeflate_zlib_compress(compressor, rows.data(), rows.size(), deflated.data(), deflated.size()));
    libdeflate_free_compressor(compressor);
    return deflated;
}

/// A file from the text of its parts: `size` and `form` of the header in hex, chunks before the pixels, rows.
ByteVector File(std::string_view header, const ByteVector& chunks, std::string_view rows) {
    return test::Concatenate({Hex("89504E470D0A1A0A"), Chunk("IHDR", Hex(header)), chunks,
                              Chunk("IDAT", Stored(Hex(rows))), Chunk("IEND", {})});
}

ByteVector ProfileChunk(const ByteVector& icc) {
    return Chunk("iCCP", test::Concatenate({Hex("61 00 00"), Stored(icc)}));
}

Picture Read(const ByteVector& file) {
    return Must(DecodePng(file, {}));
}

TEST(Png, FormsThatAreRarelyMetAreRead) {
    const struct {
        const char* name;
        ByteVector file;
        const char* sketch;
    } cases[] = {
        {"grey of 1 bit with a transparent level",
         File("00000003 00000001 0100000000", Chunk("tRNS", Hex("0001")), "00 40"), "K.K"},
        {"grey of 2 bits", File("00000003 00000001 0200000000", {}, "00 0C"), "KKW"},
        {"a profile of linear grey",
         File("00000003 00000001 0800000000", ProfileChunk(test::GreyProfile(1)), "00 0029FF"), "K4W"},
        {"no profile where one should be",
         File("00000002 00000001 0800000000", ProfileChunk(Hex("41 42 43")), "00 1CFF"), "1W"},
        {"grey of 16 bits", File("00000002 00000001 1000000000", {}, "00 1C1CFFFF"), "1W"},
        {"a transparent colour of 8 bits",
         File("00000002 00000001 0802000000", Chunk("tRNS", Hex("00FF00000000")), "00 FF0000 FFFFFF"), ".W"},
        {"a transparent colour of 16 bits is compared in both bytes",
         File("00000002 00000001 1002000000", Chunk("tRNS", Hex("FFFF00000000")),
              "00 FFFF00000000 FFFF00000001"),
         ".R"},
        {"palette with an index behind its end",
         File("00000003 00000001 0203000000", Chunk("PLTE", Hex("FF0000 0000FF")), "00 1B"), "RBK"},
        {"samples of linear light",
         File("00000003 00000001 0800000000", Chunk("gAMA", Hex("000186A0")), "00 0002FF"), "K1W"},
        {"the gamma of sRGB, or nearly",
         File("00000002 00000001 0800000000", Chunk("gAMA", Hex("0000B18F")), "00 1CFF"), "1W"},
        {"sRGB overrides gamma",
         File("00000002 00000001 0800000000",
              test::Concatenate({Chunk("gAMA", Hex("000186A0")), Chunk("sRGB", Hex("00"))}), "00 1CFF"),
         "1W"},
        {"unused alpha is dropped", File("00000001 00000001 0806000000", {}, "00 FF0000FF"), "R"},
        {"interlaced, of which only the first pass is there",
         File("00000003 00000002 0800000001", {}, "00 1C"), "111 111"},
        {"interlaced, whole", File("00000002 00000002 0800000001", {}, "00 00 00 1C 00 38FF"), "K1 2W"},
        {"the second row is missing", File("00000002 00000002 0800000000", {}, "00 1C1C 00 1C"), "11 WW"},
        {"missing rows under alpha are transparent",
         File("00000001 00000003 0806000000", {}, "00 FF000080 00"), "? . ."},
        {"the second row has a filter that does not exist",
         File("00000001 00000002 0800000000", {}, "00 1C 07 1C"), "1 W"},
    };
    for (const auto& row : cases) EXPECT_EQ(Sketch(Read(row.file)), row.sketch) << row.name;
}

TEST(Png, PixelsMayBeSplitOverManyChunksWithWrongChecksums) {
    const Picture picture = test::PhotoLike(20, 20);
    const ByteVector whole = Encode(EncodePng, picture);
    ByteVector split;
    for (ByteReader reader(Bytes(whole).subspan(8)); !reader.AtEnd();) {
        const std::uint32_t length = reader.U32Be();
        const Bytes type = reader.Take(4), data = reader.Take(length);
        reader.Skip(4);
        const std::string_view name(reinterpret_cast<const char*>(type.data()), 4);
        for (std::size_t i = 0; i < length && name == "IDAT"; ++i) {
            ByteVector chunk = Chunk(name, data.subspan(i, 1));
            chunk.back() ^= 1;
            split.insert(split.end(), chunk.begin(), chunk.end());
        }
        if (name != "IDAT") split = test::Concatenate({split, Chunk(name, data)});
    }
    EXPECT_EQ(test::LargestDifference(Read(test::Concatenate({Hex("89504E470D0A1A0A"), split})), picture), 0);
}

TEST(Png, HeadersThatCannotBeTrueAreRefused) {
    const struct {
        const char* name;
        ByteVector file;
        FailureKind kind;
    } cases[] = {
        {"no width", File("00000000 00000001 0800000000", {}, "00"), FailureKind::Damaged},
        {"3 bits", File("00000001 00000001 0300000000", {}, "0000"), FailureKind::Unsupported},
        {"RGB of 4 bits", File("00000001 00000001 0402000000", {}, "0000"), FailureKind::Unsupported},
        {"no such colour type", File("00000001 00000001 0805000000", {}, "0000"), FailureKind::Unsupported},
        {"palette missing", File("00000001 00000001 0803000000", {}, "0000"), FailureKind::Damaged},
        {"far more pixels than the file can hold", File("00004000 00004000 0806000000", {}, "00"),
         FailureKind::Damaged},
        {"beyond every limit", File("7FFFFFFF 7FFFFFFF 0806000000", {}, "00"), FailureKind::TooBig},
        {"no pixels", File("00000001 00000001 0800000000", {}, ""), FailureKind::Damaged},
    };
    for (const auto& row : cases) {
        const auto result = DecodePng(row.file, {});
        ASSERT_FALSE(result) << row.name;
        EXPECT_EQ(result.Error().kind, row.kind) << row.name;
    }
}

TEST(Png, TheLeanestExactFormIsWritten) {
    Picture greyAlpha = test::PhotoLikeWithAlpha(40, 40);
    for (Pixel& pixel : greyAlpha.MutablePixels()) pixel.r = pixel.b = pixel.g;
    Picture levels = Must(Picture::Create(16, 16, Alpha::None));
    for (int i = 0; i < 256; ++i)
        levels.MutablePixels()[static_cast<std::size_t>(i)] = Grey(static_cast<std::uint8_t>(i));
    Picture unusedAlpha = test::PhotoLike(40, 40);
    unusedAlpha.SetAlpha(Alpha::Straight);
    const std::string many(40, 'R');
    const struct {
        const char* name;
        Picture picture;
        int depth, colorType;
    } cases[] = {
        {"black and white", Draw("KWKWKWKWK KKKWWWKKK"), 1, 0},
        {"four even greys of 85 apart, of which two are there", Draw("39 93"), 1, 3},
        {"all greys", levels, 8, 0},
        {"two colours", Draw(many + " " + std::string(40, 'B')), 1, 3},
        {"three colours, one transparent", Draw(many + " " + std::string(20, 'B') + std::string(20, '.')), 2,
         3},
        {"two pixels, where a palette does not pay", Draw("RB"), 8, 2},
        {"photograph", test::PhotoLike(40, 40), 8, 2},
        {"photograph with alpha", test::PhotoLikeWithAlpha(40, 40), 8, 6},
        {"alpha that nothing uses", unusedAlpha, 8, 2},
        {"grey photograph with alpha", greyAlpha, 8, 4},
    };
    for (const auto& row : cases) {
        const ByteVector file = Encode(EncodePng, row.picture);
        EXPECT_EQ(file[24], row.depth) << row.name;
        EXPECT_EQ(file[25], row.colorType) << row.name;
        EXPECT_EQ(test::LargestDifference(Read(file), row.picture), 0) << row.name;
    }
}

TEST(Png, LargePicturesAreStreamedInSeveralChunks) {
    for (const Picture& picture : {test::PhotoLike(1200, 1000), test::PhotoLikeWithAlpha(1200, 1000)}) {
        const ByteVector file = Encode(EncodePng, picture);
        EXPECT_EQ(test::LargestDifference(Read(file), picture), 0);
        EXPECT_EQ(Read(file).HasAlpha(), picture.HasAlpha());
    }
}

TEST(Png, ResolutionAndExifAreKept) {
    Picture picture = Draw("RGB");
    const ByteVector exif = Hex("4D4D002A 00000008 0001 0112 0003 00000001 00060000 00000000");
    picture.SetMeta({{300, 150}, std::make_shared<const ByteVector>(exif)});
    const Picture read = Read(Encode(EncodePng, picture));
    EXPECT_NEAR(read.Meta().resolution.x, 300, 0.02);
    EXPECT_NEAR(read.Meta().resolution.y, 150, 0.02);
    ASSERT_TRUE(read.Meta().exif);
    EXPECT_EQ(read.Meta().exif->at(19), 1) << "the picture is shown as it is stored";
    EXPECT_EQ(Sketch(read), "RGB");
}

}  // namespace
}  // namespace tessara
