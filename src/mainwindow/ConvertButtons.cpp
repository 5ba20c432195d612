#include "mainwindow/ConvertButtons.h"

namespace tessara {

void ConvertButtons::CommandCon_Click(int Index) const {
    if (Index == 1) {
        surroundings_.Reload();
        return;
    }
    Session& session = surroundings_.session;
    // Without a file the options can still be set.
    if (!session.ImageValid &&
        surroundings_.prompts.Ask({"No graphics file selected.\n\nContinue any way?", PromptButtons::YesNo,
                                   PromptIcon::Information}) != Answer::Yes)
        return;
    if (!session.DontShowOptions) {
        session.OptionsFromConvert = session.ImageValid;
        surroundings_.Loaddialog1();
    }
    if (session.ImageValid && (session.DontShowOptions || session.ConvertConfirmed)) surroundings_.Convert();
}

}  // namespace tessara
