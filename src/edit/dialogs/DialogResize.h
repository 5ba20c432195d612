#pragma once

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <array>

#include "edit/ResizeSession.h"
#include "edit/dialogs/ValueSlider.h"

namespace tessara {

/// "Resize image": changes the size of the export picture.
class DialogResize final : public QDialog {
    Q_OBJECT
  public:
    struct Surroundings {
        Editor& editor;
        /// The widget that shows the export picture; null where there is none.
        const QWidget* exportPane = nullptr;
        /// In pixels, within its frame: the dialog stands as much lower than the screen's top.
        int ListViewFileTop = 0;
    };
    DialogResize(const Surroundings& surroundings, QWidget* parent);

    /// Shows the size of the export picture until the dialog is closed.
    void LoaddialogResize();
    /// The first half of LoaddialogResize.
    void Shape();

    /// Keeps boxes and the other slider in step with a slider.
    void ChangeHScroll(int Index);
    /// 0 Apply, 1 Undo, 2 Quit.
    void OKButton_Click(int Index);

  private:
    void MakeControls();
    void LayOut();
    void ConnectControls();
    void SetStartData();
    void Text1_Change(int Index);
    void FinishTexts();
    void Option1_Click(int Index);
    void ShowValues();
    int ExportPaneHeight() const;
    void MoveToItsPlace();

    Surroundings surroundings_;
    ResizeSession resize_;
    ResizeValues values_;

    std::array<ValueSlider*, 2> HScroll1_;
    std::array<QLineEdit*, 2> Text1_;
    std::array<QLabel*, 2> Label1_;  ///< captions
    std::array<QLabel*, 2> Label2_;  ///< units
    std::array<QRadioButton*, 2> Option1_;
    QCheckBox* Check1_;
    std::array<QPushButton*, 3> OKButton_;

    bool Loading_ = false;    ///< the controls get their first values: their events are passed over
    bool Switching_ = false;  ///< the unit changes, likewise
};

}  // namespace tessara
