#include "desktop/ClipboardCarrier.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QMimeData>
#include <QUrl>

#include "desktop/PictureImage.h"
#include "tests/Support.h"

namespace tessara {
namespace {

class ClipboardCarrierTest : public testing::Test {
  protected:
    ~ClipboardCarrierTest() override { clipboard_.clear(); }

    void OtherProgramCopies(const char* format, const ByteVector& bytes) {
        auto* const data = new QMimeData;
        data->setData(QLatin1String(format), QByteArray(reinterpret_cast<const char*>(bytes.data()),
                                                        static_cast<qsizetype>(bytes.size())));
        clipboard_.setMimeData(data);
    }
    void OtherProgramCopiesFile(const std::string& path) {
        auto* const data = new QMimeData;
        data->setUrls({QUrl::fromLocalFile(QStringLiteral("/none.txt")),
                       QUrl::fromLocalFile(QString::fromStdString(path))});
        clipboard_.setMimeData(data);
    }
    ByteVector FileOf(const char* extension) {
        return test::Encode(*FindCodec({}, extension), test::Draw("RG BW"));
    }
    std::string Taken() {
        const auto picture = carrier_.Take();
        return picture ? test::Sketch(picture.Value()) : "nothing";
    }

    QClipboard& clipboard_ = *QApplication::clipboard();
    ClipboardCarrier carrier_{clipboard_};
};

TEST_F(ClipboardCarrierTest, AMoveWithinTheProcessCopiesNoPixel) {
    const Picture picture = test::PhotoLikeWithAlpha(40, 30);
    carrier_.Put(picture);
    EXPECT_TRUE(carrier_.HasPicture());
    EXPECT_EQ(test::Must(carrier_.Take()).Pixels().data(), picture.Pixels().data());
}

TEST_F(ClipboardCarrierTest, OtherProgramsGetPngWithAlphaABitmapAndAnImage) {
    const Picture picture = test::PhotoLikeWithAlpha(40, 30);
    carrier_.Put(picture);
    const QMimeData& data = *clipboard_.mimeData();
    const auto decoded = [&](const char* format, const char* extension) {
        const QByteArray file = data.data(QLatin1String(format));
        return test::Must(DecodeFile(
            {reinterpret_cast<const std::uint8_t*>(file.data()), static_cast<std::size_t>(file.size())},
            extension));
    };
    EXPECT_EQ(test::LargestDifference(decoded("image/png", "png"), picture), 0);
    EXPECT_EQ(test::LargestDifference(decoded("image/bmp", "bmp"), picture.FlattenedOnWhite()), 0);
    EXPECT_EQ(
        test::LargestDifference(test::Must(PictureOf(qvariant_cast<QImage>(data.imageData()))), picture), 0);
    EXPECT_TRUE(data.text().isEmpty());
}

TEST_F(ClipboardCarrierTest, PicturesOfOtherProgramsAreTaken) {
    const test::TemporaryFolder folder;
    test::WriteWhole(folder.File("a.TGA"), FileOf("tga"));
    struct Row {
        const char* name;
        std::function<void()> copy;
        const char* taken;
    };
    const ByteVector broken = test::Hex("89504e47");
    const Row kRows[] = {
        {"png", [&] { OtherProgramCopies("image/png", FileOf("png")); }, "RG BW"},
        {"bmp", [&] { OtherProgramCopies("image/bmp", FileOf("bmp")); }, "RG BW"},
        {"an image", [&] { clipboard_.setImage(SharedImage(test::Draw("YM CK"))); }, "YM CK"},
        {"a copied file", [&] { OtherProgramCopiesFile(folder.File("a.TGA")); }, "RG BW"},
        {"a broken picture", [&] { OtherProgramCopies("image/png", broken); }, "nothing"},
    };
    for (const Row& row : kRows) {
        carrier_.Put(test::Draw("K"));
        row.copy();
        EXPECT_TRUE(carrier_.HasPicture()) << row.name;
        EXPECT_EQ(Taken(), row.taken) << row.name;
    }
}

TEST_F(ClipboardCarrierTest, OtherDataAreNoPicture) {
    int changes = 0;
    carrier_.Changed = [&] { ++changes; };
    carrier_.Put(test::Draw("K"));
    clipboard_.setText(QStringLiteral("text"));
    EXPECT_FALSE(carrier_.HasPicture());
    EXPECT_EQ(Taken(), "nothing");
    OtherProgramCopiesFile("/letter.odt");
    EXPECT_FALSE(carrier_.HasPicture());
    EXPECT_EQ(changes, 3);
}

TEST_F(ClipboardCarrierTest, ARefusedClipboardIsStoodInFor) {
    carrier_.Put(test::Draw("RG BW"));
    clipboard_.clear();
    EXPECT_TRUE(carrier_.HasPicture());
    EXPECT_EQ(Taken(), "RG BW");
}

TEST(PictureImage, KeepsThePictureAliveWithoutACopy) {
    QImage image;
    const Pixel* pixels = nullptr;
    {
        const Picture picture = test::PhotoLike(33, 7);
        pixels = picture.Pixels().data();
        image = SharedImage(picture);
    }
    EXPECT_EQ(static_cast<const void*>(image.constBits()), pixels);
    EXPECT_EQ(test::LargestDifference(test::Must(PictureOf(image)), test::PhotoLike(33, 7)), 0);
    EXPECT_TRUE(SharedImage(Picture()).isNull());
    EXPECT_FALSE(PictureOf(QImage()));
}

TEST(PictureImage, ImagesOfOtherFormatsAreConverted) {
    QImage indexed(3, 1, QImage::Format_Indexed8);
    indexed.setColorTable({qRgb(255, 0, 0), qRgba(0, 0, 0, 0)});
    indexed.fill(0);
    indexed.setPixel(1, 0, 1);
    EXPECT_EQ(test::Sketch(test::Must(PictureOf(indexed))), "R.R");
    const QImage premultiplied = indexed.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    EXPECT_EQ(test::Sketch(test::Must(PictureOf(premultiplied))), "R.R");
    EXPECT_FALSE(test::Must(PictureOf(QImage(2, 2, QImage::Format_RGB888))).HasAlpha());
}

}  // namespace
}  // namespace tessara
