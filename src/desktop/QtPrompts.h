#pragma once

#include "desktop/Prompts.h"

namespace tessara {

/// The toolkit's dialogs, over the window that is active or stays on top. An hourglass pointer waits while
/// they are open.
class QtPrompts final : public Prompts {
  public:
    Answer Ask(const Prompt& prompt) override;
    void Beep() override;
    std::string BrowseFolder(const std::string& title, const std::string& start) override;
    std::string PickSaveFile(const SaveRequest& request) override;
    ColorNumber PickColor(const std::string& title, ColorNumber start) override;
};

/// A path as it was typed into the save dialog, with the suffix of the chosen filter (from 0) where it has no
/// extension of its own: three or four characters, not all of them digits.
std::string WithSuffix(std::string path, const std::vector<SaveFilter>& filters, std::size_t chosen);

}  // namespace tessara
