#include "edit/EffectCatalogue.h"
#include "edit/dialogs/DialogResize.h"
#include "tests/onscreen/OnScreen.h"

namespace tessara {
namespace {

constexpr int kEntries = 68;

class EffectMenusOnScreen : public test::OnScreen {
  protected:
    const Picture photograph_ = test::Must(DecodeFile(test::Sample("jpeg/hibiscus.regular.jpeg"), "jpeg"));

    bool IsChanged() { return test::LargestDifference(window_.Export(), photograph_) > 0; }
    QRect OnTheScreen(const QWidget& widget) { return {widget.mapToGlobal(QPoint()), widget.size()}; }
    static QString ShotName(const EffectEntry& entry) {
        QString name = QString::fromStdString(std::string(entry.array)).mid(1);
        return name + QStringLiteral("-%1").arg(entry.index, 2, 10, QLatin1Char('0'));
    }
    void VisitDialog2(QWidget& widget, const EffectEntry& entry) {
        auto* const dialog = qobject_cast<Dialog2*>(&widget);
        ASSERT_NE(dialog, nullptr);
        EXPECT_TRUE(dialog->screen()->availableGeometry().contains(dialog->frameGeometry()));
        EXPECT_FALSE(dialog->frameGeometry().intersects(OnTheScreen(*window_.Pane(1).viewport())));
        Shoot(ShotName(entry));
        for (ValueSlider* slider : dialog->findChildren<ValueSlider*>())
            if (slider->isVisible()) slider->setValue(slider->value() + slider->pageStep());
        Key("Return");
        EXPECT_TRUE(Becomes([this] { return window_.session.ExportChanged; })) << "Return applies";
        EXPECT_TRUE(IsChanged());
        Shoot(ShotName(entry) + QStringLiteral("-applied"));
        Key("Escape");
        EXPECT_TRUE(Becomes([&] { return !dialog->isVisible(); })) << "Escape quits";
    }
    void VisitDialogResize(QWidget& widget, const EffectEntry& entry) {
        auto* const dialog = qobject_cast<DialogResize*>(&widget);
        ASSERT_NE(dialog, nullptr);
        Shoot(ShotName(entry));
        dialog->findChild<ValueSlider*>("HScroll1(0)")->setValue(100);
        Key("Return");
        EXPECT_TRUE(Becomes([this] { return window_.Export().Width() == 100; }));
        Key("Escape");
        EXPECT_TRUE(Becomes([&] { return !dialog->isVisible(); }));
    }
    void VisitColorDialog(QWidget& widget, const EffectEntry& entry) {
        EXPECT_EQ(widget.windowTitle(), "Select Mask Color");
        Shoot(ShotName(entry));
        Key("Return");
    }
    void Expect(const EffectEntry& entry) {
        const auto visitBy = [&](auto visit) {
            visit_ = [this, visit, &entry](QWidget& widget) { (this->*visit)(widget, entry); };
        };
        switch (entry.kind) {
            case EffectKind::Dialog:
                return visitBy(&EffectMenusOnScreen::VisitDialog2);
            case EffectKind::Resize:
                return visitBy(&EffectMenusOnScreen::VisitDialogResize);
            case EffectKind::AskColor:
                return visitBy(&EffectMenusOnScreen::VisitColorDialog);
            default:
                visit_ = {};
        }
    }
};

TEST_F(EffectMenusOnScreen, EveryEntryDoesItsWorkOnAPhotograph) {
    SKIP_WITHOUT_SAMPLES();
    int chosen = 0;
    for (const EffectEntry& entry : EffectEntries()) {
        if (entry.IsSeparator() || !entry.visible) continue;
        SCOPED_TRACE(testing::Message() << entry.array << " " << entry.index << " " << entry.caption);
        const bool steps = entry.kind == EffectKind::Undo || entry.kind == EffectKind::Redo;
        if (!steps) Load(photograph_);
        Expect(entry);
        const bool changed = IsChanged();
        ChooseByPointer(entry.array, entry.index);
        ASSERT_TRUE(Becomes([&] {
            return QApplication::activePopupWidget() == nullptr &&
                   QApplication::activeModalWidget() == nullptr && !visit_ &&
                   IsChanged() != (steps && changed);
        }));
        if (entry.kind != EffectKind::Dialog) Shoot(ShotName(entry) + QStringLiteral("-applied"));
        ++chosen;
    }
    EXPECT_EQ(chosen, kEntries);
}

}  // namespace
}  // namespace tessara
