#pragma once

namespace tessara::metafile {

/// How much drawing a file may ask for. A few hundred bytes can order thousands of fillings of the whole
/// picture; real files stay far below. A unit is about a nanosecond.
class WorkBudget {
  public:
    /// Whether the work may still be done; if so it counts.
    bool Spend(double work) {
        if (!(work <= left_)) {
            left_ = 0;
            return false;
        }
        left_ -= work;
        return true;
    }
    bool Exhausted() const { return left_ <= 0; }

  private:
    double left_ = 2e9;
};

}  // namespace tessara::metafile
