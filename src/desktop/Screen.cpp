#include "desktop/Screen.h"

#include <algorithm>
#include <cstddef>

namespace tessara {

Result<Picture> PartOf(const Picture& picture, const QRect& rectangle) {
    TRY_ASSIGN(Picture part, Picture::Create(rectangle.width(), rectangle.height(), kBlack, Alpha::None));
    const QRect inside = rectangle & QRect(0, 0, picture.Width(), picture.Height());
    const auto width = static_cast<std::size_t>(inside.width());
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        std::ranges::copy(picture.Row(y).subspan(static_cast<std::size_t>(inside.left()), width),
                          part.MutableRow(y - rectangle.top()).begin() + (inside.left() - rectangle.left()));
    return part;
}

}  // namespace tessara
