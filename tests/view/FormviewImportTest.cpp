#include "view/FormviewImport.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <filesystem>

#include "tests/view/RecordingViewHost.h"

namespace tessara {
namespace {

class FormviewImportTest : public testing::Test, protected test::RecordedViewing {
  protected:
    /// A list of files 1.bmp, 2.bmp, ... of 10 by 5, 20 by 5, ... pixels.
    void AddFiles(int count) {
        for (int i = 1; i <= count; ++i) AddFile(std::to_string(i) + ".bmp", 10 * i, 5);
    }
    FormviewImport& Open(int item) {
        Select(item);
        form_ = std::make_unique<FormviewImport>(surroundings);
        return *form_;
    }
    Rastx& Pane() { return form_->rastx1(0).rastx(); }
    QWidget* View() { return form_->rastx1(0).viewport(); }
    std::string Caption() { return form_->windowTitle().toStdString(); }
    std::string Text(QLabel* (ViewerToolbar::*label)() const) {
        return (form_->FrameToolBar1().*label)()->text().toStdString();
    }
    /// "30x8 Zoom: 150%"
    std::string Shown() {
        return std::to_string(Pane().ImageWidth()) + "x" + std::to_string(Pane().ImageHeight()) + " " +
               Text(&ViewerToolbar::LabelZoom);
    }
    /// "+" for each button that is on, "-" for one that is off.
    std::string Tools() {
        std::string text;
        for (int i = 0; i <= kFullScreen; ++i) text += form_->Imagetool(i)->isEnabled() ? '+' : '-';
        return text;
    }
    void Drag(const QPoint& from, const QPoint& to) {
        QTest::mousePress(View(), Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, QPointF(to), View()->mapToGlobal(QPointF(to)), Qt::NoButton,
                         Qt::LeftButton, {});
        QCoreApplication::sendEvent(View(), &move);
        QTest::mouseRelease(View(), Qt::LeftButton, {}, to);
    }
    /// Where a pixel of a small picture, which lies in the middle, is in the pane.
    QPoint At(int x, int y) {
        const Rastx& pane = Pane();
        return QPoint((View()->width() - pane.ImageWidth()) / 2 + x,
                      (View()->height() - pane.ImageHeight()) / 2 + y);
    }

    std::unique_ptr<FormviewImport> form_;
};

TEST_F(FormviewImportTest, WalksThroughTheList) {
    AddFiles(3);
    test::WriteWhole(window.keys[1], AsBytes("this is no picture"));
    Open(1);
    EXPECT_EQ(Caption(), window.keys[0] + "   [1/3]");
    EXPECT_EQ(Text(&ViewerToolbar::LabelPict), "Size: 10 x 5");
    EXPECT_EQ(Tools(), "-+++-++++");
    form_->Imagetool(kNext)->click();
    EXPECT_EQ(Shown(), "0x0 Zoom: 100%") << "no picture";
    EXPECT_EQ(Caption(), window.keys[1] + "   [2/3]");
    EXPECT_EQ(window.madeVisible, 2);
    form_->Imagetool(kNext)->click();
    EXPECT_EQ(Shown(), "30x5 Zoom: 100%");
    EXPECT_EQ(Tools(), "+-++-++++");
    EXPECT_FALSE(host.busy);
}

TEST_F(FormviewImportTest, WithoutAFileItShowsTheImportPane) {
    importPane.SetImage(test::Draw("KWKW"));
    form_ = std::make_unique<FormviewImport>(surroundings);
    EXPECT_EQ(Shown() + Caption(), "4x1 Zoom: 100%   [0/0]");
}

TEST_F(FormviewImportTest, EveryZoomStartsFromThePictureOnTheClipboard) {
    struct Row {
        std::vector<int> steps;
        const char* shown;
        const char* tools;  // zoom out and in
    };
    AddFiles(2);
    for (const Row& row : {Row{{kZoomIn, kZoomIn, kZoomIn}, "60x15 Zoom: 300%", "+-"},
                           Row{std::vector<int>(8, kZoomOut), "1x1 Zoom: 5%", "-+"},
                           Row{{kZoomOut, kZoomIn, kZoomIn}, "30x8 Zoom: 150%", "++"}}) {
        Open(2);
        for (const int step : row.steps) form_->Imagetool(step)->click();
        EXPECT_EQ(Shown(), row.shown);
        EXPECT_EQ(Tools().substr(kZoomOut, 2), row.tools);
    }
    form_->Imagetool(kPrevious)->click();
    EXPECT_EQ(Shown(), "10x5 Zoom: 100%") << "the level waits";
    clipboard.Put(test::Draw("RR RR"));
    form_->Zoom(kZoomIn);
    EXPECT_EQ(Shown(), "20x10 Zoom: 200%") << "of another program's picture, at the size of ours";
    EXPECT_EQ(Pane().Image().At(19, 9), PixelFromColor(RGB(255, 0, 0)));
}

TEST_F(FormviewImportTest, DeletesFromTheListFirstAndThenFromTheDiskIfWanted) {
    AddFiles(4);
    const std::vector<std::string> keys = window.keys;
    Open(3);
    for (const auto& [answer, shown] : {std::pair{Answer::No, "40x5"}, {Answer::Yes, "40x5"}}) {
        prompts.answers = {answer};
        form_->Imagetool(kDelete)->click();
        EXPECT_TRUE(Shown().starts_with(shown)) << "the last one stays on view";
    }
    EXPECT_EQ(
        prompts.asked.at(0).text,
        "This file has been deleted from the Current List.\n\nDo you want to delete it from your disk?");
    EXPECT_EQ(window.keys.size(), 2u);
    EXPECT_TRUE(std::filesystem::exists(keys[2]));
    EXPECT_FALSE(std::filesystem::exists(keys[3]));
    form_->Imagetool(kDelete)->click();
    EXPECT_EQ(prompts.asked.size(), 2u) << "behind the last item there is nothing to delete";
}

TEST_F(FormviewImportTest, ARectangleBecomesTheExportPicture) {
    AddFile("photo.bmp", 100, 80);
    Open(1);
    session.SelectionActive = true;
    QTest::mousePress(View(), Qt::LeftButton, {}, At(10, 20));
    EXPECT_EQ(Text(&ViewerToolbar::LabelXY), "10,20");
    EXPECT_FALSE(session.SelectionActive) << "the main window's band is given up";
    Drag(At(50, 60), At(21, 41));
    EXPECT_TRUE(session.SelectionViewActive);
    EXPECT_EQ(exportPane.ImageWidth(), 30);
    EXPECT_EQ(exportPane.ImageHeight(), 20);
    EXPECT_EQ(Text(&ViewerToolbar::LabelXY) + " " + Text(&ViewerToolbar::LabelWH), "21,41 30 x 20");
    EXPECT_EQ(window.labelXY + " " + window.labelWH, "21,41 30 x 20");
    EXPECT_TRUE(session.ExportChanged);
    selection.rastx1_ImageMouseDown(0);
    EXPECT_FALSE(session.SelectionViewActive);
    EXPECT_FALSE(Pane().HasSelection());
}

TEST_F(FormviewImportTest, ARectangleGoesWithItsPicture) {
    AddFile("1.bmp", 100, 80);
    AddFile("2.bmp", 100, 80);
    Open(1);
    for (const int tool : {kZoomIn, kZoomOut, kNext}) {
        Drag(At(10, 10), At(40, 30));
        EXPECT_TRUE(session.SelectionViewActive);
        form_->Imagetool(tool)->click();
        EXPECT_FALSE(session.SelectionViewActive || Pane().HasSelection()) << tool;
        EXPECT_EQ(Text(&ViewerToolbar::LabelXY) + Text(&ViewerToolbar::LabelWH), "") << tool;
    }
}

TEST_F(FormviewImportTest, ARunningShowGoesOnByKeyAndClick) {
    AddFiles(9);
    session.SlideOptions.SlideAuto = 0;
    Open(1);
    QWidget* const strip = form_->FrameToolBar1().PictureToolBack();
    const auto click = [](QWidget* widget, QPoint at) { QTest::mouseClick(widget, Qt::LeftButton, {}, at); };
    const std::function<void()> kSteps[] = {
        [&] { QTest::keyClick(form_.get(), Qt::Key_Space); },
        [&] { click(View(), At(1, 1)); },
        [&] { click(View(), QPoint(5, 5)); },  // beside the picture
        [&] { Q_EMIT form_->rastx1(0).ImageRightClick(); },
        [&] { click(strip, QPoint(400, 10)); },
    };
    int index = 1;
    for (const auto& step : kSteps) {
        step();
        EXPECT_EQ(form_->ListIndex(), index) << "without a show";
        form_->StartSlide();
        QTest::keyRelease(form_.get(), Qt::Key_Return);
        EXPECT_EQ(form_->ListIndex(), index) << "the key that chose the show in a menu";
        step();
        EXPECT_EQ(form_->ListIndex(), ++index);
        form_->StartSlide();
    }
}

TEST_F(FormviewImportTest, SlidesMayBeShrunkToThePane) {
    AddFiles(1);
    AddFile("large.bmp", 2000, 1000);
    Open(2).resize(506, 450);
    session.SlideOptions.SlideResize = 1;
    form_->SlideShowNow();
    EXPECT_EQ(Shown(), "496x396 Zoom: 24%");
    form_->SlideShowNow();
    EXPECT_EQ(Shown(), "10x5 Zoom: 100%");
    session.SlideOptions.SlideResize = 0;
    form_->SlideShowNow();
    EXPECT_EQ(Shown(), "2000x1000 Zoom: 100%");
}

TEST_F(FormviewImportTest, TheWindowsStateIsThatOfItsButtons) {
    AddFiles(2);
    Open(1).Imagetool(kFullScreen)->click();
    EXPECT_TRUE(form_->isMaximized());
    EXPECT_EQ(Tools(), "-+++++++-");
    QTest::mouseDClick(View(), Qt::LeftButton, {}, At(1, 1));
    EXPECT_FALSE(form_->isMaximized());
    session.SlideOptions.SlideFullScreen = 1;
    form_->Imagetool(kSlideShow)->click();
    EXPECT_EQ(form_->Imagetool(kSlideShow)->toolTip(), QStringLiteral("Stop Slide Show"));
    EXPECT_EQ(Tools(), "--+-+----");
}

TEST_F(FormviewImportTest, ClosingEndsEverything) {
    AddFiles(3);
    Open(2).StartSlide();
    QTest::mouseDClick(&form_->FrameToolBar1(), Qt::LeftButton, {}, {300, 12});
    EXPECT_TRUE(session.ViewImportOpen);
    QTest::mouseDClick(form_.get(), Qt::LeftButton, {}, {5, form_->height() - 5});
    EXPECT_FALSE(session.ViewImportOpen || session.SlideRunning);
    clock.Advance(100'000);
    EXPECT_EQ(form_->ListIndex(), 2) << "the timer has stopped";
}

TEST_F(FormviewImportTest, LabelsKeepToTheRightEndAndGiveWayToLargeNumbers) {
    const std::vector<QLabel* (ViewerToolbar::*)() const> kLabels = {
        &ViewerToolbar::LabelPict, &ViewerToolbar::LabelZoom, &ViewerToolbar::LabelXY,
        &ViewerToolbar::LabelWH};
    const auto lefts = [&] {
        std::vector<int> places;
        for (const auto label : kLabels) places.push_back((form_->FrameToolBar1().*label)()->x());
        return places;
    };
    AddFile("small.bmp", 3, 3);
    AddFile("large.bmp", 20000, 3);
    Open(1).setFont(QFont(QStringLiteral("DejaVu Sans"), 6));
    for (const auto& [width, right] : {std::pair{800, 800}, {576, 576}, {400, 575}}) {
        form_->resize(width, 400);
        EXPECT_EQ(lefts(), (std::vector<int>{right - 350, right - 235, right - 130, right - 45})) << width;
    }
    Open(2).setFont(QFont(QStringLiteral("DejaVu Sans"), 12));
    form_->resize(400, 400);
    Drag({0, 0}, {100, 100});
    form_->Zoom(kZoomOut);
    const std::vector<int> places = lefts();
    EXPECT_GE(places[0], form_->Imagetool(kDelete)->geometry().right());
    for (std::size_t i = 0; i + 1 < kLabels.size(); ++i) {
        const QLabel* const label = (form_->FrameToolBar1().*kLabels[i])();
        EXPECT_LE(places[i] + label->sizeHint().width(), places[i + 1]) << label->text().toStdString();
    }
}

}  // namespace
}  // namespace tessara
