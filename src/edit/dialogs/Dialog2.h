#pragma once

#include <QCheckBox>
#include <QDialog>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <array>
#include <functional>

#include "desktop/Prompts.h"
#include "edit/EffectSession.h"
#include "edit/dialogs/ValueSlider.h"

namespace tessara {

/// The one dialog of all effects with parameters. Its preview is the export pane itself.
class Dialog2 final : public QDialog {
    Q_OBJECT
  public:
    struct Surroundings {
        Editor& editor;
        Prompts& prompts;
        /// The widget that shows the export picture, which the dialog is not to cover; null where there is
        /// none.
        const QWidget* exportPane = nullptr;
        /// Neither this one, where there is room for that.
        const QWidget* importPane = nullptr;
        /// Shows DialogTrcol until it is closed.
        std::function<void()> ShowDialogTrcol = {};
    };
    Dialog2(const Surroundings& surroundings, QWidget* parent);

    /// Shapes the dialog for EffectCode and shows it until it is closed.
    void LoadDialog2();
    /// The first half of LoadDialog2.
    void Shape();

    /// Brings the shown value into line with slider `Index`.
    void ChangeCaption(int Index);
    /// The step of the live preview.
    void GradSliderPrg();
    /// 0 Apply, 1 Quit, 2 Undo.
    void OKButton_Click(int Index);

    void done(int result) override;

  private:
    void MakeControls();
    void LayOut();
    void ConnectControls();
    /// The layout without any effect.
    void Neutral();
    void ShapeSliders(const EffectParameters& effect);
    void ShapeSlider(std::size_t i, const EffectParameters& effect, const QString& caption);
    /// A slider with what stands beside it.
    std::array<QWidget*, 4> RowOf(std::size_t i) const;
    void MoveBesidePane();

    /// A slider hands its focus on, not its keys.
    void FocusApply(int Index);
    void HScroll1_Change(int Index);
    void HScroll1_Scroll(int Index);
    void Text1_Change(int Index);
    void Check1_Click();
    void CheckDrag_Click();
    void ImageHelp_Click();
    void ApplyEffect();
    void UndoEffect();
    void UpdateUndoButton();
    EffectChoice Choice() const;
    Session& session() const { return surroundings_.editor.session; }

    Surroundings surroundings_;
    EffectSession effect_;

    std::array<ValueSlider*, 3> HScroll1_;
    std::array<QLineEdit*, 3> Text1_;
    std::array<QLabel*, 4> Label1_;  ///< captions of the sliders, and the value above a single one
    std::array<QFrame*, 3> Label2_;  ///< colours beside the sliders
    std::array<QPushButton*, 3> OKButton_;
    QCheckBox* Check1_;
    QCheckBox* Check2_;
    QCheckBox* CheckDrag_;
    QToolButton* ImageHelp_;

    bool Loading_ = false;     ///< the dialog is being shaped: sliders and boxes are passed over
    bool TextLock_ = false;    ///< a typed text is being taken: the slider's Change is passed over
    bool ScrollLock_ = false;  ///< a Scroll is being handled
    bool Updating_ = false;    ///< from the start of a run to the end of the slider event that asked for it
    bool Dragging_ = false;    ///< the live preview runs the effect: it takes no snapshot
};

}  // namespace tessara
