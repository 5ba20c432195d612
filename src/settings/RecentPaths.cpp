#include "settings/RecentPaths.h"

#include <algorithm>

#include "core/ByteReader.h"
#include "core/Files.h"
#include "settings/FixedText.h"

namespace tessara {
namespace {

constexpr std::size_t kRecordSize = 100;

std::string TextOf(Bytes bytes) {
    return {bytes.begin(), bytes.end()};
}

}  // namespace

std::vector<std::string> ReadRecentPaths(const std::string& file) {
    std::vector<std::string> paths;
    const Result<FileBytes> bytes = FileBytes::Read(file);
    if (!bytes) return paths;
    for (ByteReader reader(bytes.Value().View()); reader.Left() >= kRecordSize;) {
        const std::optional<std::string> path = TextOfField(TextOf(reader.Take(kRecordSize)));
        if (path && !path->empty()) paths.push_back(*path);
    }
    return paths;
}

Result<void> WriteRecentPaths(const std::string& file, const std::vector<std::string>& paths) {
    std::string bytes;
    for (const std::string& path : paths) bytes += FixedText(path + std::string(kTerminator), kRecordSize);
    if (const Result<FileBytes> read = FileBytes::Read(file); read) {
        const std::string former = TextOf(read.Value().View());
        if (former.size() > bytes.size()) bytes += former.substr(bytes.size());
        // What is there already needs no waiting for the disk.
        if (former == bytes) return {};
    }
    return ReplaceFile(file, [&](ByteSink& sink) { return sink.Write(AsBytes(bytes)); });
}

std::vector<FormerPath> ReadFormerPaths(const std::string& settingsFile) {
    constexpr std::size_t kCountOffset = 999;
    constexpr std::size_t kFirstRecord = 1200;
    constexpr std::size_t kTextSize = 198;
    std::vector<FormerPath> paths;
    const Result<FileBytes> bytes = FileBytes::Read(settingsFile);
    if (!bytes) return paths;
    const int count = ByteReader(Slice(bytes.Value().View(), kCountOffset)).I16Le();
    ByteReader reader(Slice(bytes.Value().View(), kFirstRecord));
    for (int i = 0; i < count && reader.Left() >= kTextSize + 2; ++i) {
        const std::string text = TextOf(reader.Take(kTextSize));
        const int icon = reader.I16Le();
        const std::size_t end = text.find("\\\\");
        if (end != std::string::npos) paths.push_back({text.substr(0, end), icon});
    }
    return paths;
}

}  // namespace tessara
