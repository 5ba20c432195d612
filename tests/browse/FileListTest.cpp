#include "browse/FileList.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QCoreApplication>
#include <QFocusEvent>
#include <QHeaderView>
#include <QTest>
#include <new>
#include <set>

#include "browse/SelectionSummary.h"
#include "tests/Support.h"
#include "tests/browse/RecordingHost.h"

namespace tessara {
namespace {

using Names = std::vector<std::string>;

/// A folder, and the list of its files.
class FileListTest : public testing::Test, protected test::RecordedBrowser {
  protected:
    test::TemporaryFolder folder_;
    FileList list_{browser, nullptr};
    SelectionSummary summary_{browser};
    Names iconsAskedFor_;

    FileListTest() {
        shell.icon = [this](const std::string& path, IconSize) {
            iconsAskedFor_.push_back(path.substr(path.rfind('/') + 1));
            return QPixmap(16, 16);
        };
    }

    void Make(const Names& names, std::size_t size = 0) {
        for (const std::string& name : names) test::WriteWhole(folder_.File(name), ByteVector(size));
    }
    void Open() { test::Must(browser.FileViewFile.SetPath(folder_.Path())); }
    void Open(const Names& names) {
        Make(names);
        Open();
    }
    std::string Cell(int row, int column) const {
        return list_.ListViewFile()->topLevelItem(row)->text(column).toStdString();
    }
    Names ColumnOf(int column) const {
        Names texts;
        for (int i = 0; i < list_.RowCount(); ++i) texts.push_back(Cell(i, column));
        return texts;
    }
    /// Icons, each different, of as many files.
    void MakeIcons(int count) {
        for (int i = 0; i < count; ++i) Make({std::to_string(10000 + i) + ".ico"});
        shell.typeName = [](const std::string&) { return "Symbol"; };
    }
    QPoint Middle(int row) const {
        return list_.ListViewFile()->visualItemRect(list_.ListViewFile()->topLevelItem(row)).center();
    }
    void ClickOn(const QPoint& position, Qt::MouseButton button = Qt::LeftButton,
                 Qt::KeyboardModifiers modifiers = {}) const {
        QTest::mouseClick(list_.ListViewFile()->viewport(), button, modifiers, position);
    }
};

TEST_F(FileListTest, TheModeDecidesWhichFilesAreListed) {
    Make({"A.BMP", "b.jpeg", "c.txt", "d.gif", "noext", "sixtiff", "xbmp", "y.bmpx"});
    session.formats.ImportFormats[0].Enabled = false;
    struct Row {
        const char* mode;
        bool all;
        bool importOnly;
        Names names;
    };
    const Row kRows[] = {
        {"all", true, false, {"A.BMP", "b.jpeg", "c.txt", "d.gif", "noext", "sixtiff", "xbmp", "y.bmpx"}},
        {"graphics", false, false, {"A.BMP", "b.jpeg", "d.gif", "sixtiff", "xbmp"}},
        {"import", false, true, {"b.jpeg", "d.gif", "sixtiff"}},
    };
    Open();
    for (const Row& row : kRows) {
        session.ConvertOptions.ListAllFiles = row.all;
        session.ConvertOptions.ListImportOnly = row.importOnly;
        list_.SetListFile();
        EXPECT_EQ(ColumnOf(0), row.names) << row.mode;
        EXPECT_EQ(host.filePanels[1], "Total 8 Files (0 MB)") << row.mode;
    }
}

TEST_F(FileListTest, ARowShowsNameTypeSizeDateAndNumber) {
    Make({"a.bmp"}, 123456);
    Make({"\xff\n.bmp"}, 512);
    shell.typeName = [](const std::string&) { return "Bitmap image"; };
    Open();
    EXPECT_EQ(ColumnOf(0), (Names{"a.bmp", "\xef\xbf\xbd\n.bmp"}));
    EXPECT_EQ(ColumnOf(1), (Names{"Bitmap image", "Bitmap image"}));
    EXPECT_EQ(ColumnOf(2), (Names{"123456 (120.6KB)", "512 (.5KB)"}));
    EXPECT_EQ(ColumnOf(4), (Names{"1", "2"}));
    EXPECT_EQ(list_.KeyOf(1), folder_.File("\xff\n.bmp"));
}

TEST_F(FileListTest, EachTypeHasOneIconAndUnknownTypesTheGenericOne) {
    session.ConvertOptions.ListAllFiles = true;
    const std::map<std::string, std::string> types = {
        {"a.png", "Web picture"}, {"b.png", "Web picture"}, {"c.pngx", "Web picture"}, {"d.lnk", "Link"},
        {"e.ico", "Symbol"},      {"f.ico", "Symbol"},      {"g.xyz", "XYZ File"},     {"h.doc", "Text"},
        {"i.gif", "GIF image"},   {"j.tga", "Web picture"}};
    shell.typeName = [&](const std::string& path) {
        const auto type = types.find(path.substr(path.rfind('/') + 1));
        return type == types.end() ? std::string() : type->second;
    };
    Names names = {"k", "l.", "m.c", "n.\xc3\xbc\xc3\xbc", "o.toolong"};
    for (const auto& [name, type] : types) names.push_back(name);
    Open(names);
    // "GIF image" reads like the name of an unknown type.
    EXPECT_EQ(iconsAskedFor_, (Names{"a.png", "e.ico", "f.ico", "h.doc"}));
    EXPECT_EQ(ColumnOf(1), (Names{"Web picture", "Web picture", "Web picture", "Link", "Symbol", "Symbol",
                                  "XYZ File", "Text", "GIF image", "Web picture", " File", " File", "C File",
                                  "\xc3\xbc\xc3\xbc File", " File"}));
}

TEST_F(FileListTest, AsksBeforeItShowsManyIcons) {
    struct Row {
        const char* name;
        int files;
        std::deque<Answer> answers;
        std::size_t questions;
        std::size_t icons;
        const char* firstIndex;
    };
    // The generic icon is the first: the 1000th file's is one too many. A fresh start goes on counting.
    const Row kRows[] = {
        {"as many as need no question", 999, {}, 0, 999, "1"},
        {"too many icons, wanted", 1000, {Answer::Yes}, 1, 1000, "1"},
        {"too many icons, refused", 1000, {Answer::No}, 1, 1000, "1000"},
        {"too many files, refused", 1001, {Answer::No}, 1, 0, "1"},
        {"too many files and icons, wanted", 1001, {Answer::Yes, Answer::Yes}, 2, 1001, "1"},
        {"too many files wanted, icons refused", 1001, {Answer::Yes, Answer::No}, 2, 1000, "1000"},
    };
    for (const Row& row : kRows) {
        MakeIcons(row.files);
        prompts.asked.clear();
        prompts.answers = row.answers;
        if (browser.FileViewFile.Path().empty())
            Open();
        else
            list_.SetListFile();
        EXPECT_EQ(prompts.asked.size(), row.questions) << row.name;
        EXPECT_EQ(iconsAskedFor_.size(), row.icons) << row.name;
        EXPECT_EQ(list_.RowCount(), row.files) << row.name;
        EXPECT_EQ(Cell(0, 4), row.firstIndex) << row.name;
        EXPECT_EQ(Cell(0, 1), "Symbol") << row.name;
        iconsAskedFor_.clear();
    }
    const std::set<int> steps(host.progress.begin(), host.progress.end());
    EXPECT_EQ(*steps.rbegin(), 105);
    EXPECT_EQ(steps.size(), 105u);
    EXPECT_FALSE(host.progressShown);
}

TEST_F(FileListTest, WithoutMemoryForIconsTheRowsDoWithoutThem) {
    shell.typeName = [](const std::string&) { return "Image"; };
    shell.icon = [](const std::string&, IconSize) -> QPixmap { throw std::bad_alloc(); };
    Open({"a.bmp", "b.gif"});
    EXPECT_EQ(ColumnOf(0), (Names{"a.bmp", "b.gif"}));
    EXPECT_TRUE(prompts.asked.empty());
}

TEST_F(FileListTest, TotalsChangeTheirUnitTwice) {
    Make({"a.bmp", "b.bmp"}, 512 * 1024);
    Open();
    // The sum of exactly 1024 KB: megabytes at first, again, then kilobytes in the summary.
    EXPECT_EQ(host.totals,
              (Names{"", "Total 2 Files (1 MB)", "Total 2 Files (1 MB)", "Total 2 Files (1024 KB)"}));
    test::WriteWhole(folder_.File("b.bmp"), ByteVector(100));
    host.totals.clear();
    list_.SetListFile();
    EXPECT_EQ(host.totals, (Names{"", "Total 2 Files (512.1 KB)", "Total 2 Files (.5 MB)"}));
}

TEST_F(FileListTest, ARebuildEmptiesThePanesAndTellsWhereNothingIsListed) {
    session.ImageValid = true;
    Open();
    EXPECT_EQ(host.calls, (Names{"Setvalid False", "ClearPanes", "UndoRefresh KILL"}));
    EXPECT_EQ(host.filePanels[1], "No image file found in current folder.");
    EXPECT_TRUE(host.progress.empty());
    EXPECT_FALSE(session.ImageValid);
    session.ConvertOptions.ListAllFiles = true;
    list_.SetListFile();
    EXPECT_EQ(host.filePanels[1], "No file found in current folder.");
    session.ConvertOptions.ListAllFiles = false;
    host.totals.clear();
    Make({"a.txt"}, 1536);
    list_.SetListFile();
    EXPECT_EQ(host.totals, (Names{"", "Total 1 File (0 KB)", "No image file found in current folder."}));
    EXPECT_FALSE(host.busy);
}

TEST_F(FileListTest, AnUnsavedExportImageKeepsTheRowsUnlessGivenUp) {
    Open({"a.bmp"});
    Make({"b.bmp"});
    session.ExportChanged = true;
    prompts.answers = {Answer::No, Answer::Yes};
    list_.FileViewFile_PathChange();
    EXPECT_EQ(list_.RowCount(), 1);
    EXPECT_TRUE(session.ExportChanged);
    list_.FileViewFile_PathChange();
    EXPECT_EQ(list_.RowCount(), 2);
    EXPECT_FALSE(session.ExportChanged);
    EXPECT_EQ(prompts.asked.size(), 2u);
}

TEST_F(FileListTest, AClickLoadsAnotherFileOnce) {
    Open({"a.bmp", "\xff.bmp"});
    list_.resize(900, 300);
    list_.show();
    EXPECT_EQ(list_.ListViewFile()->columnWidth(1), list_.ListViewFile()->width() / 8);
    host.calls.clear();
    const std::string load = "LoadPict " + folder_.File("\xff.bmp");
    ClickOn(Middle(1));
    EXPECT_EQ(host.calls, (Names{"StopCapture", "ClearSelection", load}));
    EXPECT_EQ(host.filePanels[3], "Current File = \xef\xbf\xbd.bmp");
    ClickOn(Middle(1));
    list_.SetListFile();
    list_.SelectRow(1);
    list_.ListViewFile_Click();
    EXPECT_EQ(host.Count(load), 1);
    session.ExportChanged = true;
    prompts.answers = {Answer::No};
    QTest::keyClick(list_.ListViewFile(), Qt::Key_Up);
    EXPECT_EQ(host.Count("LoadPict " + folder_.File("a.bmp")), 0);
    EXPECT_EQ(list_.SelectedRow(), 1) << "the file in the panes";
    prompts.answers = {Answer::Yes};
    ClickOn(Middle(0));
    EXPECT_EQ(host.Count("LoadPict " + folder_.File("a.bmp")), 1);
    EXPECT_FALSE(session.ExportChanged);
    QTest::keyClick(list_.ListViewFile(), Qt::Key_Down);
    EXPECT_EQ(host.Count(load), 2);
    session.ExportChanged = true;
    QTest::keyClick(list_.ListViewFile(), Qt::Key_End);
    EXPECT_EQ(prompts.asked.size(), 2u) << "the end is where the highlight was";
    session.ExportChanged = false;
    QTest::keyClick(list_.ListViewFile(), Qt::Key_Home);
    EXPECT_EQ(host.Count("LoadPict " + folder_.File("a.bmp")), 2);
    QTest::keyClick(list_.ListViewFile(), Qt::Key_PageDown);
    EXPECT_EQ(host.Count(load), 3);
    ClickOn(Middle(1));
    QTest::mouseDClick(list_.ListViewFile()->viewport(), Qt::LeftButton, {}, Middle(1));
    ClickOn(Middle(0), Qt::RightButton);
    EXPECT_EQ(host.Count("OpenImportViewer"), 1);
    EXPECT_EQ(host.Count("PopMenu File"), 1);
    EXPECT_EQ(list_.SelectedRow(), 1);
    ClickOn(QPoint(200, list_.ListViewFile()->viewport()->height() - 5));
    ClickOn(Middle(1), Qt::LeftButton, Qt::ControlModifier);
    EXPECT_EQ(list_.SelectedRow(), 1) << "still the file in the panes";
}

TEST_F(FileListTest, RowsThatGoDoNotHandTheirHighlightOn) {
    struct Row {
        bool highlighted;
        std::vector<int> taken;
        int left;
    };
    Open({"a.bmp", "b.bmp", "c.bmp", "d.bmp"});
    for (const Row& row : {Row{true, {1}, -1}, Row{true, {0, 1, 2}, -1}, Row{false, {1, 2}, -1},
                           Row{true, {0, 3}, 0}, Row{true, {2}, 1}}) {
        list_.SetListFile();
        list_.SelectRow(1);
        if (!row.highlighted) list_.ListViewFile()->clearSelection();
        EXPECT_EQ(list_.TakeRows(row.taken).size(), row.taken.size());
        EXPECT_EQ(list_.SelectedRow(), row.left);
    }
}

TEST_F(FileListTest, APressThatSlipsIsAClickOnItsRow) {
    Open({"a.bmp", "b.bmp", "c.bmp", "d.bmp"});
    list_.resize(900, 300);
    list_.show();
    QWidget* const viewport = list_.ListViewFile()->viewport();
    struct Row {
        int pressed;
        QPoint end;
        int shown;
    };
    const Row rows[] = {{0, Middle(2), 0},
                        {1, QPoint(700, Middle(1).y()), 1},  // another column
                        {2, QPoint(300, 900), 2},
                        {2, Middle(3), 2}};  // highlighted before
    for (const Row& row : rows) {
        QTest::mousePress(viewport, Qt::LeftButton, {}, Middle(row.pressed));
        QTest::mouseMove(viewport, row.end);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, row.end);
        EXPECT_EQ(list_.SelectedRow(), row.shown);
        EXPECT_EQ(host.filePanels[3], "Current File = " + Cell(row.shown, 0));
    }
}

TEST_F(FileListTest, AKeyThatMovesTheMarkShowsTheFile) {
    Open({"a.bmp", "b.bmp", "c.bmp"});
    list_.SelectRow(0);
    QTreeWidget* const table = list_.ListViewFile();
    const auto loaded = [&] { return host.calls.empty() ? "" : host.calls.back(); };
    struct Row {
        Qt::Key key;
        const char* name;
    };
    for (const Row& row : {Row{Qt::Key_End, "c.bmp"}, {Qt::Key_Home, "a.bmp"}, {Qt::Key_B, "b.bmp"}}) {
        QTest::keyClick(table, row.key);
        EXPECT_EQ(loaded(), "LoadPict " + folder_.File(row.name));
    }
    host.calls.clear();
    QTest::keyClick(table, Qt::Key_Space);
    EXPECT_TRUE(list_.IsChecked(1));
    QTest::keyPress(table, Qt::Key_Shift);
    QFocusEvent leave(QEvent::FocusOut);
    QCoreApplication::sendEvent(table, &leave);
    list_.SelectRow(2);
    QTest::keyRelease(table, Qt::Key_Shift);
    EXPECT_EQ(host.calls, Names{}) << "what was not marked by a key of the table";
}

TEST_F(FileListTest, ACheckBoxIsNoClickOnItsRow) {
    Open({"a.bmp", "b.bmp"});
    list_.resize(900, 300);
    list_.show();
    list_.SelectRow(0);
    host.calls.clear();
    const QPoint box(10, Middle(1).y());
    ClickOn(box);
    EXPECT_TRUE(list_.IsChecked(1));
    EXPECT_EQ(session.SelectedCount, 1);
    EXPECT_EQ(list_.SelectedRow(), 0);
    EXPECT_TRUE(host.calls.empty());
    list_.SetChecked(0, true);
    EXPECT_EQ(session.SelectedCount, 1) << "what the program checks it also counts when it is done";
    list_.SetListFile();
    EXPECT_FALSE(list_.IsChecked(1));
    EXPECT_EQ(session.SelectedCount, 1);
}

TEST_F(FileListTest, AScreenReaderFindsCellsBelowTheirHeaders) {
    Open({"a.bmp", "b.bmp"});
    list_.SelectRow(1);
    QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(list_.ListViewFile());
    QAccessibleTableInterface* const table = spoken->tableInterface();
    ASSERT_NE(table, nullptr);
    QAccessibleInterface* const cell = table->cellAt(1, 0);
    EXPECT_EQ(cell->text(QAccessible::Name), "b.bmp");
    EXPECT_EQ(spoken->focusChild(), cell);
    EXPECT_EQ(spoken->indexOfChild(cell), 10) << "behind five headers and the cells of a row";
    const QList<QAccessibleInterface*> headers = cell->tableCellInterface()->columnHeaderCells();
    ASSERT_EQ(headers.size(), 1);
    EXPECT_EQ(headers[0]->text(QAccessible::Name), "File Name");
    cell->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(cell->state().checked);
    EXPECT_EQ(session.SelectedCount, 1);
    EXPECT_EQ(table->selectedCellCount(), 5);
    const QAccessible::Id known = QAccessible::uniqueId(cell);
    QAccessibleTableModelChangeEvent sorted(list_.ListViewFile(),
                                            QAccessibleTableModelChangeEvent::ModelReset);
    table->modelChange(&sorted);
    EXPECT_EQ(QAccessible::accessibleInterface(known), nullptr) << "in another order the cells are new ones";
    list_.TakeCheckedRows();
    EXPECT_EQ(table->cellAt(1, 0), nullptr);
    EXPECT_EQ(spoken->childCount(), 10);
}

TEST_F(FileListTest, HeadersSortAsTextAndShareOneOrder) {
    Make({"a.bmp"}, 9);
    Make({"b.bmp"}, 10);
    Make({"c.bmp"}, 100);
    Open();
    struct Row {
        int section;
        Names names;
    };
    const Row kRows[] = {
        {2, {"a.bmp", "c.bmp", "b.bmp"}},  // "9 (", "100 (", "10 ("
        {4, {"a.bmp", "b.bmp", "c.bmp"}},
        {0, {"c.bmp", "b.bmp", "a.bmp"}},
        {2, {"b.bmp", "c.bmp", "a.bmp"}},
    };
    for (const Row& row : kRows) {
        emit list_.ListViewFile()->header()->sectionClicked(row.section);
        EXPECT_EQ(ColumnOf(0), row.names) << row.section;
    }
    list_.SetListFile();
    EXPECT_EQ(ColumnOf(0), kRows[3].names) << "a rebuild keeps the order";
    QTest::keyClick(list_.ListViewFile(), Qt::Key_3, Qt::ControlModifier);
    EXPECT_EQ(ColumnOf(0), kRows[0].names) << "the third header, by its number";
}

}  // namespace
}  // namespace tessara
