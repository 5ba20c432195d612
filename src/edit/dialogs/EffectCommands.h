#pragma once

#include <functional>

#include "desktop/Prompts.h"
#include "desktop/RandomSource.h"
#include "edit/Editor.h"
#include "edit/EffectCatalogue.h"

namespace tessara {

/// What happens when an entry of the effect menus is chosen.
class EffectCommands {
  public:
    struct Surroundings {
        Editor& editor;
        Prompts& prompts;
        RandomSource& random;
        /// Show the dialogs until they are closed.
        std::function<void()> LoadDialog2;
        std::function<void()> LoaddialogResize;
    };
    explicit EffectCommands(Surroundings surroundings) : surroundings_(std::move(surroundings)) {}

    /// The click handler of every menu; `array` is the name of its control array.
    void Click(std::string_view array, int Index);

    void mEffects_Click(int Index) { Click("mEffects", Index); }
    void mColor_Click(int Index) { Click("mColor", Index); }
    void mOutline_Click(int Index) { Click("mOutline", Index); }
    void mDistort_Click(int Index) { Click("mDistort", Index); }
    void mStylize_Click(int Index) { Click("mStylize", Index); }
    void mButtonize_Click(int Index) { Click("mButtonize", Index); }
    void mOthers_Click(int Index) { Click("mOthers", Index); }

  private:
    void RunDirect(const EffectEntry& entry);
    void RunWithColor(const EffectEntry& entry);

    Surroundings surroundings_;
};

}  // namespace tessara
