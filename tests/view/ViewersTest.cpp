#include "view/Viewers.h"

#include <gtest/gtest.h>

#include <QTest>

#include "tests/view/RecordingViewHost.h"

namespace tessara {
namespace {

class ViewersTest : public testing::Test, protected test::RecordedViewing {
  protected:
    ViewersTest() {
        for (const char* name : {"1.bmp", "2.bmp"}) AddFile(name, 40, 30);
        Select(1);
        importPane.SetImage(test::Draw("KW KW"));
    }
    /// Three quarters of the screen, in its middle.
    static QRect FirstPlace(const QWidget& viewer) {
        const QRect screen = viewer.screen()->geometry();
        return {screen.topLeft() + QPoint(screen.width(), screen.height()) / 8, screen.size() * 0.75};
    }
    std::string Exported() { return test::Sketch(viewers_.Export()->rastx1(0).rastx().Image()); }

    Viewers viewers_{surroundings};
};

TEST_F(ViewersTest, OneOpensTheOtherAndEachOnlyOnce) {
    EXPECT_EQ(viewers_.Import(), nullptr);
    viewers_.ShowFormviewImport();
    FormviewImport* const import = viewers_.Import();
    QTest::keyClick(import, Qt::Key_F6);
    EXPECT_EQ(viewers_.Export(), nullptr);
    QTest::keyClick(import, Qt::Key_F7);
    ASSERT_NE(viewers_.Export(), nullptr);
    EXPECT_TRUE(session.ViewExportOpen);
    for (const QWidget* viewer : std::initializer_list<QWidget*>{import, viewers_.Export()})
        EXPECT_EQ(QRect(viewer->pos(), viewer->size()), FirstPlace(*viewer))
            << viewer->objectName().toStdString();
    for (const RastxPane* pane : {&import->rastx1(0), &viewers_.Export()->rastx1(0)})
        EXPECT_EQ(pane->ViewMode(), 2) << "pixel for pixel";
    QTest::keyClick(viewers_.Export(), Qt::Key_F7);
    import->showMinimized();
    QTest::keyClick(viewers_.Export(), Qt::Key_F6);
    EXPECT_EQ(viewers_.Import(), import);
    EXPECT_FALSE(import->isMinimized());
    QTest::keyClick(import, Qt::Key_Escape);
    EXPECT_EQ(viewers_.Import(), nullptr);
    QTest::keyClick(viewers_.Export(), Qt::Key_F6);
    EXPECT_NE(viewers_.Import(), nullptr) << "open again before the closed one is deleted";
    EXPECT_TRUE(session.ViewImportOpen);
    viewers_.Import()->close();
    viewers_.Export()->close();
    EXPECT_FALSE(session.ViewImportOpen || session.ViewExportOpen);
}

TEST_F(ViewersTest, TheExportViewerMirrorsByWayOfTheClipboard) {
    viewers_.ShowFormviewExport();
    EXPECT_EQ(Exported(), "RGB");
    exportPane.SetImage(test::Draw("BB"));
    EXPECT_EQ(Exported(), "RGB");
    viewers_.PutviewExport(1);
    EXPECT_EQ(Exported(), "BB");
    clipboard.Put(test::Draw("K"));
    viewers_.Export()->resize(300, 200);
    EXPECT_EQ(viewers_.Export()->rastx1(0).geometry(), QRect(2, 6, 288, 165));
    EXPECT_EQ(test::Sketch(test::Must(clipboard.Take())), "BB") << "a resize refreshes";
}

TEST_F(ViewersTest, PutviewExportReachesTheViewersAskedFor) {
    viewers_.ShowFormviewImport();
    viewers_.ShowFormviewExport();
    Rastx& import = viewers_.Import()->rastx1(0).rastx();
    Rastx& exported = viewers_.Export()->rastx1(0).rastx();
    for (const auto& [which, widths] : {std::pair{0, "2 0"}, {1, "0 3"}, {2, "2 3"}}) {
        import.ClearImage();
        exported.ClearImage();
        window.focused = 0;
        viewers_.PutviewExport(which);
        EXPECT_EQ(std::to_string(import.ImageWidth()) + " " + std::to_string(exported.ImageWidth()), widths);
        EXPECT_GT(window.focused, 0);
    }
}

TEST_F(ViewersTest, TheImageViewerTellsWhatItMirrors) {
    AddFile("3.bmp", 20, 10);
    viewers_.ShowFormviewImport();
    FormviewImport& viewer = *viewers_.Import();
    const auto told = [&] {
        return viewer.FrameToolBar1().LabelPict()->text() + viewer.windowTitle() + QLatin1Char(' ') +
               QString::number(viewer.Imagetool(kPrevious)->isEnabled()) +
               QString::number(viewer.Imagetool(kNext)->isEnabled());
    };
    const auto name = [&](int item) { return QString::fromStdString(window.ItemKey(item)); };
    EXPECT_EQ(told(), QStringLiteral("Size: 40 x 30") + name(1) + QStringLiteral("   [1/3] 01"));
    Select(3);
    importPane.SetImage(test::Draw("KWK"));
    viewers_.PutviewExport(0);
    EXPECT_EQ(told(), QStringLiteral("Size: 3 x 1") + name(3) + QStringLiteral("   [3/3] 10"));
    viewer.Zoom(kZoomIn);
    EXPECT_EQ(viewer.rastx1(0).rastx().ImageWidth(), 4) << "150 % of this picture";

    session.ImagePath.clear();  // as after a paste
    viewers_.PutviewExport(2);
    EXPECT_EQ(told(), QStringLiteral("Size: 3 x 1   [3/3] 10"));
    Select(2);
    viewer.StartSlide();
    viewers_.PutviewExport(2);
    EXPECT_EQ(told(), QStringLiteral("Size: 3 x 1") + name(2) + QStringLiteral("   [3/3] 00"))
        << "a running show keeps its place";
}

TEST_F(ViewersTest, TheSlideShowOpensItsStage) {
    viewers_.SlidesToFront();
    viewers_.StartSlideShow();
    EXPECT_TRUE(session.SlideRunning);
    viewers_.StartSlideShow();
    EXPECT_TRUE(session.SlideRunning) << "one that runs goes on";
    viewers_.Import()->showMaximized();
    viewers_.SlidesToFront();
    EXPECT_FALSE(viewers_.Import()->isMaximized());
}

}  // namespace
}  // namespace tessara
