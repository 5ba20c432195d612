#pragma once

#include <memory>

#include "view/FormviewExport.h"
#include "view/FormviewImport.h"

namespace tessara {

/// The two viewers, each of which is open or not, and what the main window does with them.
class Viewers final : public QObject {
    Q_OBJECT
  public:
    explicit Viewers(const ViewSurroundings& surroundings);

    /// Null where it is not open.
    FormviewImport* Import() const { return import_.get(); }
    FormviewExport* Export() const { return export_.get(); }

    /// Opens the viewer, or brings the open one to the front.
    void ShowFormviewImport();
    void ShowFormviewExport();
    /// Opens the image viewer and starts the slide show, unless it runs.
    void StartSlideShow();
    /// The image viewer of a running show is set to its normal state and brought to the front.
    void SlidesToFront();

    /// Open viewers take the panes' pictures: 0 import viewer, 1 export viewer, 2 both. Each takes its
    /// picture by way of the clipboard, and the focus goes back to the main window.
    void PutviewExport(int which);

  private:
    ViewSurroundings surroundings_;
    std::unique_ptr<FormviewImport> import_;
    std::unique_ptr<FormviewExport> export_;
};

}  // namespace tessara
