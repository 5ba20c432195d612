#include <gtest/gtest.h>

#include "core/ByteReader.h"
#include "core/rastx/codecs/Emf.h"
#include "core/rastx/codecs/Wmf.h"
#include "tests/metafile/RecordBuilder.h"

namespace tessara {
namespace {

using namespace test;

struct Format {
    const char* name;
    Result<void> (*encode)(const Picture&, const EncodeOptions&, ByteSink&);
    Result<Picture> (*decode)(Bytes, const DecodeOptions&);
    bool (*recognise)(Bytes);
};
constexpr Format kFormats[] = {{"WMF", EncodeWmf, DecodeWmf, RecogniseWmf},
                               {"EMF", EncodeEmf, DecodeEmf, RecogniseEmf}};

ByteVector Written(const Format& format, const Picture& picture) {
    MemorySink sink;
    Must(format.encode(picture, {}, sink));
    return sink.TakeBytes();
}

TEST(Metafile, APictureComesBackPixelForPixelWhateverItsResolution) {
    for (const Format& format : kFormats) {
        for (const Resolution resolution : {Resolution{}, Resolution{72, 72}, Resolution{300, 300}}) {
            SCOPED_TRACE(format.name + std::to_string(resolution.x));
            Picture picture = PhotoLike(37, 21);
            picture.SetResolution(resolution);
            const ByteVector file = Written(format, picture);
            EXPECT_TRUE(format.recognise(file));
            const Picture read = Must(format.decode(file, {}));
            EXPECT_EQ(LargestDifference(read, picture), 0);
            EXPECT_NEAR(read.Meta().resolution.x, resolution.Known() ? resolution.x : 96, 0.5);
        }
    }
}

TEST(Metafile, ThePlayerDrawsTheSamePixels) {
    // A further record keeps the file from being taken for a mere carrier of its bitmap.
    const Picture picture = Draw("RGB KWY");
    ByteVector wmf = Written(kFormats[0], picture);
    wmf.resize(wmf.size() - 6);
    const ByteVector pixel = WmfBuilder(0, 0).Record(0x041F, {0, 0, 1, 0}).Records();
    EXPECT_EQ(Sketch(Must(DecodeWmf(Concatenate({wmf, pixel}), {}))), "RGB KWY");
    ByteVector emf = Written(kFormats[1], picture);
    emf.resize(emf.size() - 20);
    EXPECT_EQ(
        Sketch(Must(DecodeEmf(Concatenate({emf, Hex("0F000000 14000000 00000000 01000000 00000000")}), {}))),
        "RGB KWY");
}

TEST(Metafile, TransparentPixelsAreWrittenOnWhite) {
    for (const Format& format : kFormats)
        EXPECT_EQ(Sketch(Must(format.decode(Written(format, Draw("R. .K")), {}))), "RW WK") << format.name;
}

TEST(Metafile, HeadersCountWhatFollows) {
    const ByteVector wmf = Written(kFormats[0], Draw("RGB KWY"));
    ByteReader reader(wmf);
    std::uint32_t checksum = 0;
    for (int i = 0; i < 10; ++i) checksum ^= reader.U16Le();
    EXPECT_EQ(reader.U16Le(), checksum);
    reader.Skip(6);
    EXPECT_EQ(reader.U32Le() * 2, wmf.size() - 22);

    const ByteVector emf = Written(kFormats[1], Draw("RGB KWY"));
    ByteReader header(emf);
    header.Seek(48);
    EXPECT_EQ(header.U32Le(), emf.size());
    unsigned records = 1;
    EmfRecords walk(emf);
    while (walk.Next()) ++records;
    EXPECT_TRUE(walk.Complete());
    EXPECT_EQ(header.U32Le(), records);
}

TEST(Metafile, ASideOfWmfEndsAt32767) {
    MemorySink sink;
    EXPECT_FALSE(EncodeWmf(Must(Picture::Create(32768, 1, kWhite, Alpha::None)), {}, sink));
    EXPECT_TRUE(EncodeWmf(Must(Picture::Create(32767, 1, kWhite, Alpha::None)), {}, sink));
}

TEST(Metafile, ReadsTheExtensionsOfTheHeaderOnlyWhereTheyAre) {
    struct Case {
        const char* name;
        std::uint32_t length, descriptionLength, descriptionOffset;
        double pixelsPerMillimetre;
    };
    for (const Case& row :
         {Case{"millimetres", 88, 0, 0, 4}, Case{"micrometres", 108, 0, 0, 5},
          Case{"text in their place", 120, 8, 88, 4}, Case{"text behind them", 120, 8, 108, 5}}) {
        ByteWriter header;
        header.U32Le(1).U32Le(row.length).Zeros(32).Text(" EMF").Zeros(16).U32Le(row.descriptionLength);
        header.U32Le(row.descriptionOffset).U32Le(0).U32Le(400).U32Le(400).U32Le(100).U32Le(100);
        header.Zeros(12).U32Le(80000).U32Le(80000).Zeros(12);
        EXPECT_DOUBLE_EQ(Must(ReadEmfHeader(header.Written())).pixelsPerMillimetreX, row.pixelsPerMillimetre)
            << row.name;
    }
}

}  // namespace
}  // namespace tessara
