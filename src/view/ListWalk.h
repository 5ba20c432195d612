#pragma once

#include "view/ViewerStage.h"

namespace tessara {

/// The viewer's place in the file list.
class ListWalk {
  public:
    explicit ListWalk(ViewerStage& stage) : stage_(stage) {}

    /// From 1. A circular slide show leaves 0, or one more than there are items, behind the last step.
    int ListIndex = 0;
    bool OnItem() const { return ListIndex >= 1 && ListIndex <= stage_.ItemCount(); }

    /// Goes to an item; 0 stands for none.
    void GoTo(int item);
    /// One item back (0) or on (1). The buttons tell what is possible then.
    void LastNext(int which);

  private:
    ViewerStage& stage_;
};

}  // namespace tessara
