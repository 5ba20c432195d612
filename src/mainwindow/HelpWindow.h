#pragma once

#include <QTabWidget>
#include <QWidget>
#include <string>

#include "artwork/ToolStrip.h"
#include "mainwindow/Help.h"
#include "mainwindow/HelpNavigation.h"
#include "mainwindow/HelpPage.h"

namespace tessara {

/// The help in a window of its own: contents and index at the left, the page at the right. It stays usable
/// beside a modal dialog and remembers nothing.
class HelpWindow final : public QWidget, public HelpViewer {
    Q_OBJECT
  public:
    /// The pages are in `folder`; without the first of them the window never shows.
    explicit HelpWindow(const std::string& folder);

    HelpPage* Page() const { return page_; }
    HelpContents* Contents() const { return contents_; }
    HelpIndex* Index() const { return index_; }
    ToolStrip* Tools() const { return tools_; }

    void DisplayIndex(const std::string& page) override;
    void DisplayContents(const std::string& page) override;
    void DisplayTopic(const std::string& topic) override;
    void CloseHelp() override { close(); }

  protected:
    bool event(QEvent* event) override;

  private:
    void AddTools();
    void AddKeys();
    void LayOut();
    void ShowOn(QWidget* side, const std::string& page);

    const bool available_;
    ToolStrip* tools_;
    QTabWidget* sides_;
    HelpPage* page_;
    HelpContents* contents_;
    HelpIndex* index_;
};

}  // namespace tessara
