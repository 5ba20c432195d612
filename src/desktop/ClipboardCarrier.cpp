#include "desktop/ClipboardCarrier.h"

#include <QClipboard>

#include "desktop/PictureMime.h"

namespace tessara {

ClipboardCarrier::ClipboardCarrier(QClipboard& clipboard) : clipboard_(clipboard) {
    connect(&clipboard, &QClipboard::dataChanged, this, &ClipboardCarrier::DataChanged);
}

void ClipboardCarrier::Put(const Picture& picture) {
    clipboard_.setMimeData(new PictureMime(picture));
    // After what the clipboard may have raised about older data.
    kept_ = picture;
}

Result<Picture> ClipboardCarrier::Take() {
    if (!kept_.Empty()) return kept_;
    const QMimeData* const data = clipboard_.mimeData();
    if (!data) return CannotRead("there is no clipboard");
    return TakePicture(*data);
}

bool ClipboardCarrier::HasPicture() const {
    if (!kept_.Empty()) return true;
    if (!othersOffer_) {
        const QMimeData* const data = clipboard_.mimeData();
        othersOffer_ = data && OffersPicture(*data);
    }
    return *othersOffer_;
}

void ClipboardCarrier::DataChanged() {
    othersOffer_.reset();
    const QMimeData* const data = clipboard_.mimeData();
    const bool own = qobject_cast<const PictureMime*>(data) != nullptr;
    // A clipboard without any data was not given new ones: it was refused to us, or its owner has gone.
    if (!own && data && !data->formats().isEmpty()) kept_ = {};
    if (Changed) Changed();
}

}  // namespace tessara
