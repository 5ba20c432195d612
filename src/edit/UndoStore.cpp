#include "edit/UndoStore.h"

#include <filesystem>
#include <limits>

#include "core/Files.h"
#include "core/Text.h"
#include "core/rastx/codecs/Bmp.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;

constexpr int kUndoButton = 8, kRedoButton = 9;
constexpr int kLastSnapshot = std::numeric_limits<std::int16_t>::max();

void RemoveFilesIn(const std::string& folder) {
    std::error_code ignored;
    for (fs::directory_iterator file(folder, ignored), end; file != end; file.increment(ignored))
        if (!file->is_directory(ignored)) fs::remove(file->path(), ignored);
}

/// The whole picture with its alpha, which the BMP files that users save do not have.
Result<void> WriteSnapshot(const Picture& picture, const std::string& path) {
    if (picture.Empty()) return BadArgument("there is no picture");
    return ReplaceFile(path, [&](ByteSink& sink) { return EncodeBmpWithAlpha(picture, sink); });
}

}  // namespace

std::string UndoStore::SnapshotPath(int number) const {
    return Folder() + "/" + std::to_string(number) + ".bmp";
}

void UndoStore::UndoCommand(std::string_view Command) {
    const std::string command = UpperCase(Command);
    host_.BusyCursor(true);
    if (command == "SAVE") {
        Save();
    } else if (session_.UndoTop != 0) {
        if (command == "UNDO" && session_.UndoPosition >= 2) Load(session_.UndoPosition - 1);
        if (command == "REDO" && session_.UndoPosition < session_.UndoTop) Load(session_.UndoPosition + 1);
    }
    host_.BusyCursor(false);
}

void UndoStore::Save() {
    // At the positions 0 and 1 a snapshot is written even where nothing is pending.
    if (!session_.UndoPending && session_.UndoPosition >= 2 && session_.UndoTop > 0) return;
    if (session_.UndoPosition < kLastSnapshot) ++session_.UndoPosition;
    session_.UndoTop = session_.UndoPosition;
    const std::string path = SnapshotPath(session_.UndoPosition);
    // What is there under that number belongs to a branch that has just been given up: an Undo must not bring
    // it back where the disk is full. Nor is there anything to wait for, as there is before a file is
    // replaced.
    std::error_code ignored;
    fs::remove(path, ignored);
    Ignore(WriteSnapshot(exportPane_.Image(), path));
    metadata_[session_.UndoPosition] = exportPane_.Image().Meta();
    session_.UndoPending = false;
    host_.SetImageTool(kUndoButton, true);
    session_.UndoEnabled = true;
}

void UndoStore::Load(int number) {
    session_.UndoPosition = number;
    if (exportPane_.LoadImage(SnapshotPath(number))) {
        Picture picture = exportPane_.Image();
        picture.SetMeta(metadata_[number]);
        exportPane_.SetImage(std::move(picture));
        host_.PutviewExport(1);
    }
    UndoRefresh("");
}

void UndoStore::UndoRefresh(std::string_view Command) {
    if (session_.Starting) {
        std::error_code ignored;
        fs::create_directory(Folder(), ignored);
    }
    if (Command == "KILL") {
        RemoveFilesIn(Folder());
        metadata_.clear();
        session_.UndoPosition = 0;
        session_.UndoTop = 0;
    }
    host_.SetImageTool(kRedoButton, session_.UndoPosition < session_.UndoTop);
    session_.UndoEnabled = session_.UndoPosition >= 2;
    host_.SetImageTool(kUndoButton, session_.UndoEnabled);
}

}  // namespace tessara
