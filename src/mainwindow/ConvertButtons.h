#pragma once

#include <functional>

#include "desktop/Prompts.h"
#include "settings/Session.h"

namespace tessara {

/// What the buttons `CommandCon` do.
class ConvertButtons {
  public:
    struct Surroundings {
        Session& session;
        Prompts& prompts;
        /// Opens a new options dialog until it is closed.
        std::function<void()> Loaddialog1;
        /// Runs the job in its dialog until that is closed.
        std::function<void()> Convert;
        /// Discards every edit of the export picture.
        std::function<void()> Reload;
    };
    explicit ConvertButtons(Surroundings surroundings) : surroundings_(std::move(surroundings)) {}

    /// 0 "Convert", 1 "Reload".
    void CommandCon_Click(int Index) const;

  private:
    Surroundings surroundings_;
};

}  // namespace tessara
