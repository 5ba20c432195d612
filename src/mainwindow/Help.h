#pragma once

#include <string>
#include <vector>

#include "settings/Session.h"

namespace tessara {

/// The page that is always shown first.
inline constexpr char kFirstHelpPage[] = "1-1.htm";

/// What shows the help. A page is the name of a file of the help folder; a topic is a page, or a page, "#"
/// and a mark in it.
class HelpViewer {
  public:
    virtual ~HelpViewer() = default;
    virtual void DisplayIndex(const std::string& page) = 0;
    virtual void DisplayContents(const std::string& page) = 0;
    virtual void DisplayTopic(const std::string& topic) = 0;
    virtual void CloseHelp() = 0;
};

/// Remembers the topics that were shown.
class ScriptedHelpViewer final : public HelpViewer {
  public:
    std::vector<std::string> topics;
    bool closed = false;

    void DisplayIndex(const std::string&) override {}
    void DisplayContents(const std::string&) override {}
    void DisplayTopic(const std::string& topic) override { topics.push_back(topic); }
    void CloseHelp() override { closed = true; }
};

/// The way of the menu and of the dialogs' help buttons to the help.
class Help {
  public:
    Help(Session& session, HelpViewer& viewer) : session_(session), viewer_(viewer) {}

    /// Opens the viewer with its index and contents ready, and goes to the topic. Nothing is reported.
    void RunHtmlHelp(const std::string& topic);
    /// For the program's end: closes what RunHtmlHelp opened.
    void CloseHelp();

  private:
    Session& session_;
    HelpViewer& viewer_;
};

}  // namespace tessara
