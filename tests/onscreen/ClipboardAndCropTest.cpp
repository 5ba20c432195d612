#include "tests/onscreen/OnScreen.h"

namespace tessara {
namespace {

/// The other program is xclip.
class ClipboardAndCropOnScreen : public test::OnScreen {
  protected:
    const Picture picture_ = test::PhotoLikeWithAlpha(160, 120);

    /// Where a pixel of the import picture is on the screen; it is shown pixel for pixel.
    QPoint OnTheScreen(const QPoint& pixel) {
        const QWidget& view = *window_.Pane(0).viewport();
        const QPoint corner((view.width() - picture_.Width()) / 2, (view.height() - picture_.Height()) / 2);
        return view.mapToGlobal(corner + pixel);
    }
    void Crop(const QRect& pixels) {
        Pointer(OnTheScreen(pixels.topLeft()), "mousedown 1");
        Pointer(OnTheScreen(pixels.center()));
        Pointer(OnTheScreen(pixels.bottomRight()), "mouseup 1");
        EXPECT_TRUE(Becomes([&] { return window_.Export().Width() == pixels.width(); }));
    }
    static QByteArray Offered(const char* type) {
        return Run("xclip", {"-selection", "clipboard", "-out", "-target", type});
    }
    /// Has the other program offer a file's content under a media type.
    void Offer(const char* type, const ByteVector& content) {
        const std::string path = window_.folder.File("offered");
        test::WriteWhole(path, content);
        Run("xclip", {"-selection", "clipboard", "-in", "-target", type, QString::fromStdString(path)});
    }
    static Picture Decoded(const QByteArray& file, const char* extension) {
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(file.data());
        return test::Must(DecodeFile({bytes, static_cast<std::size_t>(file.size())}, extension));
    }
};

TEST_F(ClipboardAndCropOnScreen, ADragCropsAndTheCropGoesToOtherPrograms) {
    Load(picture_);
    Crop({QPoint(20, 15), QPoint(99, 74)});
    const Picture part = test::Must(picture_.Cropped(20, 15, 80, 60));
    EXPECT_EQ(test::LargestDifference(window_.Export(), part), 0);
    EXPECT_EQ(window_.session.UndoTop, 1);
    Shoot("crop");

    Key("ctrl+c");
    const QByteArray targets = Offered("TARGETS");
    EXPECT_TRUE(targets.contains("image/png\n") && targets.contains("image/bmp\n")) << targets.toStdString();
    EXPECT_EQ(test::LargestDifference(Decoded(Offered("image/png"), "png"), part), 0) << "with its alpha";
    EXPECT_EQ(test::LargestDifference(Decoded(Offered("image/bmp"), "bmp"), part.FlattenedOnWhite()), 0);
}

TEST_F(ClipboardAndCropOnScreen, WhatOtherProgramsOfferIsPasted) {
    const auto enabled = [this](bool expected) {
        return Becomes([&] { return window_.form.Menus().Enabled("mEdit", 1) == expected; });
    };
    struct Case {
        const char* type;
        ByteVector content;
        Picture pasted;
    };
    const std::string copied = window_.Write("copied.png", picture_);
    const ByteVector bitmap = test::Encode(*ExportFormatTable()[0].codec, picture_);
    const std::string link = "file://" + copied + "\r\n";
    const Case cases[] = {
        {"image/png", test::ReadWhole(copied), picture_},
        {"image/bmp", bitmap, picture_.FlattenedOnWhite()},
        {"text/uri-list", ByteVector(link.begin(), link.end()), picture_},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.type);
        Offer("text/plain", {'a'});
        EXPECT_TRUE(enabled(false));
        Offer(row.type, row.content);
        EXPECT_TRUE(enabled(true));
        window_.Pane(0).rastx().ClearImage();
        Key("ctrl+v");
        EXPECT_TRUE(Becomes([this] { return !window_.Import().Empty(); }));
        EXPECT_EQ(test::LargestDifference(window_.Import(), row.pasted), 0);
        EXPECT_EQ(test::LargestDifference(window_.Export(), row.pasted), 0);
    }
    Shoot("paste");
}

}  // namespace
}  // namespace tessara
