#pragma once

#include <QObject>
#include <optional>

#include "desktop/Clipboard.h"

class QClipboard;

namespace tessara {

/// The system's clipboard. A picture that this process put there comes back as it is; for other programs it
/// is encoded when one asks. Where the desktop refuses the clipboard, the picture last given stands in.
class ClipboardCarrier final : public QObject, public Clipboard {
    Q_OBJECT
  public:
    explicit ClipboardCarrier(QClipboard& clipboard);

    void Put(const Picture& picture) override;
    Result<Picture> Take() override;
    bool HasPicture() const override;

  private:
    void DataChanged();

    QClipboard& clipboard_;
    Picture kept_;  ///< the picture last given, until another program's data take its place
    /// Asking another program takes time, so the answer is kept until its data change.
    mutable std::optional<bool> othersOffer_;
};

}  // namespace tessara
