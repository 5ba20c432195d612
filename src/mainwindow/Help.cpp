#include "mainwindow/Help.h"

namespace tessara {

void Help::RunHtmlHelp(const std::string& topic) {
    session_.HelpOpened = true;
    viewer_.DisplayIndex(kFirstHelpPage);
    viewer_.DisplayContents(kFirstHelpPage);
    viewer_.DisplayTopic(topic);
}

void Help::CloseHelp() {
    if (session_.HelpOpened) viewer_.CloseHelp();
}

}  // namespace tessara
