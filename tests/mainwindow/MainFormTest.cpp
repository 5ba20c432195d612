#include <QDropEvent>
#include <QMimeData>
#include <QTabWidget>
#include <QTimer>
#include <QUrl>

#include "settings/RecentPaths.h"
#include "settings/SettingsFile.h"
#include "tests/mainwindow/DrivenMainForm.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;
using test::Names;

class MainFormTest : public test::DrivenMainForm {
  protected:
    const SettingsFile settings_{app_ + "/ts40.cfg"};
    const std::string recent_ = app_ + "/Recentlyused.src";

    void StartIn(const std::string& folder) const {
        ConvertOptions options = ConvertOptions::FirstRun(app_);
        options.StartFolder = FolderField(folder);
        test::Must(settings_.Write(options));
    }
};

TEST_F(MainFormTest, AFirstRunStartsInItsOwnFolderAndMakesItsFiles) {
    MakePicture("app/a.bmp", 3);
    fs::create_directory(app_ + "/Undo");
    test::WriteWhole(app_ + "/Undo/1.bmp", AsBytes("of a former run"));
    ASSERT_TRUE(Load());
    EXPECT_TRUE(form_->isVisible());
    EXPECT_FALSE(session_.Starting);
    EXPECT_EQ(fs::file_size(settings_.Path()), 808u);
    EXPECT_TRUE(fs::is_empty(app_ + "/Undo"));
    EXPECT_EQ(Caption(), "Tessara Pro v4.0 -> " + app_);
    EXPECT_EQ(form_->Box().Text(), app_);
    EXPECT_EQ(Rows(), Names{"a.bmp"});
    EXPECT_EQ(Panel(1), "Total 1 File (.1 KB)");
    EXPECT_EQ(Label("Statusico1"),
              "Current Options : Convert Selected Files to BMP, GIF, JPG, PNG, WBMP, EMF, TGA, TIF, WMF, ICO "
              "images.");
    EXPECT_FALSE(Control("CommandCon(1)").isEnabled());
    EXPECT_TRUE(desktop_.prompts.asked.empty());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(MainFormTest, TheStripShowsWhatItsButtonsLeaveRoomFor) {
    ASSERT_TRUE(Load());
    form_->SetLabelXY("10,20");
    form_->SetLabelWH("3000 x 2000");
    struct Row {
        int width;
        bool position;
        bool size;
    };
    for (const Row& row :
         {Row{1000, true, true}, Row{600, true, false}, Row{700, true, false}, Row{800, true, true}}) {
        form_->resize(row.width, 600);
        EXPECT_EQ(Control("LabelXY").isVisible(), row.position) << row.width;
        EXPECT_EQ(Control("LabelWH").isVisible(), row.size) << row.width;
        EXPECT_EQ(Control("Image2").isVisible(), row.size) << row.width;
    }
    form_->SetLabelWH("");
    EXPECT_FALSE(Control("Image2").isVisible());
}

TEST_F(MainFormTest, StartsInTheFolderOfTheSettingsWithTheRecentPaths) {
    MakePicture("photos/b.bmp", 3);
    StartIn(disk_ + "/photos");
    test::Must(WriteRecentPaths(recent_, {disk_ + "/photos/old", "/gone"}));
    ASSERT_TRUE(Load());
    EXPECT_EQ(Rows(), Names{"b.bmp"});
    EXPECT_EQ(Box().count(), 3);
    EXPECT_EQ(Box().itemText(1), QStringLiteral("/gone"));
    EXPECT_EQ(Box().currentText().toStdString(), disk_ + "/photos");
    EXPECT_EQ(Caption(), "Tessara Pro v4.0 -> " + disk_ + "/photos");
    EXPECT_EQ(Label("Statusico1"), "Current Options : Convert Selected Files to GIF, JPG images.");
}

TEST_F(MainFormTest, ABadStartFolderIsToldAndTheOptionsOpenWhereItIsChanged) {
    StartIn(disk_ + "/gone");
    int page = -1;
    QTimer opened;
    QObject::connect(&opened, &QTimer::timeout, &opened, [&page] {
        QWidget* options = QApplication::activeModalWidget();
        if (options == nullptr) return;
        page = options->findChild<QTabWidget*>()->currentIndex();
        options->close();
    });
    opened.start();
    ASSERT_TRUE(Load());
    EXPECT_EQ(Asked(),
              Names{"Cannot switch to the Start Folder!\n\nPlease change the Start Folder to fix this "
                    "issue."});
    EXPECT_EQ(page, 1);
    EXPECT_EQ(Caption(), "Tessara Pro v4.0") << "no folder has been entered";
    EXPECT_TRUE(form_->isVisible());
    EXPECT_FALSE(session_.StartFolderBad);
}

TEST_F(MainFormTest, AFolderIsClickedAndItsFilesAreShownInBothPanes) {
    MakePicture("photos/a.bmp", 3);
    MakePicture("photos/b.bmp", 5);
    MakePicture("photos/c.bmp", 7);
    ASSERT_TRUE(Load());
    ClickNode(disk_ + "/photos");
    EXPECT_EQ(Rows(), (Names{"a.bmp", "b.bmp", "c.bmp"}));
    EXPECT_EQ(Box().currentText().toStdString(), disk_ + "/photos");
    EXPECT_EQ(Tree().toolTip().toStdString(), disk_ + "/photos");
    EXPECT_EQ(PaneWidths(), std::pair(0, 0));
    ClickRow(1);
    EXPECT_EQ(PaneWidths(), std::pair(5, 5));
    EXPECT_EQ(Panel(3), "Current File = b.bmp");
    EXPECT_EQ(Label("LabelPict"), "Size : 5 x 1");
    EXPECT_TRUE(Control("CommandCon(1)").isEnabled());
    Press(Qt::Key_Down);
    EXPECT_EQ(PaneWidths(), std::pair(7, 7));
    Press(Qt::Key_Up);
    Press(Qt::Key_Up);
    EXPECT_EQ(Panel(3), "Current File = a.bmp");
    EXPECT_EQ(PaneWidths(), std::pair(3, 3));

    session_.ExportChanged = true;
    desktop_.prompts.answers = {Answer::No};
    ClickRow(2);
    EXPECT_EQ(PaneWidths(), std::pair(3, 3)) << "an unsaved export picture stays";
    session_.ExportChanged = false;
    ClickNode(app_);
    EXPECT_EQ(Panel(1), "No image file found in current folder.");
    EXPECT_EQ(PaneWidths(), std::pair(0, 0));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(MainFormTest, APathIsTypedOrChosenFromTheLastOnes) {
    MakePicture("photos/a.bmp", 3);
    ASSERT_TRUE(Load());
    TypePath("photos");
    EXPECT_EQ(Rows(), Names{"a.bmp"});
    EXPECT_EQ(Box().count(), 2);
    Box().showPopup();
    QAbstractItemView& view = *Box().view();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {},
                      view.visualRect(view.model()->index(0, 0)).center());
    EXPECT_EQ(Caption(), "Tessara Pro v4.0 -> " + app_);
    EXPECT_TRUE(Rows().empty());
    TypePath(disk_ + "/none");
    EXPECT_EQ(Asked(), Names{"Cannot switch to " + disk_ + "/none/"});
    EXPECT_EQ(Box().currentText().toStdString(), disk_ + "/none/");
}

TEST_F(MainFormTest, BarsTradeSpaceWhenTheyAreDroppedUntilTheNextResize) {
    ASSERT_TRUE(Load());
    form_->resize(1000, 700);
    const auto widthOfTree = [this] { return Tree().parentWidget()->width(); };
    const auto heightOfList = [this] { return List().parentWidget()->height(); };
    const int importHeight = Control("FrameRst(0)").height(), exportHeight = Control("FrameRst(1)").height();
    const int listHeight = heightOfList();
    EXPECT_EQ(widthOfTree(), 190);
    Drag("FrameMOve(0)", {100, 0}, [&] {
        EXPECT_TRUE(Control("PictureBLKCHG(0)").isVisible());
        EXPECT_EQ(widthOfTree(), 190) << "while a bar is dragged nothing but its ghost moves";
    });
    EXPECT_FALSE(Control("PictureBLKCHG(0)").isVisible());
    EXPECT_EQ(widthOfTree(), 290) << "where the pointer is in the bar counts, and 2 go off";
    EXPECT_EQ(Control("Statusico1").parentWidget()->width(), Control("FrameS").width() - 4);
    Drag("FrameMOve(1)", {0, -40});
    EXPECT_EQ(heightOfList(), listHeight - 43);
    EXPECT_NEAR(Control("FrameRst(0)").height(), importHeight + 43, 1);
    Drag("FrameMOve(2)", {0, 30});
    EXPECT_NEAR(Control("FrameRst(1)").height(), exportHeight - 27, 1);
    form_->resize(1100, 700);
    EXPECT_EQ(widthOfTree(), 190);
    EXPECT_EQ(heightOfList(), listHeight);
    EXPECT_EQ(List().parentWidget()->geometry().right(), Control("FrameS").width() - 5);
}

TEST_F(MainFormTest, ThePaneAndTheStripMeetToThePixel) {
    ASSERT_TRUE(Load());
    const auto inWindow = [this](const QWidget& control, int y) {
        return control.mapTo(form_.get(), QPoint(0, y)).y();
    };
    for (int height = 700; height < 715; ++height) {
        form_->resize(1000, height);
        const QWidget& pane = form_->rastx1(0);
        EXPECT_EQ(inWindow(pane, pane.height()), inWindow(Control("Picturefrmfile"), 0)) << height;
    }
}

TEST_F(MainFormTest, ClosingKeepsAnUnsavedExportImageAndTheRecentPaths) {
    ASSERT_TRUE(Load());
    ClickNode(disk_ + "/photos");
    test::WriteWhole(app_ + "/Xptemp.ico", AsBytes("icon"));
    session_.ExportChanged = true;
    desktop_.prompts.answers = {Answer::No, Answer::Yes};
    EXPECT_FALSE(form_->close());
    EXPECT_TRUE(form_->isVisible());
    EXPECT_FALSE(fs::exists(recent_));
    EXPECT_TRUE(form_->close());
    EXPECT_EQ(Asked(), Names(2, "The Export Image has been changed and not saved. Continue anyway?"));
    EXPECT_EQ(ReadRecentPaths(recent_), (Names{app_, disk_ + "/photos"}));
    EXPECT_FALSE(fs::exists(app_ + "/Xptemp.ico"));
}

TEST_F(MainFormTest, TheHelpMenuEndsACaptureAndLeadsWhereItSays) {
    struct Row {
        int entry;
        const char* opens;  // a topic, an address or a dialog
    };
    ASSERT_TRUE(Load());
    std::string opens;
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, &user, [&opens] {
        QWidget* const dialog = QApplication::activeModalWidget();
        if (dialog == nullptr) return;
        opens = dialog->objectName().toStdString();
        dialog->close();
    });
    user.start();
    for (const Row& row :
         {Row{0, "2-1.htm"}, Row{2, "FrmHomePage"}, Row{3, "DialogProd"},
          Row{4, "http://www.tessara.example/newsletter"}, Row{5, "ServicesForm"}, Row{9, "AboutForm"}}) {
        form_->Imagetool_Click(11);
        EXPECT_TRUE(session_.CaptureMode);
        form_->Menus().Item("mHelp", row.entry)->trigger();
        EXPECT_FALSE(session_.CaptureMode) << row.entry;
        for (Names* told : {&desktop_.help.topics, &desktop_.links.opened})
            for (const std::string& text : std::exchange(*told, {})) opens += text;
        EXPECT_EQ(std::exchange(opens, {}), row.opens);
    }
    form_->Imagetool_Click(10);
    EXPECT_EQ(desktop_.help.topics, Names{"2-1.htm"});
}

TEST_F(MainFormTest, FilesFoldersAndPicturesCanBeDropped) {
    MakePicture("photos/a.bmp", 3);
    MakePicture("photos/b \xC3\xA4.bmp", 4);
    ASSERT_TRUE(Load());
    const auto drop = [&](const QMimeData& data) {
        QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(form_.get(), &enter);
        if (!enter.isAccepted()) return false;
        QDropEvent event({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
        return QApplication::sendEvent(form_.get(), &event);
    };
    const auto urls = [](const std::string& path) {
        auto data = std::make_unique<QMimeData>();
        data->setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
        return data;
    };
    EXPECT_TRUE(drop(*urls(disk_ + "/photos/b \xC3\xA4.bmp")));
    EXPECT_EQ(Rows(), (Names{"a.bmp", "b \xC3\xA4.bmp"}));
    EXPECT_EQ(PaneWidths(), std::pair(4, 4));
    EXPECT_TRUE(drop(*urls(disk_)));
    EXPECT_EQ(form_->Box().Text(), disk_);

    QMimeData picture;
    picture.setImageData(QImage(7, 2, QImage::Format_RGB32));
    EXPECT_TRUE(drop(picture));
    EXPECT_EQ(PaneWidths(), std::pair(7, 7));
    EXPECT_EQ(session_.ImagePath, "");
    QMimeData text;
    text.setText(QStringLiteral("no picture"));
    EXPECT_FALSE(drop(text));
}

}  // namespace
}  // namespace tessara
