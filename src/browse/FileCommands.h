#pragma once

#include "browse/Browser.h"

namespace tessara {

/// The commands of the file menu and the folder menu, and the toolbar's delete.
class FileCommands {
  public:
    explicit FileCommands(Browser& browser) : browser_(browser) {}

    void mFile_Click(int index);
    void mFolder_Click(int index);
    /// Asks whether the checked files go from the disk; No takes them out of the list all the same.
    void DeleteWithQuestions();

    /// Takes the checked rows out of the list and adds their number to `removed`. No file is touched.
    void RemoveCheckedFromList(int& removed);
    /// Deletes the checked rows and their files, for good. A file that cannot be deleted is passed over.
    void DelFilefromListViewFile();

  private:
    enum class Check { All, None, Inverted };
    void CheckRows(Check check);
    void SetListMode(bool allFiles, bool importOnly);
    void AskAndDeleteFiles();

    Browser& browser_;
};

}  // namespace tessara
