#pragma once

#include <QString>
#include <vector>

namespace tessara {

/// An entry of the contents or of the index.
struct HelpEntry {
    QString title;
    QString topic;  ///< "2-1.htm#e3"; empty for a chapter, which is nothing but its parts
    std::vector<HelpEntry> parts;
};

/// What contents.json of the help folder says.
struct HelpTable {
    std::vector<HelpEntry> contents;
    std::vector<HelpEntry> index;  ///< by title, whatever its case
};

/// Empty where there is no such file.
HelpTable ReadHelpTable(const QString& folder);

}  // namespace tessara
