#pragma once

#include <array>
#include <string>

namespace tessara {

/// The numbers of the resize dialog. Index 0 is the width, 1 the height. With proportions kept each follows
/// the other until both stand still, so that a width of 51 for a picture of 100 by 50 becomes 52 by 26.
class ResizeValues {
  public:
    ResizeValues() = default;
    /// `exportPaneHeight` is the height of the pane on screen in twips. That it is compared with the
    /// picture's width is how the limit has always been chosen.
    ResizeValues(int imageWidth, int imageHeight, int exportPaneHeight);

    /// A slider has got a new value.
    void ChangeHScroll(int Index, int value);
    /// A box has got another text, which may be a number half typed: it stays until FinishText, unless it is
    /// beyond the limits, whatever the value becomes for the proportions' sake.
    void Text1_Change(int Index, const std::string& text);
    void FinishText(int Index) { text_[At(Index)] = std::to_string(Value(Index)); }
    /// 0 pixels, 1 percent; both show the same size.
    void Option1_Click(int Index);
    void SetConstrainProportions(bool on) { constrain_ = on; }

    bool ConstrainProportions() const { return constrain_; }
    bool Percent() const { return percent_; }
    int Value(int Index) const { return value_[At(Index)]; }
    /// The box's text; it follows the value except while it is being typed.
    const std::string& Text(int Index) const { return text_[At(Index)]; }
    /// Of both sliders; they start at 0.
    int Max() const { return percent_ ? 500 : MaxSize_; }
    int LargeChange() const { return MaxSize_ / 8; }
    /// The new size of a picture whose side is `side` long now.
    int NewSize(int Index, int side) const;

  private:
    static std::size_t At(int Index) { return static_cast<std::size_t>(Index); }
    void SetValue(int Index, int value);
    void KeepProportions(int Index);

    std::array<int, 2> BaseSize_{};
    int MaxSize_ = 0;
    bool percent_ = false;
    bool constrain_ = true;
    std::array<int, 2> value_{};
    std::array<std::string, 2> text_{"0", "0"};
};

}  // namespace tessara
