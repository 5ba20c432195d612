#include "core/BatchAhead.h"

#include <sys/stat.h>

#include <algorithm>
#include <future>
#include <new>
#include <system_error>
#include <thread>

#include "core/Files.h"
#include "core/HeldSignals.h"
#include "core/Paths.h"
#include "core/WithinMemory.h"

namespace tessara {
namespace {

/// What tells one state of a file from another: a job may write what it has yet to read.
struct FileState {
    dev_t device = 0;
    ino_t number = 0;
    off_t size = -1;
    timespec modified{};
    timespec changed{};

    static FileState Of(const std::string& path) {
        struct stat status {};
        if (stat(path.c_str(), &status) != 0) return {};
        return {status.st_dev, status.st_ino, status.st_size, status.st_mtim, status.st_ctim};
    }
    bool operator==(const FileState& other) const {
        const auto same = [](const timespec& a, const timespec& b) {
            return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
        };
        return device == other.device && number == other.number && size == other.size &&
               same(modified, other.modified) && same(changed, other.changed);
    }
};

/// Drawings need the toolkit's fonts, which are left to the thread of the window.
bool IsDrawing(const Codec& codec) {
    return codec.name == "EMF" || codec.name == "WMF";
}

Result<Picture> ReadPicture(const std::string& path) {
    TRY_ASSIGN(const FileBytes file, FileBytes::Read(path));
    const Codec* codec = FindCodec(file.View(), ExtensionOf(path));
    if (!codec || IsDrawing(*codec)) return Unsupported("not read ahead");
    return codec->decode(file.View(), {});
}

Result<ByteVector> EncodePicture(const Picture& picture, const BatchAhead::Encoding& encoding) {
    MemorySink sink(picture.PixelCount() * sizeof(Pixel));
    TRY(encoding.format->codec->encode(picture, encoding.options, sink));
    return sink.TakeBytes();
}

/// None where a step fails or memory ends: then it is taken in its turn, with the means of then.
template <typename Step>
auto Try(const Step& step) -> std::optional<std::decay_t<decltype(step().Value())>> {
    if (auto result = WithinMemory(step)) return std::move(result).Value();
    return std::nullopt;
}

bool SamePixels(const Picture& a, const Picture& b) {
    return a.Width() == b.Width() && a.Height() == b.Height() && a.Pixels().data() == b.Pixels().data();
}

}  // namespace

/// One source on its thread. The results are futures: whoever asks too early waits.
class BatchAhead::Work {
  public:
    explicit Work(Source source) : source_(std::move(source)), made_(source_.encodings.size()) {
        for (auto& promise : made_) encoded_.push_back(promise.get_future());
        // A signal that came to this thread would not wait for the one that saves.
        const HeldSignals held;
        thread_ = std::jthread([this](const std::stop_token& stop) { Run(stop); });
    }

    const std::string& Path() const { return source_.path; }
    void Stop() { thread_.request_stop(); }

    /// None where the file cannot be read ahead or has changed since.
    const Picture* LoadedPicture() {
        decoded_.get_future().wait();
        return picture_ && state_ == FileState::Of(source_.path) ? &*picture_ : nullptr;
    }
    /// None for what was not encoded ahead, or has been taken. Only after LoadedPicture.
    std::optional<ByteVector> TakeEncoded(const Picture& picture, const Encoding& encoding) {
        if (!picture_ || !SamePixels(picture, *picture_)) return std::nullopt;
        for (std::size_t i = 0; i < made_.size(); ++i) {
            if (source_.encodings[i] == encoding && encoded_[i].valid()) return encoded_[i].get();
        }
        return std::nullopt;
    }

  private:
    void Run(const std::stop_token& stop) {
        state_ = FileState::Of(source_.path);
        picture_ = Try([&] { return ReadPicture(source_.path); });
        decoded_.set_value();
        for (std::size_t i = 0; i < made_.size(); ++i) {
            const bool wanted = picture_ && !stop.stop_requested();
            made_[i].set_value(wanted ? Try([&] { return EncodePicture(*picture_, source_.encodings[i]); })
                                      : std::nullopt);
        }
    }

    const Source source_;
    FileState state_;
    std::optional<Picture> picture_;
    std::promise<void> decoded_;
    std::vector<std::promise<std::optional<ByteVector>>> made_;
    std::vector<std::future<std::optional<ByteVector>>> encoded_;
    std::jthread thread_;  ///< the last, so that it ends before what it uses
};

BatchAhead::BatchAhead(Next next, int threads)
    : next_(std::move(next)), threads_(threads), depth_(threads > 1 ? 1 : 0) {}

BatchAhead::~BatchAhead() {
    if (current_) current_->Stop();
    for (const auto& work : ahead_) work->Stop();
}

void BatchAhead::StartWork() {
    while (next_ && ahead_.size() < depth_) {
        std::optional<Source> source = next_();
        if (!source || !TryStart(std::move(*source))) next_ = {};
    }
}

/// Where the system gives no thread or no memory, the job goes on alone.
bool BatchAhead::TryStart(Source source) {
    try {
        ahead_.push_back(std::make_unique<Work>(std::move(source)));
        return true;
    } catch (const std::system_error&) {
    } catch (const std::bad_alloc&) {
    }
    return false;
}

Result<void> BatchAhead::LoadImage(Rastx& pane, const std::string& path) {
    StartWork();
    current_.reset();
    if (!ahead_.empty() && ahead_.front()->Path() == path) {
        current_ = std::move(ahead_.front());
        ahead_.pop_front();
        StartWork();
        if (const Picture* picture = current_->LoadedPicture()) {
            pane.SetImage(*picture);
            // Large pictures keep few threads busy with many bytes.
            constexpr std::size_t kMostPixels = std::size_t{64} << 20;
            depth_ = std::clamp<std::size_t>(kMostPixels / picture->PixelCount(), 1,
                                             static_cast<std::size_t>(threads_));
            return {};
        }
    }
    return pane.LoadImage(path);
}

Result<void> BatchAhead::SaveAs(const Rastx& pane, const Encoding& encoding, const std::string& path) {
    std::optional<ByteVector> bytes;
    if (current_) bytes = current_->TakeEncoded(pane.Image(), encoding);
    if (!bytes) return pane.SaveAs(*encoding.format, path, encoding.options);
    return ReplaceFile(path, [&](ByteSink& sink) { return sink.Write(*bytes); });
}

}  // namespace tessara
