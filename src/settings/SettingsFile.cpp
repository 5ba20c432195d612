#include "settings/SettingsFile.h"

#include <algorithm>
#include <filesystem>
#include <tuple>

#include "core/ByteReader.h"
#include "core/ByteSink.h"
#include "core/Files.h"
#include "settings/FixedText.h"

namespace tessara {
namespace {

constexpr std::size_t kFolderSize = 300;

/// A member of a record, and where its bytes begin in the file.
template <typename Record, typename Value>
struct Field {
    std::size_t offset;
    Value Record::*member;
};
template <typename Record, typename Value>
Field(std::size_t, Value Record::*) -> Field<Record, Value>;

constexpr std::tuple kConvertFields{
    Field{0, &ConvertOptions::ListAllFiles},    Field{2, &ConvertOptions::ImportOn},
    Field{52, &ConvertOptions::ConvertScope},   Field{53, &ConvertOptions::ExportOn},
    Field{73, &ConvertOptions::TargetFolder},   Field{373, &ConvertOptions::StartFolder},
    Field{673, &ConvertOptions::OverwriteMode}, Field{674, &ConvertOptions::ListImportOnly},
};
constexpr std::size_t kConvertStart = 0;
constexpr std::size_t kConvertEnd = 676;

constexpr std::tuple kSlideFields{
    Field{799, &SlideOptions::SlideAuto},       Field{800, &SlideOptions::SlideResize},
    Field{801, &SlideOptions::SlideFullScreen}, Field{802, &SlideOptions::SlideCircular},
    Field{803, &SlideOptions::SlideDelay},      Field{807, &SlideOptions::SlideOrder},
};
constexpr std::size_t kSlideStart = 799;
constexpr std::size_t kSlideEnd = 808;

void Get(ByteReader& reader, bool& value) {
    value = reader.U16Le() != 0;
}
void Get(ByteReader& reader, std::uint8_t& value) {
    value = reader.U8();
}
void Get(ByteReader& reader, std::int32_t& value) {
    value = reader.I32Le();
}
void Get(ByteReader& reader, std::string& value) {
    const Bytes text = reader.Take(kFolderSize);
    value.assign(text.begin(), text.end());
    value.erase(value.find_last_not_of(' ') + 1);
}
template <std::size_t count>
void Get(ByteReader& reader, std::array<bool, count>& values) {
    for (bool& value : values) Get(reader, value);
}

void Put(ByteWriter& writer, bool value) {
    writer.U16Le(value ? 0xffff : 0);
}
void Put(ByteWriter& writer, std::uint8_t value) {
    writer.U8(value);
}
void Put(ByteWriter& writer, std::int32_t value) {
    writer.I32Le(value);
}
void Put(ByteWriter& writer, const std::string& value) {
    writer.Text(FixedText(value, kFolderSize));
}
template <std::size_t count>
void Put(ByteWriter& writer, const std::array<bool, count>& values) {
    for (const bool value : values) Put(writer, value);
}

/// Writes the record into the bytes of the file, which must reach to its end.
template <typename Record, typename Fields>
void Store(const Record& record, const Fields& fields, ByteVector& file) {
    const auto store = [&](const auto& field) {
        ByteWriter writer;
        Put(writer, record.*field.member);
        std::ranges::copy(writer.Written(), file.begin() + static_cast<std::ptrdiff_t>(field.offset));
    };
    std::apply([&](const auto&... field) { (store(field), ...); }, fields);
}

template <typename Record, typename Fields>
void Fetch(Record& record, const Fields& fields, Bytes file) {
    const auto fetch = [&](const auto& field) {
        ByteReader reader(Slice(file, field.offset));
        Get(reader, record.*field.member);
    };
    std::apply([&](const auto&... field) { (fetch(field), ...); }, fields);
}

ByteVector WholeFile(const std::string& path) {
    const Result<FileBytes> file = FileBytes::Read(path);
    if (!file) return {};
    const Bytes bytes = file.Value().View();
    return {bytes.begin(), bytes.end()};
}

template <typename Record, typename Fields>
Result<void> ReadRecord(const std::string& path, std::size_t start, std::size_t end, const Fields& fields,
                        Record& record) {
    TRY_ASSIGN(const FileBytes file, FileBytes::Read(path));
    // What a short file lacks is taken from the record as it stands.
    ByteVector bytes(end);
    Store(record, fields, bytes);
    const Bytes present = file.View().first(std::min(file.View().size(), end));
    if (present.size() > start)
        std::ranges::copy(present.subspan(start), bytes.begin() + static_cast<std::ptrdiff_t>(start));
    Fetch(record, fields, bytes);
    return {};
}

template <typename Record, typename Fields>
Result<void> WriteRecord(const std::string& path, std::size_t end, const Fields& fields,
                         const Record& record) {
    ByteVector bytes = WholeFile(path);
    bytes.resize(std::max(bytes.size(), end));
    Store(record, fields, bytes);
    return ReplaceFile(path, [&](ByteSink& sink) { return sink.Write(bytes); });
}

}  // namespace

ConvertOptions ConvertOptions::FirstRun(const std::string& appPath) {
    constexpr std::size_t kGif = 1;
    constexpr std::size_t kJpg = 2;
    ConvertOptions options;
    options.ImportOn.fill(true);
    options.ConvertScope = 1;
    options.ExportOn[kGif] = options.ExportOn[kJpg] = true;
    options.TargetFolder = options.StartFolder = FolderField(appPath);
    return options;
}

std::string FolderField(const std::string& folder) {
    return folder + std::string(kTerminator);
}

std::string FolderOf(const std::string& field) {
    return TextOfField(field).value_or(std::string());
}

bool HasTerminator(const std::string& field) {
    return TextOfField(field).has_value();
}

bool SettingsFile::HasContents() const {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path_, error);
    return !error && size > 0;
}

Result<void> SettingsFile::Read(ConvertOptions& options) const {
    return ReadRecord(path_, kConvertStart, kConvertEnd, kConvertFields, options);
}

Result<void> SettingsFile::Write(const ConvertOptions& options) const {
    return WriteRecord(path_, kConvertEnd, kConvertFields, options);
}

Result<void> SettingsFile::Read(SlideOptions& options) const {
    TRY(ReadRecord(path_, kSlideStart, kSlideEnd, kSlideFields, options));
    options.RepairDelay();
    return {};
}

Result<void> SettingsFile::Write(const SlideOptions& options) const {
    return WriteRecord(path_, kSlideEnd, kSlideFields, options);
}

}  // namespace tessara
