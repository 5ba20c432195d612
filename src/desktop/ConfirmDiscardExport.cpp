#include "desktop/ConfirmDiscardExport.h"

namespace tessara {

bool ConfirmDiscardExport(bool ExportChanged, Prompts& prompts) {
    return !ExportChanged || prompts.Ask({"The Export Image has been changed and not saved. Continue anyway?",
                                          PromptButtons::YesNo, PromptIcon::Warning}) == Answer::Yes;
}

}  // namespace tessara
