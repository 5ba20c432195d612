#pragma once

#include <vector>

namespace tessara {

/// Floyd-Steinberg error diffusion, row by row from the top; every second row runs from right to left, so
/// that the patterns do not lean to one side.
///
/// `Error` is a number or a group of channels with +, * int; errors are handed on in sixteenths.
template <typename Error>
class ErrorDiffusion {
  public:
    explicit ErrorDiffusion(int width) : width_(width), errors_(static_cast<std::size_t>(width) + 2) {}

    /// Calls `choose(x, sixteenths)` for each pixel of the next row: it is told the error that has gathered
    /// at x and returns the error that it leaves, in whole steps.
    template <typename Choose>
    void NextRow(const Choose& choose) {
        if (leftward_)
            Run<-1>(width_ - 1, choose);
        else
            Run<1>(0, choose);
        leftward_ = !leftward_;
    }

  private:
    // errors_[x + 1] belongs to column x: of this row until it is passed, of the next one from then on.
    template <int step, typename Choose>
    void Run(int first, const Choose& choose) {
        Error ahead{}, below{}, belowBehind{};
        Error* at = errors_.data() + first + 1;
        for (int i = 0, x = first; i < width_; ++i, x += step, at += step) {
            const Error left = choose(x, *at + ahead);
            ahead = left * 7;
            *(at - step) = belowBehind + left * 3;
            belowBehind = below + left * 5;
            below = left;
        }
        *(at - step) = belowBehind;
    }

    int width_;
    bool leftward_ = false;
    std::vector<Error> errors_;
};

}  // namespace tessara
