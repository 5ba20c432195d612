#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessara {

/// What the desktop is asked to open for a target of the kind "WEB" or "MAIL" (in any case): without blanks
/// at its end, with the scheme that it lacks, and in lower case throughout.
std::string LinkAddress(std::string target, std::string_view kind);

/// The address of a folder, given as bytes, from here if it has no separator in front.
std::string FolderAddress(const std::string& folder);

/// Hands addresses to the desktop's browser, mail program and file manager.
class LinkOpener {
  public:
    virtual ~LinkOpener() = default;
    /// Nothing is reported where there is no such program.
    void OpenLink(const std::string& target, std::string_view kind) { Open(LinkAddress(target, kind)); }
    void OpenFolder(const std::string& folder) { Open(FolderAddress(folder)); }

  protected:
    virtual void Open(const std::string& address) = 0;
};

class DesktopLinkOpener final : public LinkOpener {
  protected:
    void Open(const std::string& address) override;
};

class ScriptedLinkOpener final : public LinkOpener {
  public:
    std::vector<std::string> opened;

  protected:
    void Open(const std::string& address) override { opened.push_back(address); }
};

}  // namespace tessara
