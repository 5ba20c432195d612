#pragma once

#include <QIcon>
#include <array>

namespace tessara {

/// The pictures of the folder tree, by their numbers.
enum class TreePicture {
    Desktop = 2,
    Computer = 3,
    Floppy = 4,
    FixedDisk = 5,
    OpticalDisc = 6,
    Documents = 7,
    ClosedFolder = 9,
    OpenFolder = 10,
    RemovableDisk = 11,
    NetworkDrive = 12,
    UnknownDrive = 13,
};

/// The icons of the folder tree `ImageListTreeViewS`, drawn as those of the toolbar are.
class TreePictures {
  public:
    TreePictures();
    /// A closed folder opens while its node is selected.
    QIcon Icon(TreePicture picture) const { return IconOf(static_cast<int>(picture)); }
    /// By number; empty where there is no such picture.
    QIcon IconOf(int number) const {
        const auto position = static_cast<std::size_t>(number);
        return position < icons_.size() ? icons_[position] : QIcon();
    }

  private:
    std::array<QIcon, 14> icons_;
};

}  // namespace tessara
