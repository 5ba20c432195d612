#include "core/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <random>
#include <system_error>

#include "core/HeldSignals.h"
#include "core/WithinMemory.h"

namespace tessara {
namespace {

constexpr char kOpenFiles[] = "/proc/self/fd/";
constexpr mode_t kPermissions = 07777;

class FileDescriptor {
  public:
    explicit FileDescriptor(int number = -1) : number_(number) {}
    ~FileDescriptor() { Close(); }
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    int Number() const { return number_; }
    bool Valid() const { return number_ >= 0; }
    /// Some file systems report a full disk only here.
    bool Close() { return !Valid() || close(std::exchange(number_, -1)) == 0; }

  private:
    int number_;
};

std::string SystemMessage() {
    return std::generic_category().message(errno);
}

/// Hands bytes to the system in large pieces.
class FileSink final : public ByteSink {
  public:
    explicit FileSink(int file) : file_(file) {}

    Result<void> Write(Bytes bytes) override {
        if (bytes.size() > kBufferSize - used_) TRY(Flush());
        if (bytes.size() >= kBufferSize) return WriteOut(bytes);
        std::copy(bytes.begin(), bytes.end(), buffer_.get() + used_);
        used_ += bytes.size();
        return {};
    }
    Result<void> Overwrite(std::uint64_t position, Bytes bytes) override {
        TRY(Flush());
        while (!bytes.empty()) {
            const ssize_t count = pwrite(file_, bytes.data(), bytes.size(), static_cast<off_t>(position));
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) return CannotWrite(SystemMessage());
            bytes = bytes.subspan(static_cast<std::size_t>(count));
            position += static_cast<std::uint64_t>(count);
        }
        return {};
    }
    std::uint64_t Position() const override { return written_ + used_; }

    Result<void> Flush() {
        const std::size_t used = std::exchange(used_, 0);
        return WriteOut({buffer_.get(), used});
    }

  private:
    static constexpr std::size_t kBufferSize = 256 * 1024;

    Result<void> WriteOut(Bytes bytes) {
        while (!bytes.empty()) {
            const ssize_t count = write(file_, bytes.data(), bytes.size());
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) return CannotWrite(SystemMessage());
            bytes = bytes.subspan(static_cast<std::size_t>(count));
            written_ += static_cast<std::uint64_t>(count);
        }
        return {};
    }

    int file_;
    std::unique_ptr<std::uint8_t[]> buffer_ = std::make_unique_for_overwrite<std::uint8_t[]>(kBufferSize);
    std::size_t used_ = 0;
    std::uint64_t written_ = 0;
};

Result<void> WriteThrough(int file, const std::function<Result<void>(ByteSink&)>& write) {
    FileSink sink(file);
    TRY(write(sink));
    return sink.Flush();
}

/// Where a chain of symbolic links ends, also when nothing is there yet. The path itself if it is none.
Result<std::string> FollowLinks(std::string path) {
    constexpr int kLongestChain = 40;
    for (int i = 0; i < kLongestChain; ++i) {
        std::error_code error;
        const std::filesystem::path link = std::filesystem::read_symlink(path, error);
        if (error) return path;
        path = (std::filesystem::path(path).parent_path() / link).string();
    }
    return CannotWrite("too many symbolic links");
}

std::string TemporaryName(const std::filesystem::path& folder) {
    thread_local std::mt19937_64 random{std::random_device{}()};
    return (folder / (".tessara-" + std::to_string(random()) + ".tmp")).string();
}

/// A new file that has no name until it is complete where the system can do that, so that even a killed
/// process leaves nothing behind. While it has one that is not the target's, only SIGKILL leaves it there.
struct NewFile {
    std::unique_ptr<HeldSignals> held;
    FileDescriptor file;
    std::string temporaryName;  ///< empty while the file has no name

    static Result<NewFile> Make(const std::filesystem::path& folder) {
        constexpr mode_t kMode = 0666;  // less the user's mask
        NewFile made;
        if (access(kOpenFiles, X_OK) == 0)
            made.file = FileDescriptor(
                open(folder.empty() ? "." : folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, kMode));
        if (made.file.Valid()) return made;
        made.held = std::make_unique<HeldSignals>();
        const std::string name = TemporaryName(folder);
        made.file = FileDescriptor(open(name.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, kMode));
        if (!made.file.Valid()) return CannotWrite(SystemMessage());
        made.temporaryName = name;
        return made;
    }

    bool GiveName(const std::string& name) {
        const std::string self = kOpenFiles + std::to_string(file.Number());
        return linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
    }

    Result<void> MoveTo(const std::string& target, bool replaces) {
        if (temporaryName.empty()) {
            if (!replaces && GiveName(target)) return {};
            held = std::make_unique<HeldSignals>();
            const std::string name = TemporaryName(std::filesystem::path(target).parent_path());
            if (!GiveName(name)) return CannotWrite(SystemMessage());
            temporaryName = name;
        }
        if (!file.Close() || rename(temporaryName.c_str(), target.c_str()) != 0)
            return CannotWrite(SystemMessage());
        temporaryName.clear();
        return {};
    }

    NewFile() = default;
    NewFile(NewFile&& other) noexcept = default;
    ~NewFile() {
        if (!temporaryName.empty()) unlink(temporaryName.c_str());
    }
};

/// Gives a file the permissions and, where the user may do so, the owner of the one that it will replace.
bool BecomeLike(const struct stat& old, int file) {
    struct stat made {};
    if (fstat(file, &made) != 0) return false;
    // Where a file system has no permissions all files are alike, and it may refuse to be told any.
    const bool alike = ((made.st_mode ^ old.st_mode) & kPermissions) == 0;
    if (!alike && fchmod(file, old.st_mode & kPermissions) != 0) return false;
    // Only a privileged user may give files away; anybody else becomes the owner of what he wrote.
    [[maybe_unused]] const int ownerKept = fchown(file, old.st_uid, old.st_gid);
    return true;
}

Result<void> Replace(const std::string& path, const std::function<Result<void>(ByteSink&)>& write) {
    TRY_ASSIGN(const std::string target, FollowLinks(path));
    struct stat old {};
    const bool replaces = stat(target.c_str(), &old) == 0;
    if (replaces && !S_ISREG(old.st_mode)) {
        FileDescriptor device(open(target.c_str(), O_WRONLY | O_CLOEXEC));
        if (!device.Valid()) return CannotWrite(SystemMessage());
        return WriteThrough(device.Number(), write);
    }
    // Moving a file over another asks only whether the folder may be changed.
    if (replaces && faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0)
        return CannotWrite(SystemMessage());
    TRY_ASSIGN(NewFile made, NewFile::Make(std::filesystem::path(target).parent_path()));
    TRY(WriteThrough(made.file.Number(), write));
    // The old file is given up only when the new one would survive a power cut.
    if (replaces && (!BecomeLike(old, made.file.Number()) || fdatasync(made.file.Number()) != 0))
        return CannotWrite(SystemMessage());
    return made.MoveTo(target, replaces);
}

}  // namespace

Result<FileBytes> FileBytes::Read(const std::string& path) {
    // A pipe would wait for a writer to come; files do not mind.
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file.Valid() || fstat(file.Number(), &status) != 0) return CannotRead(SystemMessage());
    if (!S_ISREG(status.st_mode)) return CannotRead("not a file");
    const auto size = static_cast<std::size_t>(status.st_size);
    constexpr std::size_t kLargest = std::size_t{4} << 30;
    if (size > kLargest) return TooBig("the file is too large");

    FileBytes bytes;
    bytes.buffer_ = LargeBuffer(size);
    if (!bytes.buffer_.Valid()) return TooBig("no memory for the file");
    while (bytes.size_ < size) {
        const ssize_t count = read(file.Number(), bytes.buffer_.Data() + bytes.size_, size - bytes.size_);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return CannotRead(SystemMessage());
        if (count == 0) break;
        bytes.size_ += static_cast<std::size_t>(count);
    }
    return bytes;
}

bool IsFile(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

bool IsNormalFile(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

Result<void> ReplaceFile(const std::string& path, const std::function<Result<void>(ByteSink&)>& write) {
    return WithinMemory([&] { return Replace(path, write); });
}

}  // namespace tessara
