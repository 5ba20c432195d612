#pragma once

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <array>

#include "desktop/Prompts.h"
#include "edit/dialogs/ValueSlider.h"
#include "settings/Session.h"

namespace tessara {

/// "Slide Options": changes the options of slide shows as they are set. They last until the program ends, or
/// longer where they are saved as default.
class DialogSlideOpt final : public QDialog {
    Q_OBJECT
  public:
    DialogSlideOpt(Session& session, Prompts& prompts, QWidget* parent);

    /// Writes the label that tells the delay in seconds.
    void ShowSnd();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void MakeControls();
    void LayOut();
    void ConnectControls();
    void Form_Load();
    void EnableDelay();
    void Check1_Click();
    void HScroll1_Change();
    void Text1_Change();
    void Option1_Click(std::size_t Index);

    Session& session_;
    SlideOptions& options_;
    Prompts& prompts_;

    std::array<QCheckBox*, 4> Check1_;
    std::array<QRadioButton*, 3> Option1_;
    ValueSlider* HScroll1_;
    QLineEdit* Text1_;
    QLabel* Label1_;  ///< the caption of the delay
    QLabel* Label2_;  ///< the delay in seconds
    std::array<QPushButton*, 2> OKButton_;

    bool Loading_ = false;   ///< the controls get their first values: their events are passed over
    bool TextLock_ = false;  ///< the text is being corrected, or is where the delay comes from
};

}  // namespace tessara
