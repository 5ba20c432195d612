#pragma once

#include <gtest/gtest.h>

#include <QComboBox>
#include <QTest>
#include <QTreeWidget>
#include <QWindow>
#include <filesystem>
#include <memory>
#include <vector>

#include "browse/FolderNode.h"
#include "core/rastx/Codec.h"
#include "mainwindow/MainForm.h"
#include "tests/Support.h"

namespace tessara::test {

using Names = std::vector<std::string>;

/// The whole window over folders on a real disk, on a desktop that follows a script. Keys and clicks go to
/// the window, which must find the control that they are for.
class DrivenMainForm : public testing::Test {
  protected:
    TemporaryFolder folder_;
    const std::string disk_ = folder_.File("disk");
    const std::string app_ = folder_.File("disk/app");
    Session session_;
    ScriptedServices desktop_;
    std::unique_ptr<MainForm> form_;

    DrivenMainForm() {
        for (const char* name : {"disk/app", "disk/photos/old", "docs"})
            std::filesystem::create_directories(folder_.File(name));
        session_.AppPath = app_;
        session_.DocumentsPath = folder_.File("docs");
        desktop_.shell.drives = {{disk_, disk_ + " [DISK]", DriveType::Fixed}};
    }

    bool Load() {
        form_ = std::make_unique<MainForm>(session_, desktop_.All());
        return form_->Form_Load();
    }
    /// A picture file as wide as told.
    void MakePicture(const std::string& name, int width) const {
        WriteWhole(disk_ + "/" + name, Encode(*ExportFormatTable()[0].codec, PhotoLike(width, 1)));
    }

    template <typename Widget = QWidget>
    Widget& Control(const char* name) const {
        auto* control = form_->findChild<Widget*>(QString::fromLatin1(name));
        if (control == nullptr) throw std::runtime_error(std::string("no control ") + name);
        return *control;
    }
    QTreeWidget& List() const { return Control<QTreeWidget>("ListViewFile"); }
    QTreeWidget& Tree() const { return Control<QTreeWidget>("TreeViewS"); }
    QComboBox& Box() const { return Control<QComboBox>("ImageComboPath"); }
    std::string Label(const char* name) const { return Control<QLabel>(name).text().toStdString(); }
    std::string Panel(int panel) const {
        return Control<PanelBar>("StatusBarSfile").Text(panel).toStdString();
    }
    std::string Caption() const { return form_->windowTitle().toStdString(); }
    Names Rows() const {
        Names names;
        for (int i = 0; i < List().topLevelItemCount(); ++i)
            names.push_back(List().topLevelItem(i)->text(0).toStdString());
        return names;
    }
    Names Asked() const {
        Names texts;
        for (const Prompt& prompt : desktop_.prompts.asked) texts.push_back(prompt.text);
        return texts;
    }
    /// Of the pictures in both panes; 0 for none.
    std::pair<int, int> PaneWidths() const {
        return {form_->rastx1(0).rastx().ImageWidth(), form_->rastx1(1).rastx().ImageWidth()};
    }

    void ClickAt(const QWidget& control, const QPoint& position) const {
        QTest::mouseClick(form_->windowHandle(), Qt::LeftButton, {}, control.mapTo(form_.get(), position));
    }
    void ClickItem(QTreeWidget& view, QTreeWidgetItem& item) const {
        view.scrollToItem(&item);
        // To the right of the check box.
        ClickAt(*view.viewport(), view.visualItemRect(&item).topLeft() + QPoint(40, 5));
    }
    void ClickRow(int row) const { ClickItem(List(), *List().topLevelItem(row)); }
    FolderNode& Node(const std::string& key) const {
        FolderNode* node = form_->Tree().NodeOf(key);
        if (node == nullptr) throw std::runtime_error("no node " + key);
        return *node;
    }
    void ClickNode(const std::string& key) const { ClickItem(Tree(), Node(key)); }
    void Press(Qt::Key key) const { QTest::keyClick(form_->windowHandle(), key); }
    void TypePath(const std::string& path) {
        form_->Box().SetText(path);
        Box().setFocus();
        QTest::keyClick(&Box(), Qt::Key_Return);
    }
    /// Drags a bar, by so many pixels; `halfWay` is called before the button comes up.
    template <typename HalfWay>
    void Drag(const char* bar, const QPoint& way, const HalfWay& halfWay) {
        const QPoint start = Control(bar).mapTo(form_.get(), Control(bar).rect().center());
        QTest::mousePress(form_->windowHandle(), Qt::LeftButton, {}, start);
        QTest::mouseMove(form_->windowHandle(), start + way);
        halfWay();
        QTest::mouseRelease(form_->windowHandle(), Qt::LeftButton, {}, start + way);
    }
    void Drag(const char* bar, const QPoint& way) {
        Drag(bar, way, [] {});
    }
};

}  // namespace tessara::test
