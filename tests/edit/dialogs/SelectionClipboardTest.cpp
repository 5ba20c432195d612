#include "edit/dialogs/SelectionClipboard.h"

#include <gtest/gtest.h>

#include "desktop/Screen.h"
#include "tests/edit/RecordingEditHost.h"

namespace tessara {
namespace {

class RecordingSelectionHost final : public SelectionHost {
  public:
    std::string calls;
    std::string labelXY, labelWH, labelPict, toolTip;

    void SetLabelXY(const std::string& text) override { labelXY = text; }
    void SetLabelWH(const std::string& text) override { labelWH = text; }
    void SetImportToolTip(const std::string& text) override { toolTip = text; }
    void SetLabelPict(const std::string& text) override { labelPict = text; }
    void Setvalid(bool valid) override { calls += valid ? "valid " : "invalid "; }
    void BringDialog2ToFront() override { calls += "front "; }
    void PopMenu(const std::string& selector) override { calls += "menu:" + selector + " "; }
    void OpenImportViewer() override { calls += "import viewer "; }
    void OpenExportViewer() override { calls += "export viewer "; }
};

/// The import pane holds a picture of 40 by 30, the export pane one of 4 by 3.
class SelectionClipboardTest : public testing::Test {
  protected:
    test::RecordedEditor recorded_{test::PhotoLike(4, 3)};
    Session& session_ = recorded_.session;
    ScriptedScreen screen_;
    Rastx import_{
        {.carrier = &recorded_.clipboard, .captureScreen = [this] { return screen_.CaptureAll(); }}};
    ScriptedPrompts prompts_;
    RecordingSelectionHost host_;
    SelectionClipboard selection_{recorded_.editor, import_, prompts_, host_};

    SelectionClipboardTest() {
        import_.SetImage(test::PhotoLike(40, 30));
        screen_.desktop = test::PhotoLike(64, 48);
    }

    /// What the mouse does when it is pressed at one place and released at another.
    void Drag(int left, int top, int right, int bottom) {
        import_.MoveMouse(left, top);
        selection_.rastx1_ImageMouseDown(0);
        import_.MoveMouse(right, bottom);
        selection_.rastx1_ImageMouseMove(0);
        import_.EndSelect();
        selection_.rastx1_ImageMouseUp(0);
    }
    const Picture& Export() const { return recorded_.exportPane.Image(); }
    bool MenuEnabled(const char* menu, int index) const { return recorded_.host.menus.at({menu, index}); }
    bool Has(const char* menu, int index) const { return recorded_.host.menus.contains({menu, index}); }
};

TEST_F(SelectionClipboardTest, ABandCropsWhereItsEdgesAreApartEnough) {
    struct Case {
        int left, top, right, bottom;
        bool crops;
    };
    const Case cases[] = {
        {10, 10, 10, 10, false}, {10, 5, 11, 25, false}, {10, 10, 13, 12, false},
        {10, 10, 13, 13, true},  {13, 13, 10, 10, true}, {30, 20, 99, 99, true},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.right);
        recorded_.undo.UndoRefresh("KILL");
        recorded_.exportPane.SetImage(test::PhotoLike(4, 3));
        session_.SelectionActive = session_.ExportChanged = session_.UndoPending = false;
        recorded_.host.menus.clear();
        Drag(row.left, row.top, row.right, row.bottom);
        EXPECT_EQ(session_.SelectionActive, row.crops);
        EXPECT_EQ(import_.HasSelection(), row.crops);
        EXPECT_EQ(session_.ExportChanged && session_.UndoPending, row.crops);
        EXPECT_EQ(session_.UndoTop, row.crops ? 1 : 0);
        EXPECT_EQ(Has("mEdit", 0), row.crops);
        if (!row.crops) {
            EXPECT_EQ(Export().Width(), 4);
            continue;
        }
        const int left = std::min(row.left, row.right), top = std::min(row.top, row.bottom);
        const Picture part =
            test::Must(import_.Image().Cropped(left, top, Export().Width(), Export().Height()));
        EXPECT_EQ(test::LargestDifference(Export(), part), 0);
        EXPECT_EQ(recorded_.host.calls.back(), "PutviewExport 1");
    }
}

TEST_F(SelectionClipboardTest, LabelsAndToolTipFollowTheBand) {
    import_.MoveMouse(20, 12);
    selection_.rastx1_ImageMouseDown(0);
    EXPECT_EQ(host_.labelXY, "20,12");
    import_.MoveMouse(8, 12);
    selection_.rastx1_ImageMouseMove(0);
    EXPECT_EQ(host_.labelWH, "") << "without a height it is no rectangle";
    import_.MoveMouse(8, 10);
    selection_.rastx1_ImageMouseMove(0);
    EXPECT_EQ(host_.labelWH, "13 x 3");
    EXPECT_EQ(host_.toolTip, "");
    import_.MoveMouse(8, 2);
    selection_.rastx1_ImageMouseUp(0);
    EXPECT_EQ(host_.labelXY, "8,2");
    EXPECT_EQ(host_.labelWH, "13 x 11");
    EXPECT_EQ(host_.toolTip, "Import Image... Double-Click to open a new window");
}

TEST_F(SelectionClipboardTest, TheViewersBandAndThisOneGiveWayToEachOther) {
    Rastx viewer{{.carrier = &recorded_.clipboard}};
    viewer.SetImage(test::PhotoLike(20, 20));
    RecordingSelectionHost viewerLabels;
    bool viewerActive = false;
    SelectionGesture gesture(recorded_.editor, viewer, viewerLabels, viewerActive);
    selection_.SetViewerGesture(&gesture);

    Drag(5, 5, 20, 20);
    viewer.MoveMouse(2, 2);
    gesture.ImageMouseDown(&selection_.ImportGesture());
    EXPECT_FALSE(import_.HasSelection());
    EXPECT_FALSE(session_.SelectionActive);
    viewer.MoveMouse(11, 7);
    gesture.ImageMouseUp();
    EXPECT_TRUE(viewerActive);
    EXPECT_EQ(viewerLabels.labelWH, "10 x 6");
    EXPECT_EQ(Export().Width(), 10);

    selection_.rastx1_ImageMouseDown(0);
    EXPECT_FALSE(viewer.HasSelection());
    EXPECT_FALSE(viewerActive);
}

TEST_F(SelectionClipboardTest, TheExportPaneHasNoBandButAMenuAndAViewer) {
    selection_.rastx1_ImageMouseDown(1);
    EXPECT_FALSE(recorded_.exportPane.HasSelection());
    for (const int index : {0, 1}) {
        selection_.rastx1_ImageRightClick(index);
        selection_.rastx1_ImageDblClick(index);
    }
    EXPECT_EQ(host_.calls, "front import viewer front menu:RST export viewer ");
}

TEST_F(SelectionClipboardTest, CopyTakesTheExportPictureAndEnablesPaste) {
    selection_.mEdit_Click(0);
    EXPECT_EQ(test::LargestDifference(test::Must(recorded_.clipboard.Take()), Export()), 0);
    EXPECT_TRUE(MenuEnabled("mEdit", 1) && recorded_.host.imageTools.at(7));
    EXPECT_EQ(host_.labelPict, "");
    selection_.CheckPaste(false);
    EXPECT_FALSE(MenuEnabled("mEdit", 1) || recorded_.host.imageTools.at(7));
}

TEST_F(SelectionClipboardTest, PasteFillsBothPanesWithAPictureWithoutAFile) {
    Drag(5, 5, 20, 20);
    session_.ExportChanged = false;
    session_.ImagePath = "/a.png";
    recorded_.clipboard.Put(test::PhotoLike(9, 7));
    selection_.mEdit_Click(1);
    for (const Picture& shown : {import_.Image(), Export()})
        EXPECT_EQ(test::LargestDifference(shown, test::PhotoLike(9, 7)), 0);
    EXPECT_FALSE(import_.HasSelection());
    EXPECT_EQ(host_.labelXY + host_.labelWH, "");
    EXPECT_EQ(session_.ImagePath, "");
    EXPECT_EQ(host_.calls, "valid ");
    EXPECT_FALSE(MenuEnabled("mTransform", 1) || MenuEnabled("mTransform", 2));
    EXPECT_TRUE(session_.UndoPending);
    EXPECT_FALSE(session_.ExportChanged);
    EXPECT_EQ(host_.labelPict, "Size : 9 x 7");
    EXPECT_EQ(host_.toolTip, "Drag out a rectangle to select");
    EXPECT_EQ(recorded_.host.calls,
              (std::vector<std::string>{"PutviewExport 1", "StopCapture", "PutviewExport 2"}));
}

TEST_F(SelectionClipboardTest, WithoutABitmapThePanesStayAndTheRestHappens) {
    session_.ImagePath = "/a.png";
    selection_.mEdit_Click(1);
    EXPECT_EQ(import_.ImageWidth(), 40);
    EXPECT_EQ(Export().Width(), 4);
    EXPECT_EQ(session_.ImagePath, "");
    EXPECT_EQ(host_.calls, "valid ");
}

TEST_F(SelectionClipboardTest, OtherEntriesFillThePanesToo) {
    Drag(5, 5, 20, 20);
    session_.ExportChanged = false;
    selection_.mEdit_Click(3);
    EXPECT_EQ(Export().Width(), 40) << "the whole import picture";
    EXPECT_EQ(host_.labelXY + host_.labelWH, "");
    selection_.mEdit_Click(6);
    EXPECT_EQ(import_.ImageWidth(), 64) << "the entire screen";
    EXPECT_EQ(host_.labelPict, "Size : 64 x 48");
    EXPECT_TRUE(session_.UndoPending);
    recorded_.host.calls.clear();
    selection_.mEdit_Click(5);
    EXPECT_EQ(recorded_.host.calls, std::vector<std::string>{"Imagetool_Click 11"});
}

TEST_F(SelectionClipboardTest, UnsavedChangesAreAskedAboutAndKeptOnNo) {
    recorded_.clipboard.Put(test::PhotoLike(9, 7));
    for (const int index : {1, 3, 6}) {
        session_.ExportChanged = true;
        prompts_.answers = {Answer::No};
        selection_.mEdit_Click(index);
        EXPECT_EQ(Export().Width(), 4) << index;
        EXPECT_EQ(import_.ImageWidth(), 40);
        EXPECT_EQ(session_.UndoTop, 0);
        EXPECT_TRUE(session_.ExportChanged);
    }
    ASSERT_EQ(prompts_.asked.size(), 3U);
    EXPECT_EQ(prompts_.asked[0].text, "The Export Image has been changed and not saved. Continue anyway?");
    EXPECT_EQ(prompts_.asked[0].buttons, PromptButtons::YesNo);
    EXPECT_EQ(prompts_.asked[0].icon, PromptIcon::Warning);

    prompts_.answers = {Answer::Yes};
    selection_.mEdit_Click(3);
    EXPECT_EQ(Export().Width(), 40);
    selection_.mEdit_Click(3);
    EXPECT_EQ(prompts_.asked.size(), 4U) << "nothing is unsaved now";
}

}  // namespace
}  // namespace tessara
