#pragma once

#include "browse/Browser.h"

namespace tessara {

/// Tells how many files there are and are checked, and enables what makes sense.
class SelectionSummary {
  public:
    explicit SelectionSummary(Browser& browser);

    void SelectIcoSourceIco();
    /// Writes the line of current options.
    void PrintNote();

  private:
    Browser& browser_;
};

}  // namespace tessara
