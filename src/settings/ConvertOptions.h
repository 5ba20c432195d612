#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/FormatTables.h"

namespace tessara {

/// The options that survive a run, as the settings file holds them.
struct ConvertOptions {
    bool ListAllFiles = false;  ///< list mode "All Files"
    std::array<bool, kImportFormatCount> ImportOn{};
    std::uint8_t ConvertScope = 0;  ///< 0 current file, 1 selected files, 2 all graphics
    std::array<bool, kExportFormatCount> ExportOn{};
    std::string TargetFolder;        ///< a folder field, see FolderOf
    std::string StartFolder;         ///< a folder field
    std::uint8_t OverwriteMode = 0;  ///< 0 ask, 1 replace, 2 skip
    bool ListImportOnly = false;     ///< list mode "Graphics for Import"; neither flag: "All Graphics"

    bool operator==(const ConvertOptions&) const = default;

    /// What a first run starts with.
    static ConvertOptions FirstRun(const std::string& appPath);
};

struct SlideOptions {
    static constexpr std::int32_t kUsualDelay = 2000;

    std::uint8_t SlideAuto = 1;
    std::uint8_t SlideResize = 0;
    std::uint8_t SlideFullScreen = 0;
    std::uint8_t SlideCircular = 1;
    std::int32_t SlideDelay = kUsualDelay;  ///< milliseconds
    std::uint8_t SlideOrder = 0;            ///< 0 forward, 1 reverse, 2 random

    bool operator==(const SlideOptions&) const = default;

    /// Slides that come by themselves need time: a delay of 0 becomes the usual one.
    void RepairDelay() {
        if (SlideAuto == 1 && SlideDelay == 0) SlideDelay = kUsualDelay;
    }
};

/// A folder with its terminator, as the folder fields hold it.
std::string FolderField(const std::string& folder);
/// What stands before the first terminator of a folder field; empty where there is none.
std::string FolderOf(const std::string& field);
bool HasTerminator(const std::string& field);

}  // namespace tessara
