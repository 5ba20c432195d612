#pragma once

#include <QToolButton>
#include <string>

#include "desktop/LinkOpener.h"

namespace tessara {

/// Opens the folder that the last job wrote into. Hidden while there is none.
class TargetFolderButton final : public QToolButton {
    Q_OBJECT
  public:
    TargetFolderButton(LinkOpener& links, QWidget* parent);

    /// Shows the button for the folder of this file.
    void Offer(const std::string& writtenFile);
    void Withdraw() { hide(); }

  private:
    std::string folder_;
};

}  // namespace tessara
