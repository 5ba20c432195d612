#pragma once

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>

#include "desktop/RastxPane.h"
#include "edit/Editor.h"
#include "edit/TransparentColor.h"

namespace tessara {

/// "Select transparent color": a click into a copy of the export picture chooses the colour. Opening it gives
/// up the colour chosen before.
class DialogTrcol final : public QDialog {
    Q_OBJECT
  public:
    DialogTrcol(Editor& editor, QWidget* parent);

  private:
    void MakeControls();
    void LayOut();
    /// The picture's size, as far as the screen has room for it.
    QSize PaneSize() const;
    void rastx1_ImageMouseDown();
    void ImageHelp_Click();

    Editor& editor_;
    TransparentColorPicker picker_;

    QLabel* Label1_;  ///< what to do
    RastxPane* rastx1_;
    QLabel* Label3_;  ///< caption of the swatch
    QLineEdit* Text1_;
    QLabel* Label2_;  ///< what the colour is for
    QPushButton* OKButton_;
    QToolButton* ImageHelp_;
};

}  // namespace tessara
