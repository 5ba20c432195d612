#include "edit/WorkingImage.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/ByteReader.h"
#include "core/ByteSink.h"
#include "edit/IconBitmap.h"
#include "tests/Support.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;

class RecordingHost final : public WorkingImageHost {
  public:
    std::string calls;
    std::string labelPict;

    void SetImageCommandsEnabled(bool enabled) override { calls += enabled ? "on " : "off "; }
    void SetImportToolTip(const std::string& text) override { calls += "tip:" + text + " "; }
    void SetLabelPict(const std::string& text) override { labelPict = text; }
    void ClearPositionLabels() override { calls += "labels "; }
    void UndoRefresh(const std::string& command) override { calls += command + " "; }
    void RefreshViewers(int which) override { calls += "viewers" + std::to_string(which) + " "; }
    ColorNumber BackColor() const override { return RGB(0, 255, 0); }
};

/// An icon of one image right behind its record: every pixel (10, 20, 30), those of the first column
/// transparent.
ByteVector IconFile(int width, int height, int bits) {
    const IconSizes sizes = IconImageSizes(width, height * 2, bits);
    const auto u32 = [](int value) { return static_cast<std::uint32_t>(value); };
    ByteWriter writer;
    writer.U16Le(0).U16Le(1).U16Le(1).U8(u32(width)).U8(u32(height)).U8(0).U8(0).U16Le(1).U16Le(u32(bits));
    writer.U32Le(u32(sizes.total)).U32Le(22);
    writer.U32Le(40).U32Le(u32(width)).U32Le(u32(height * 2)).U16Le(1).U16Le(u32(bits));
    writer.Zeros(24);
    for (int i = 0; bits <= 8 && i < 1 << bits; ++i) writer.U8(30).U8(20).U8(10).U8(0);
    for (int y = 0; y < height; ++y) {
        const std::size_t start = writer.Size();
        for (int x = 0; x < width && bits >= 24; ++x) {
            writer.U8(30).U8(20).U8(10);
            if (bits == 32) writer.U8(x == 0 ? 0 : 255);
        }
        writer.Zeros(start + static_cast<std::size_t>(sizes.rowSize) - writer.Size());
    }
    for (int y = 0; y < height; ++y) {
        writer.U8(0x80).Zeros(static_cast<std::size_t>(sizes.maskRowSize) - 1);
    }
    return writer.TakeBytes();
}

class WorkingImages : public testing::Test {
  protected:
    WorkingImages() { session_.AppPath = folder_.Path(); }

    std::string Load(const std::string& name, Bytes contents) {
        std::string path = folder_.File(name);
        test::WriteWhole(path, contents);
        image_.LoadPict(path);
        return path;
    }
    bool Exists(const std::string& name) const { return fs::exists(folder_.File(name)); }

    test::TemporaryFolder folder_;
    Session session_;
    MemoryCarrier clipboard_;
    Rastx import_{{.carrier = &clipboard_}};
    Rastx export_{{.carrier = &clipboard_}};
    RecordingHost host_;
    WorkingImage image_{session_, import_, export_, clipboard_, host_};
};

TEST_F(WorkingImages, AFileGoesIntoBothPanesAndIsDecodedOnce) {
    const std::string path = Load("a.bmp", test::Encode(*ExportFormatTable()[0].codec, test::Draw("RW BG")));
    EXPECT_EQ(session_.ImagePath, path);
    EXPECT_EQ(test::Sketch(export_.Image()), "RW BG");
    EXPECT_EQ(export_.Image().Pixels().data(), import_.Image().Pixels().data());
    EXPECT_EQ(host_.labelPict, "Size : 2 x 2");
    EXPECT_EQ(host_.calls, "tip:Drag out a rectangle to select labels on viewers2 KILL ");
    EXPECT_TRUE(session_.ImageValid);
    EXPECT_TRUE(session_.UndoPending);
}

TEST_F(WorkingImages, AFileThatCannotBeReadEmptiesThePanesInSilence) {
    import_.SetImage(test::Draw("KW"));
    export_.SetImage(test::Draw("KW"));
    Load("text.png", AsBytes("no picture"));
    EXPECT_TRUE(import_.Image().Empty());
    EXPECT_TRUE(export_.Image().Empty());
    EXPECT_EQ(host_.labelPict, "Size : 0 x 0");
    EXPECT_TRUE(session_.ImageValid) << "the commands are enabled all the same";
}

TEST_F(WorkingImages, IconsTakeTheirRouteBySizeAndDepth) {
    const Pixel color{30, 20, 10, 255};
    const Pixel back{0, 255, 0, 255};
    struct Case {
        const char* name;
        int width, height, bits;
        bool overClipboard;
        bool scratchStays;
        Pixel first;  ///< of a transparent corner
    };
    const Case cases[] = {
        {"direct.ico", 32, 32, 24, false, false, {30, 20, 10, 0}},
        {"direct8.Ico", 32, 32, 8, false, false, {30, 20, 10, 0}},
        {"alpha.ICO", 32, 32, 32, true, true, back},
        {"small.ico", 16, 16, 24, true, false, back},
        {"largest drawn.ico", 96, 96, 8, true, false, back},
        {"copied.ico", 97, 40, 24, true, false, color},
        {"copied8.ico", 128, 128, 8, true, false, color},
        {"copied alpha.ico", 128, 128, 32, true, false, color},
        {"copied4.ico", 99, 40, 4, true, false, color},
        {"copied1.ico", 99, 40, 1, true, false, color},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        fs::remove(folder_.File("Xptemp.ico"));
        clipboard_.Put(test::Draw("K"));
        const std::string path = Load(row.name, IconFile(row.width, row.height, row.bits));
        EXPECT_EQ(path, folder_.File(row.overClipboard ? "Bmptemptemp.bmp" : row.name));
        EXPECT_EQ(session_.ImagePath, folder_.File(row.name));
        ASSERT_EQ(import_.ImageWidth(), row.width);
        ASSERT_EQ(import_.ImageHeight(), row.height);
        EXPECT_EQ(export_.Image().At(row.width - 1, 0), color);
        const Pixel corner = import_.Image().At(0, 0);
        EXPECT_TRUE(corner == row.first || (corner.a == 0 && row.first.a == 0)) << ColorFromPixel(corner);
        EXPECT_EQ(test::Must(clipboard_.Take()).Width(), row.overClipboard ? row.width : 1);
        EXPECT_FALSE(Exists("Bmptemptemp.bmp"));
        EXPECT_EQ(Exists("Xptemp.ico"), row.scratchStays);
    }
}

TEST_F(WorkingImages, AnIconThatTheFixedLayoutCannotTakeIsStillShown) {
    const auto ico = std::ranges::find(ExportFormatTable(), ".ico", &ExportFormat::suffix);
    Load("256.ico", test::Encode(*ico->codec, test::PhotoLike(256, 256)));
    EXPECT_EQ(import_.ImageWidth(), 256);
    EXPECT_EQ(export_.ImageWidth(), 256);
    ByteVector icon = IconFile(128, 128, 24);
    icon[12] = 0;  // many writers leave the depth to the image
    Load("depth 0.ico", icon);
    EXPECT_EQ(import_.ImageWidth(), 128);
    EXPECT_FALSE(Exists("Bmptemptemp.bmp"));
}

TEST(IconBitmap, LargeIconsBecomeBitmapsByTheirBytes) {
    const test::TemporaryFolder folder;
    struct Case {
        int bits;
        std::uint16_t offset;
    };
    for (const Case& row : {Case{1, 62}, {4, 118}, {8, 1078}, {24, 54}, {32, 54}}) {
        std::string source = folder.File("a.ico");
        test::WriteWhole(source, IconFile(128, 128, row.bits));
        bool converted = false;
        test::Must(
            PrepareIconBitmap(source, folder.File("a.bmp"), converted, {folder.File("scratch.ico"), 0}));
        EXPECT_TRUE(converted);
        const ByteVector bitmap = test::ReadWhole(folder.File("a.bmp"));
        ByteReader reader(bitmap);
        reader.Seek(2);
        EXPECT_EQ(reader.U32Le(), bitmap.size()) << row.bits;
        reader.Seek(10);
        EXPECT_EQ(reader.U16Le(), row.offset) << row.bits;
        reader.Seek(28);
        EXPECT_EQ(reader.U16Le(), row.bits <= 8 ? row.bits : 24) << row.bits;
        reader.Seek(34);
        EXPECT_EQ(reader.U32Le(), bitmap.size() - row.offset) << row.bits;
    }
}

TEST(IconBitmap, SizesFollowFromWidthAndDepth) {
    struct Case {
        int bits, rowSize, paletteBytes;
    };
    // 33 pixels wide and 2 high: the first column that needs another group of four bytes.
    for (const Case& row :
         {Case{1, 8, 8}, {4, 20, 64}, {8, 36, 1024}, {16, 68, 0}, {24, 100, 0}, {32, 132, 0}}) {
        const IconSizes sizes = IconImageSizes(33, 4, row.bits);
        EXPECT_EQ(sizes.rowSize, row.rowSize) << row.bits;
        EXPECT_EQ(sizes.paletteBytes, row.paletteBytes) << row.bits;
        EXPECT_EQ(sizes.maskBytes, 16) << row.bits;
        EXPECT_EQ(sizes.total, 40 + row.paletteBytes + 2 * row.rowSize + 16) << row.bits;
    }
    EXPECT_EQ(BitmapImageSize(2000, 1, "Bmp"), 1992);
    EXPECT_EQ(BitmapImageSize(2000, 4, "icon"), 1896);
}

TEST(IconBitmap, AnIconWithoutAlphaTellsItsSizes) {
    ByteVector icon = IconFile(3, 2, 32);
    icon[62 + 4 * 3] = 99;  // the first pixel of the second row in the file
    const ByteVector made = test::Must(AlphaIconTo24(icon));
    ASSERT_EQ(made.size(), 94u) << "record and header, two rows of 12 bytes, two rows of mask";
    ByteReader reader(made);
    const auto at = [&](std::size_t offset, int size) {
        reader.Seek(offset);
        return size == 2 ? reader.U16Le() : reader.U32Le();
    };
    EXPECT_EQ(at(12, 2), 24u);
    EXPECT_EQ(at(14, 4), 72u);
    EXPECT_EQ(at(22 + 14, 2), 24u);
    EXPECT_EQ(at(22 + 20, 4), 32u);
    EXPECT_EQ(made[62 + 12], 99);
    EXPECT_EQ(made[62 + 24], 0x80) << "the mask";
}

TEST_F(WorkingImages, ReloadDiscardsEveryEdit) {
    Load("a.bmp", test::Encode(*ExportFormatTable()[0].codec, test::Draw("RW")));
    export_.SetImage(test::Draw("KK"));
    session_.ExportChanged = true;
    test::WriteWhole(folder_.File("a.bmp"), test::Encode(*ExportFormatTable()[0].codec, test::Draw("GB")));
    image_.Reload();
    EXPECT_EQ(test::Sketch(export_.Image()), "GB") << "as the file is on disk now";
    EXPECT_FALSE(session_.ExportChanged);

    session_.ImagePath.clear();  // as after a paste
    session_.ExportChanged = true;
    export_.SetImage(test::Draw("KK"));
    host_.calls.clear();
    image_.Reload();
    EXPECT_EQ(test::Sketch(export_.Image()), "GB");
    EXPECT_TRUE(session_.ExportChanged) << "this road leaves it as it is";
    EXPECT_EQ(host_.calls, "labels viewers1 ");
}

}  // namespace
}  // namespace tessara
