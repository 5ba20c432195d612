#pragma once

#include <map>
#include <string>
#include <vector>

#include "view/ListWalk.h"

namespace tessara::test {

/// A viewer over a list of `count` files that shows nothing but remembers what it was told to.
class RecordingStage final : public ViewerStage {
  public:
    int count = 0;
    ListWalk walk{*this};
    std::vector<int> loaded;  ///< ListIndex at each Loadfile00, also where there is no such item
    std::map<int, bool> tools;
    std::string slideToolTip;

    int ItemCount() const override { return count; }
    void SetImageTool(int index, bool enabled) override { tools[index] = enabled; }
    void SetSlideToolTip(const std::string& text) override { slideToolTip = text; }
    void ShowFullScreen() override {}
    void Loadfile00() override { loaded.push_back(walk.ListIndex); }
    void FitSlide() override {}

    /// "-" for each button that is off, "+" for one that is on, "." for one that was never set.
    std::string Tools() const {
        std::string text;
        for (int i = 0; i <= kFullScreen; ++i) {
            const auto found = tools.find(i);
            text += found == tools.end() ? '.' : found->second ? '+' : '-';
        }
        return text;
    }
};

}  // namespace tessara::test
