#include "artwork/FramedCheckBox.h"

#include <QStyleOptionButton>

#include "artwork/Artwork.h"
#include "artwork/FieldColors.h"

namespace tessara {

void FramedCheckBox::initStyleOption(QStyleOptionButton* option) const {
    QCheckBox::initStyleOption(option);
    if (IsDark(option->palette)) option->palette = FramedBoxPalette(option->palette);
}

}  // namespace tessara
