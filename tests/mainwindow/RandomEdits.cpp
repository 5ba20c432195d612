#include "tests/mainwindow/RandomEdits.h"

#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QTest>
#include <QTimer>
#include <filesystem>

#include "edit/EffectCatalogue.h"
#include "edit/dialogs/DialogTrcol.h"

namespace tessara::test {
namespace {

namespace fs = std::filesystem;

constexpr int kLongestSide = 150;  ///< of pictures that are worked on; larger ones cost time and show nothing

std::string Size(const Picture& picture) {
    return std::to_string(picture.Width()) + "x" + std::to_string(picture.Height());
}

void SendMouse(QWidget& to, QEvent::Type type, const QPoint& at, Qt::MouseButtons held) {
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, at, to.mapToGlobal(at), button, held, {});
    QCoreApplication::sendEvent(&to, &event);
}

std::map<std::string, ByteVector> FilesIn(const std::string& folder) {
    std::map<std::string, ByteVector> files;
    for (const fs::directory_entry& file : fs::directory_iterator(folder))
        files[file.path().filename().string()] = ReadWhole(file.path().string());
    return files;
}

}  // namespace

RandomEdits::RandomEdits(unsigned seed) : random_(seed) {
    Open();
    Check();
}

void RandomEdits::Step() {
    struct Action {
        int weight;
        void (RandomEdits::*run)();
    };
    static constexpr Action kActions[] = {
        {40, &RandomEdits::ChooseEffect}, {16, &RandomEdits::Undo},
        {12, &RandomEdits::Redo},         {8, &RandomEdits::Crop},
        {6, &RandomEdits::Paste},         {3, &RandomEdits::CopyWholeImport},
        {4, &RandomEdits::Copy},          {3, &RandomEdits::Reload},
        {2, &RandomEdits::Open},          {2, &RandomEdits::PickTransparentColor},
    };
    int total = 0;
    for (const Action& action : kActions) total += action.weight;
    int drawn = Pick(0, total - 1);
    const Action* action = kActions;
    while (drawn >= action->weight) drawn -= action++->weight;
    (this->*action->run)();
    Check();
    const Picture& shown = window_.Export();
    if (std::max(shown.Width(), shown.Height()) > kLongestSide) Open();
}

// Actions.

void RandomEdits::ChooseEffect() {
    const auto entries = EffectEntries();
    const EffectEntry& entry =
        entries[static_cast<std::size_t>(Pick(0, static_cast<int>(entries.size()) - 1))];
    Did(std::string(entry.array) + " " + std::to_string(entry.index));
    switch (entry.kind) {
        case EffectKind::Direct:
        case EffectKind::AskColor:
            if (Chance(50)) prompts_.colors = {RGB(Pick(0, 255), Pick(0, 255), Pick(0, 255))};
            window_.Choose(entry.array, entry.index);
            prompts_.colors.clear();
            Save();
            return Changed();
        case EffectKind::Dialog:
            WhenShown(&RandomEdits::WorkInDialog2);
            return window_.Choose(entry.array, entry.index);
        case EffectKind::Resize:
            WhenShown(&RandomEdits::WorkInDialogResize);
            return window_.Choose(entry.array, entry.index);
        case EffectKind::Undo:
            return Undo();
        case EffectKind::Redo:
            return Redo();
        case EffectKind::None:
            return window_.Choose(entry.array, entry.index);
    }
}

template <typename Dialog>
void RandomEdits::WhenShown(void (RandomEdits::*work)(Dialog&)) {
    QTimer::singleShot(0, qApp, [this, work] {
        auto* const dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        (this->*work)(*dialog);
        dialog->close();
    });
}

void RandomEdits::WorkInDialog2(Dialog2& dialog) {
    auto& checkDrag = *dialog.findChild<QCheckBox*>(QStringLiteral("CheckDrag"));
    const auto button = [&](int index) -> QPushButton& {
        return EditedWindow::Find<QPushButton>(dialog, "OKButton", index);
    };
    // The dialog's own handlers come before these.
    const auto livePreview = [&] {
        if (!checkDrag.isChecked()) return;
        if (!expected_.session.UndoEnabled) {
            expected_.session.UndoPending = true;
            Save();
        }
        Changed();
    };
    for (int i = 0; i < 3; ++i) {
        auto& slider = EditedWindow::Find<ValueSlider>(dialog, "HScroll1", i);
        QObject::connect(&slider, &ValueSlider::Scroll, &checkDrag, livePreview);
        QObject::connect(&slider, &ValueSlider::Change, &checkDrag, [&] {
            if (!boxesLead_) livePreview();
        });
    }
    for (int left = Pick(1, 5); left > 0; --left) {
        const int drawn = Pick(1, 100);
        if (drawn <= 40) {
            MoveSlider(dialog);
        } else if (drawn <= 75) {
            Did("apply");
            Save();
            button(0).click();
            Changed();
        } else if (drawn <= 85) {
            Did("take back");
            if (button(2).isEnabled()) {
                expected_.editor.StepBack();
                behindTheHistory_ = false;
            }
            const QScopedValueRollback<bool> boxesLead(boxesLead_, true);
            button(2).click();
        } else {
            Did("live");
            checkDrag.click();
            Save();
        }
        EXPECT_EQ(button(2).isEnabled(), window_.session.UndoEnabled);
        Check();
    }
}

void RandomEdits::MoveSlider(Dialog2& dialog) {
    std::vector<int> shown;
    for (int i = 0; i < 3; ++i)
        if (EditedWindow::Find<ValueSlider>(dialog, "HScroll1", i).isVisible()) shown.push_back(i);
    const int index = shown[static_cast<std::size_t>(Pick(0, static_cast<int>(shown.size()) - 1))];
    auto& slider = EditedWindow::Find<ValueSlider>(dialog, "HScroll1", index);
    auto& box = EditedWindow::Find<QLineEdit>(dialog, "Text1", index);
    const auto value = [&] { return Pick(slider.minimum(), slider.maximum()); };
    if (box.isVisible() && Chance(40)) {
        const QString text = Chance(30) ? QString::number(Pick(-1000, 1000)) : QString::number(value());
        Did("type " + text.toStdString());
        const QScopedValueRollback<bool> boxesLead(boxesLead_, true);
        box.setText(text);
    } else if (Chance(50)) {
        slider.setValue(value());
        Did("slide " + std::to_string(slider.value()));
    } else {
        Did("drag");
        slider.setSliderDown(true);
        for (int steps = Pick(1, 3); steps > 0; --steps) slider.setSliderPosition(value());
        slider.setSliderDown(false);
    }
}

void RandomEdits::WorkInDialogResize(DialogResize& dialog) {
    const auto click = [&](const char* name, int index) {
        EditedWindow::Find<QAbstractButton>(dialog, name, index).click();
    };
    for (int left = Pick(1, 5); left > 0; --left) {
        const int drawn = Pick(1, 100), side = Pick(0, 1);
        auto& slider = EditedWindow::Find<ValueSlider>(dialog, "HScroll1", side);
        if (drawn <= 30) {
            slider.setValue(Pick(0, std::min(kLongestSide, slider.maximum())));
        } else if (drawn <= 40) {
            EditedWindow::Find<QLineEdit>(dialog, "Text1", side).setText(QString::number(Pick(-5, 700)));
        } else if (drawn <= 50) {
            click("Option1", side);
        } else if (drawn <= 60) {
            dialog.findChild<QCheckBox*>(QStringLiteral("Check1"))->click();
        } else if (drawn <= 85) {
            Did("resize");
            click("OKButton", 0);
            Save();
            Changed();
        } else {
            Did("take back");
            click("OKButton", 1);
            expected_.editor.StepBack();
            behindTheHistory_ = false;
        }
        Check();
    }
}

void RandomEdits::Undo() {
    Did("undo");
    if (Chance(50) || !window_.session.UndoEnabled)
        window_.Choose("mEffects", 18);
    else
        EditedWindow::Find<ImageTool>(window_.form, "Imagetool", 8).click();
    expected_.editor.StepBack();
    behindTheHistory_ = false;
}

void RandomEdits::Redo() {
    Did("redo");
    behindTheHistory_ = behindTheHistory_ && window_.session.UndoPosition >= window_.session.UndoTop;
    window_.Choose("mEffects", 19);
    expected_.undo.UndoCommand("REDO");
}

void RandomEdits::Crop() {
    RastxPane& pane = window_.Pane(0);
    const Rastx& rastx = pane.rastx();
    const auto place = [&] {
        const int right = rastx.ImageWidth() / 2 + 3, bottom = rastx.ImageHeight() / 2 + 3;
        return pane.viewport()->rect().center() + QPoint(Pick(-right, right), Pick(-bottom, bottom));
    };
    bool released = false;
    const auto watching = QObject::connect(&pane, &RastxPane::ImageMouseUp, &pane, [&] { released = true; });
    const QPoint from = place(), to = place();
    SendMouse(*pane.viewport(), QEvent::MouseButtonPress, from, Qt::LeftButton);
    SendMouse(*pane.viewport(), QEvent::MouseMove, to, Qt::LeftButton);
    SendMouse(*pane.viewport(), QEvent::MouseButtonRelease, to, Qt::NoButton);
    QObject::disconnect(watching);
    const int width = rastx.SelRight() - rastx.SelLeft() + 1, height = rastx.SelBottom() - rastx.SelTop() + 1;
    if (!released || width <= 3 || height <= 3) return Did("click");
    Did("crop");
    Save();
    Changed();
    const Picture part = Must(window_.Import().Cropped(rastx.SelLeft(), rastx.SelTop(), width, height));
    EXPECT_EQ(LargestDifference(window_.Export(), part), 0);
}

bool RandomEdits::WillDiscard() {
    if (!expected_.session.ExportChanged) return true;
    const Answer answer = Chance(70) ? Answer::Yes : Answer::No;
    prompts_.answers = {answer};
    return answer == Answer::Yes;
}

void RandomEdits::Paste() {
    EXPECT_EQ(window_.form.Menus().Enabled("mEdit", 1), clipboard_.HasPicture());
    if (!clipboard_.HasPicture()) return;
    const bool discards = WillDiscard();
    Did(discards ? "paste" : "paste not");
    window_.Choose("mEdit", 1);
    if (!discards) return;
    Save();
    Changed();
    expected_.session.ExportChanged = false;
    for (const Picture& shown : {window_.Import(), window_.Export()})
        EXPECT_EQ(LargestDifference(shown, clipboard_.picture), 0);
    EXPECT_EQ(window_.session.ImagePath, "");
}

void RandomEdits::CopyWholeImport() {
    const bool discards = WillDiscard();
    Did(discards ? "whole" : "whole not");
    window_.Choose("mEdit", 3);
    if (!discards) return;
    Save();
    Changed();
    expected_.session.ExportChanged = false;
    if (!window_.Import().Empty()) {
        EXPECT_EQ(LargestDifference(window_.Export(), window_.Import()), 0);
    }
}

void RandomEdits::Copy() {
    // Only a crop makes it possible.
    const bool enabled = window_.form.Menus().Enabled("mEdit", 0);
    Did(enabled ? "copy" : "copy not");
    window_.Choose("mEdit", 0);
    if (enabled && !window_.Export().Empty()) {
        EXPECT_EQ(LargestDifference(clipboard_.picture, window_.Export()), 0);
    }
}

void RandomEdits::Reload() {
    Did("reload");
    const bool fromFile = !window_.session.ImagePath.empty();
    EditedWindow::Find<QPushButton>(window_.form, "CommandCon", 1).click();
    if (fromFile) {
        expected_.session.ExportChanged = false;
        return Loaded();
    }
    expected_.exportPane.SetImage(window_.Export());
    behindTheHistory_ = true;
    if (!window_.Import().Empty()) {
        EXPECT_EQ(LargestDifference(window_.Export(), window_.Import()), 0);
    }
}

void RandomEdits::Open() {
    struct File {
        const char* name;
        Picture picture;
    };
    static const File kFiles[] = {
        {"photo.png", PhotoLike(48, 36)},
        {"alpha.png", PhotoLikeWithAlpha(40, 30)},
        {"pixel.png", Draw("R")},
        {"tall.png", PhotoLike(3, 40)},
        {"damaged.png", {}},
    };
    const int drawn = Pick(0, 12);
    const File& file = kFiles[drawn < 5 ? drawn : drawn % 2];
    Did(std::string("open ") + file.name);
    window_.form.LoadPict(window_.Write(file.name, file.picture));
    Loaded();
    EXPECT_EQ(LargestDifference(window_.Import(), file.picture), 0);
}

void RandomEdits::PickTransparentColor() {
    Did("colour");
    QTimer::singleShot(0, qApp, [this] {
        auto* const dialog = qobject_cast<DialogTrcol*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(window_.session.TransparentColor, -1);
        const RastxPane& pane = *dialog->findChild<RastxPane*>(QStringLiteral("rastx1"));
        if (Chance(80)) QTest::mouseClick(pane.viewport(), Qt::LeftButton);
        dialog->findChild<QPushButton*>(QStringLiteral("OKButton"))->click();
    });
    window_.form.ShowDialogTrcol();
}

// What the rules say of them.

void RandomEdits::Changed() {
    expected_.exportPane.SetImage(window_.Export());
    expected_.session.ExportChanged = expected_.session.UndoPending = true;
    behindTheHistory_ = false;
}

void RandomEdits::Loaded() {
    expected_.undo.UndoRefresh("KILL");
    expected_.exportPane.SetImage(window_.Export());
    expected_.session.UndoPending = true;
    behindTheHistory_ = false;
    EXPECT_EQ(LargestDifference(window_.Export(), window_.Import()), 0);
}

void RandomEdits::Check() {
    const Session &now = window_.session, &then = expected_.session;
    EXPECT_EQ(now.UndoPosition, then.UndoPosition);
    EXPECT_EQ(now.UndoTop, then.UndoTop);
    EXPECT_EQ(now.UndoPending, then.UndoPending);
    EXPECT_EQ(now.UndoEnabled, then.UndoEnabled);
    EXPECT_EQ(now.ExportChanged, then.ExportChanged);
    EXPECT_TRUE(0 <= now.UndoPosition && now.UndoPosition <= now.UndoTop) << now.UndoPosition;
    for (const int button : {8, 9})
        EXPECT_EQ(EditedWindow::Find<ImageTool>(window_.form, "Imagetool", button).isEnabled(),
                  expected_.host.imageTools.at(button))
            << button;
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(LargestDifference(window_.Export(), expected_.exportPane.Image()), 0)
        << Size(window_.Export()) << " instead of " << Size(expected_.exportPane.Image());
    CheckFiles();
}

void RandomEdits::CheckFiles() {
    EXPECT_EQ(FilesIn(window_.folder.File("Undo")), FilesIn(expected_.folder.File("Undo")));
    // Where no snapshot is owed, the one at the position is the picture itself.
    Rastx snapshot;
    const bool there = snapshot.LoadImage(expected_.undo.SnapshotPath(window_.session.UndoPosition)).Ok();
    if (!there || window_.session.UndoPending || behindTheHistory_) return;
    EXPECT_EQ(LargestDifference(window_.Export(), snapshot.Image()), 0);
}

}  // namespace tessara::test
