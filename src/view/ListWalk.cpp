#include "view/ListWalk.h"

namespace tessara {

void ListWalk::GoTo(int item) {
    ListIndex = item;
    stage_.SetImageTool(kPrevious, item != 1);
    stage_.SetImageTool(kNext, item != stage_.ItemCount());
}

void ListWalk::LastNext(int which) {
    const int count = stage_.ItemCount();
    stage_.SetImageTool(kPrevious, true);
    stage_.SetImageTool(kNext, true);
    if (which == 1) {
        if (ListIndex < count) ++ListIndex;
        if (ListIndex == count) stage_.SetImageTool(kNext, false);
    } else {
        if (ListIndex > 1) --ListIndex;
        if (ListIndex == 1) stage_.SetImageTool(kPrevious, false);
    }
}

}  // namespace tessara
