#include "core/rastx/TiffDirectory.h"

#include <algorithm>

namespace tessara {

using namespace tiff;

Result<void> WriteTiffHeader(ByteSink& sink) {
    return sink.Write(ByteWriter().Text("II").U16Le(42).U32Le(0).Written());
}

void TiffDirectory::Add(Tag tag, Type type, const std::vector<std::uint32_t>& values) {
    ByteWriter data;
    for (const std::uint32_t value : values) type == kShort ? data.U16Le(value) : data.U32Le(value);
    const std::size_t count = type == kRational ? values.size() / 2 : values.size();
    entries_.push_back({tag, type, static_cast<std::uint32_t>(count), data.TakeBytes()});
}

void TiffDirectory::Add(const std::vector<ExifEntry>& entries) {
    entries_.insert(entries_.end(), entries.begin(), entries.end());
}

Result<void> TiffDirectory::Add(const ExifDirectories& exif, ByteSink& sink) {
    Add(exif.image);
    TRY(AddOwn(kPhotoDirectory, exif.photo, sink));
    return AddOwn(kPlaceDirectory, exif.place, sink);
}

Result<void> TiffDirectory::AddOwn(Tag tag, const std::vector<ExifEntry>& entries, ByteSink& sink) {
    if (entries.empty()) return {};
    TiffDirectory own;
    own.Add(entries);
    TRY_ASSIGN(const std::uint32_t start, own.Write(sink));
    Add(tag, kLong, {start});
    return {};
}

Result<std::uint32_t> TiffDirectory::Write(ByteSink& sink) {
    constexpr std::uint64_t kLargestFile = UINT32_MAX;
    std::ranges::stable_sort(entries_, {}, &ExifEntry::tag);
    const auto sameTag = [](const ExifEntry& a, const ExifEntry& b) { return a.tag == b.tag; };
    entries_.erase(std::unique(entries_.begin(), entries_.end(), sameTag), entries_.end());
    const std::uint64_t end = sink.Position();
    ByteWriter values;
    ByteWriter table;
    if (end % 2 != 0) values.U8(0);
    table.U16Le(static_cast<std::uint32_t>(entries_.size()));
    for (const ExifEntry& entry : entries_) {
        table.U16Le(entry.tag).U16Le(entry.type).U32Le(entry.count);
        if (entry.values.size() <= 4) {
            table.Append(entry.values).Zeros(4 - entry.values.size());
        } else {
            table.U32Le(static_cast<std::uint32_t>(end + values.Size()));
            values.Append(entry.values).Zeros(entry.values.size() % 2);
        }
    }
    table.U32Le(0);
    const std::uint64_t start = end + values.Size();
    if (start + table.Size() > kLargestFile) return TooBig("a TIFF holds no more than 4 GiB");
    TRY(sink.Write(values.Written()));
    TRY(sink.Write(table.Written()));
    return static_cast<std::uint32_t>(start);
}

Result<void> TiffDirectory::WriteAsFirst(ByteSink& sink) {
    TRY_ASSIGN(const std::uint32_t start, Write(sink));
    return sink.Overwrite(kDirectoryOffset, ByteWriter().U32Le(start).Written());
}

Result<ByteVector> MakeExif(const ExifDirectories& exif) {
    if (exif.image.empty() && exif.photo.empty() && exif.place.empty()) return ByteVector();
    MemorySink sink;
    TRY(WriteTiffHeader(sink));
    TiffDirectory directory;
    TRY(directory.Add(exif, sink));
    TRY(directory.WriteAsFirst(sink));
    return sink.TakeBytes();
}

}  // namespace tessara
