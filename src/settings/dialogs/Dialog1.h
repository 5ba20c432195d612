#pragma once

#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSlider>
#include <QTabWidget>
#include <QToolButton>
#include <array>

#include "artwork/FramedCheckBox.h"
#include "desktop/Prompts.h"
#include "settings/dialogs/CaptureSides.h"
#include "settings/dialogs/OptionsHost.h"
#include "settings/dialogs/PathEdit.h"

namespace tessara {

/// The options dialog: what a conversion does, what the list shows, captures and JPEG files.
class Dialog1 final : public QDialog {
    Q_OBJECT
  public:
    Dialog1(Session& session, Prompts& prompts, OptionsHost& host, QWidget* parent);

    /// Shows the dialog until it is closed. The last two tabs close it for a dialog of their own, after which
    /// it is back.
    void Loaddialog1();
    /// What Loaddialog1 does before it shows the dialog.
    void Fill();

    /// "Convert Now", "Load Default", "Save as Default", "OK" or "Exit".
    void OKButton_Click(int Index);
    void done(int result) override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    enum Tab { kConvertTab, kListTab, kCaptureTab, kJpgTab, kTransparentTab, kSlideTab };

    void MakeControls();
    void MakeConvertControls();
    void MakeListControls();
    void MakeCaptureControls();
    void MakeJpgControls();
    void MakeButtons();
    void LayOut();
    QWidget* ConvertPage();
    QWidget* ListPage();
    void LayOutCapture();
    void LayOutJpg();
    QLayout* ButtonRow();
    void SetShortcuts();
    void Connect();

    OptionsControls Controls() const;
    void SaveGefault00();
    void FillProcessValues();
    int FirstTab() const;
    void DispTessaraObj(bool show);
    void FitToPage();

    bool FieldsAreValid(int Index);
    bool Refuse(const std::string& message);
    void Savedefault(bool writeFile);
    void Form_Unload();

    void TabStrip1_Click();
    void CheckIn_Click(int Index);
    void CheckOut_Click(int Index);
    void CheckShow_Click();
    void Check1_Click();
    void Command2_Click(int Index);
    void OptionList_Click(int Index);
    void OptionPic_Click(int Index);
    void EnableTextFile();
    void TextFile_Change();
    void TextInFolder_Change();
    void TextInFolder_LostFocus();
    void TextSize_Change(int Index);
    void VScrollSize_Change(int Index);
    void TakeCaptureSides();
    void HScroll1_Change();
    void HScroll1_Scroll() { HScroll1_Change(); }
    void BrowseFolder(const char* title, PathEdit& field);
    void ImageinFolder_Click();
    void ImageOutFolder_Click();
    void ImageHelp_Click();

    Session& session_;
    Prompts& prompts_;
    OptionsHost& host_;

    QTabWidget* TabStrip1_;
    QGroupBox* Frame4_;  ///< "Convert"
    std::array<QRadioButton*, 3> OptionPic_;
    PathEdit* TextFile_;
    QGroupBox* Frame2_;  ///< "Export to"
    std::array<FramedCheckBox*, kExportFormatCount> CheckOut_;
    PathEdit* TextOutFolder_;
    QToolButton* ImageOutFolder_;
    std::array<QRadioButton*, 3> OptionOv_;
    QGroupBox* Frame3_;  ///< "List"
    std::array<QRadioButton*, 3> OptionList_;
    PathEdit* TextInFolder_;
    QToolButton* ImageinFolder_;
    QGroupBox* Frame1_;  ///< formats that are read
    std::array<FramedCheckBox*, kImportFormatCount> CheckIn_;
    std::array<QPushButton*, 2> Command2_;
    QWidget* FrameCapture_;
    std::array<QLineEdit*, 2> TextSize_;
    std::array<QScrollBar*, 2> VScrollSize_;  ///< as far from its lower end as the size says
    QCheckBox* Check1_;                       ///< "Square"
    QWidget* FrameJpg_;
    QLabel* SkinLabel1_;
    QSlider* HScroll1_;
    QCheckBox* Check2_;  ///< progressive
    QCheckBox* Check3_;  ///< grey
    QCheckBox* CheckShow_;
    QWidget* PictureHelp_;
    QToolButton* ImageHelp_;
    std::array<QPushButton*, 4> OKButton_;

    ConvertOptions optionsBefore_;  ///< as the dialog found them
    CaptureSides capture_;
    std::size_t LastSizeIndex_ = 0;    ///< the size that was typed last
    bool ListSettingsEdited_ = false;  ///< the start folder or the list mode
    bool Loading_ = false;             ///< the controls are being filled: their events are passed over
    bool TextLock_ = false;            ///< sizes are being shown, likewise
    bool refusing_ = false;            ///< a message is on screen
    int lastPage_ = kConvertTab;
    int otherDialog_ = -1;  ///< the tab whose dialog is to be shown instead
};

}  // namespace tessara
