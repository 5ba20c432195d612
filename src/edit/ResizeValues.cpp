#include "edit/ResizeValues.h"

#include <algorithm>

#include "core/Numbers.h"

namespace tessara {

ResizeValues::ResizeValues(int imageWidth, int imageHeight, int exportPaneHeight)
    // No picture is less than a pixel wide; without one there is nothing to divide by.
    : BaseSize_{std::max(imageWidth, 1), std::max(imageHeight, 1)},
      MaxSize_((exportPaneHeight > imageWidth ? imageHeight : imageWidth) * 5) {
    value_ = {std::min(imageWidth, MaxSize_), std::min(imageHeight, MaxSize_)};
    text_ = {std::to_string(imageWidth), std::to_string(imageHeight)};
}

void ResizeValues::ChangeHScroll(int Index, int value) {
    if (value != Value(Index)) SetValue(Index, value);
}

void ResizeValues::SetValue(int Index, int value) {
    value_[At(Index)] = std::clamp(value, 0, Max());
    text_[At(Index)] = std::to_string(Value(Index));
    KeepProportions(Index);
}

void ResizeValues::KeepProportions(int Index) {
    if (!constrain_) return;
    const int Other = 1 - Index;
    const double Ratio = double(Value(Index)) / BaseSize_[At(Index)];
    const int follows = percent_ ? Value(Index) : RoundToEven(Ratio * BaseSize_[At(Other)]);
    // A new value of the other slider comes back here, and ends where nothing changes any more.
    ChangeHScroll(Other, std::min(follows, Max()));
    text_[At(Other)] = std::to_string(Value(Other));
}

void ResizeValues::Text1_Change(int Index, const std::string& text) {
    if (text == Text(Index)) return;
    const double V = LeadingNumber(text);
    const std::string taken = V > Max() ? std::to_string(Max()) : V < 0 ? "0" : text;
    ChangeHScroll(Index, RoundToEven(LeadingNumber(taken)));
    KeepProportions(Index);
    // Of 100 the first digits alone may become 11 with the other side's rounding: the user has not done yet.
    text_[At(Index)] = taken;
}

void ResizeValues::Option1_Click(int Index) {
    percent_ = Index == 1;
    for (const int i : {0, 1}) {
        const double size = Value(i), base = BaseSize_[At(i)];
        value_[At(i)] = std::min(RoundToEven(percent_ ? size / base * 100 : base * size / 100), Max());
        text_[At(i)] = std::to_string(Value(i));
    }
}

int ResizeValues::NewSize(int Index, int side) const {
    return percent_ ? RoundToEven(double(side) * Value(Index) / 100) : Value(Index);
}

}  // namespace tessara
