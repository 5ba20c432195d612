#include <QElapsedTimer>
#include <QSignalBlocker>
#include <algorithm>
#include <memory>
#include <new>
#include <unordered_map>

#include "browse/FileInfo.h"
#include "browse/FileList.h"
#include "core/SystemVersion.h"
#include "core/Text.h"
#include "desktop/PathText.h"

// How the table is made from the folder.

namespace tessara {
namespace {

/// The last `count` characters of a UTF-8 text.
std::string_view LastCharacters(std::string_view text, int count) {
    std::size_t begin = text.size();
    while (begin > 0 && count > 0)
        if ((static_cast<unsigned char>(text[--begin]) & 0xc0) != 0x80) --count;
    return text.substr(begin);
}

/// The type of a file whose type nobody knows: "XYZ File".
std::string TypeNameFor(std::string_view ext4) {
    const std::size_t dot = ext4.find('.');
    const bool hasExtension = dot != std::string_view::npos && dot + 1 < ext4.size();
    return (hasExtension ? std::string(ext4.substr(dot + 1)) : std::string()) + " File";
}

bool HasGenericIcon(std::string_view ext4, const std::string& typeName) {
    if (!ext4.starts_with('.') || ext4 == ".LNK" || typeName.empty()) return true;
    // "XYZ File" is how a shell names a type that nothing has registered.
    return UpperCase(typeName).starts_with(LastCharacters(ext4, 3));
}

bool HasOwnIcon(std::string_view ext4) {
    return ext4 == ".ICO" || ext4 == ".EXE" || ext4 == ".ICL";
}

}  // namespace

/// What a rebuild carries along, also from one start to the next: a fresh start goes on counting.
struct FileList::Build {
    bool fast = false;   ///< no type icons
    bool asked = false;  ///< whether so many icons are wanted
    int count = 0;       ///< files in the folder
    int listed = 0;
    float totalKb = 0;
    std::unordered_map<std::string, std::size_t> typeCache;  ///< positions of the icons of types
    std::vector<std::unique_ptr<QTreeWidgetItem>> rows;
};

int FileList::SetFileMaxN() const {
    bool isXP = false;
    FindXP(0, 0, browser_.session.DesktopPath, isXP);
    return isXP ? 3000 : 1000;
}

void FileList::SetListFile() {
    Build build;
    while (!TryBuildRows(build)) {
    }
    InsertRows(build);
    WriteTotals(build);
    BrowserHost& host = browser_.host;
    host.ClearPanes();
    host.UndoRefresh("KILL");
    host.BusyCursor(false);
    host.ShowListProgress(110, false);
}

/// Icons are what takes memory: where it ends the rows do without them.
bool FileList::TryBuildRows(Build& build) {
    try {
        return BuildRows(build);
    } catch (const std::bad_alloc&) {
        if (build.fast) throw;
        build.fast = true;
        return false;
    }
}

bool FileList::BuildRows(Build& build) {
    BrowserHost& host = browser_.host;
    FileEnumerator& files = browser_.FileViewFile;
    Ignore(files.Refresh());
    ClearRows();
    build.rows.clear();
    build.typeCache.clear();
    host.BusyCursor(true);
    build.count = files.ListCount();
    if (build.count > SetFileMaxN() && !build.asked) build.fast = !WantsAllIcons();
    host.SetFilePanel(1, "");
    host.SetFilePanel(2, "");
    if (build.count == 0) return true;

    host.ShowListProgress(1, true);
    build.rows.reserve(static_cast<std::size_t>(build.count));
    constexpr int kRepaintInterval = 100;  // milliseconds; a repaint costs as much as hundreds of rows
    QElapsedTimer sinceRepaint;
    sinceRepaint.start();
    for (int i = 0, shown = 1; i < build.count; ++i) {
        if (const int value = 1 + static_cast<int>(105LL * i / build.count); value != shown) {
            host.ShowListProgress(shown = value, true);
            if (sinceRepaint.hasExpired(kRepaintInterval)) {
                host.Repaint();
                sinceRepaint.restart();
            }
        }
        const std::string& name = files.List(i);
        if (!AddRow(build, JoinPath(files.Path(), name), name)) return false;
    }
    return true;
}

bool FileList::AddRow(Build& build, const std::string& full, const std::string& name) {
    const std::string ext4 = UpperCase(LastCharacters(full, 4));
    if (!IsListed(ext4)) return true;
    const FileInfoTexts info = FileInfo(full);
    std::string typeName = browser_.shell.FileTypeName(full);
    std::size_t iconIndex = kGenericIcon;
    if (!build.fast) {
        const std::size_t icons = ImageListFile_.size();
        iconIndex = ChooseIcon(build, full, ext4, typeName);
        const bool isNew = ImageListFile_.size() > icons;
        if (isNew && iconIndex > static_cast<std::size_t>(SetFileMaxN()) && !build.asked) {
            build.asked = true;
            build.fast = !WantsAllIcons();
            if (build.fast) return false;
        }
    } else if (typeName.empty()) {
        typeName = TypeNameFor(ext4);
    }
    ++build.listed;
    build.totalKb += static_cast<float>(info.bytes) / 1024;

    auto row = std::make_unique<QTreeWidgetItem>(QStringList{
        ShownText(name), ShownText(typeName), ShownText(info.bytesText + " (" + SizeText(info.bytes) + ")"),
        ShownText(info.dateText), QString::number(build.listed)});
    row->setData(0, kKeyRole, QByteArray::fromStdString(full));
    row->setCheckState(0, Qt::Unchecked);
    row->setIcon(0, ImageListFile_[iconIndex - 1]);
    build.rows.push_back(std::move(row));
    return true;
}

/// All at once: the table lays itself out a single time.
void FileList::InsertRows(Build& build) {
    QList<QTreeWidgetItem*> items;
    items.reserve(static_cast<qsizetype>(build.rows.size()));
    for (auto& row : build.rows) items << row.release();
    const QSignalBlocker blocker(ListViewFile_);
    ListViewFile_->addTopLevelItems(items);
    const bool asTheFolderIs = SortKey_ == kNameColumn && SortOrder_ == Qt::AscendingOrder;
    if (!asTheFolderIs) SortRows();
}

bool FileList::IsListed(std::string_view ext4) const {
    const ConvertOptions& options = browser_.session.ConvertOptions;
    if (options.ListAllFiles) return true;
    const std::string_view ext3 = LastCharacters(ext4, 3);
    return std::ranges::any_of(browser_.session.formats.ImportFormats, [&](const FormatRow& row) {
        return (row.Ext == ext4 || row.Ext == ext3) && (!options.ListImportOnly || row.Enabled);
    });
}

bool FileList::WantsAllIcons() {
    return browser_.prompts.Ask(
               {"Too many files!\n\nIt will take lots of memory to display the icon type data for all these "
                "files!\n\nAre you sure you want to display icon type data for all these files?",
                PromptButtons::YesNo, PromptIcon::Question}) == Answer::Yes;
}

std::size_t FileList::ChooseIcon(Build& build, const std::string& full, std::string_view ext4,
                                 std::string& typeName) {
    if (HasGenericIcon(ext4, typeName)) {
        if (typeName.empty()) typeName = TypeNameFor(ext4);
        return kGenericIcon;
    }
    if (!HasOwnIcon(ext4)) {
        const auto [entry, isNew] = build.typeCache.try_emplace(typeName, ImageListFile_.size() + 1);
        if (!isNew) return entry->second;
    }
    ImageListFile_.emplace_back(browser_.shell.FileTypeIcon(full, IconSize::Small));
    return ImageListFile_.size();
}

void FileList::WriteTotals(const Build& build) {
    BrowserHost& host = browser_.host;
    // All files of the folder are counted, whichever are listed.
    const std::string head =
        "Total " + std::to_string(build.count) + (build.count > 1 ? " Files (" : " File (");
    const float totalMb = build.totalKb / 1024;
    if (build.count > 0)
        host.SetFilePanel(1, head + (build.totalKb < 1024 ? SizeNumber(build.totalKb) + " KB)"
                                                          : SizeNumber(totalMb) + " MB)"));
    if (build.listed == 0) {
        const bool all = browser_.session.ConvertOptions.ListAllFiles;
        host.SetFilePanel(
            1, all ? "No file found in current folder." : "No image file found in current folder.");
        host.Setvalid(false);
        return;
    }
    // What stays until the summary is written is always in megabytes.
    host.SetFilePanel(1, head + SizeNumber(totalMb) + " MB)");
    host.SetMenuEnabled("mTransform", 2, true);
}

}  // namespace tessara
