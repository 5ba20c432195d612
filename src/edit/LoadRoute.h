#pragma once

#include <span>
#include <string>

#include "core/rastx/Rastx.h"
#include "settings/Session.h"

namespace tessara {

/// What a file needs on its way into panes.
struct LoadRoute {
    const Session& session;  ///< knows the scratch files
    PictureCarrier& clipboard;
    ColorNumber backColor;  ///< what the transparent parts of small icons show
};

/// Loads a file into all of the panes; they share the picture of one decoding. An icon may go by way of a
/// bitmap and the clipboard, whose earlier content is lost then; `path` comes back as that of the bitmap. The
/// panes stay as they are where the file cannot be read.
void LoadIntoPanes(std::string& path, std::span<Rastx* const> panes, const LoadRoute& route);

}  // namespace tessara
