#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/rastx/Rastx.h"

namespace tessara {

/// Reads and encodes the sources of a job before their turn, each on a thread of its own. Nothing is written
/// ahead, and what was made ahead is used only where it is what would be made now: a job does the same with
/// it and without it, only later.
class BatchAhead {
  public:
    struct Encoding {
        const ExportFormat* format;
        EncodeOptions options;
        bool operator==(const Encoding&) const = default;
    };
    struct Source {
        std::string path;
        std::vector<Encoding> encodings;
    };
    /// Gives the sources in the order in which they will be loaded, then none. Called by LoadImage.
    using Next = std::function<std::optional<Source>()>;

    /// With one thread nothing is done ahead.
    BatchAhead(Next next, int threads);
    /// Gives up what has not been asked for; waits for what cannot be stopped.
    ~BatchAhead();

    /// What the pane's operations of these names do.
    Result<void> LoadImage(Rastx& pane, const std::string& path);
    Result<void> SaveAs(const Rastx& pane, const Encoding& encoding, const std::string& path);

  private:
    class Work;

    void StartWork();
    bool TryStart(Source source);

    Next next_;
    int threads_;
    std::size_t depth_ = 0;
    std::unique_ptr<Work> current_;  ///< of the source that was loaded last
    std::deque<std::unique_ptr<Work>> ahead_;
};

}  // namespace tessara
