#include "tests/mainwindow/SpokenTree.h"

#include <map>

#include "tests/mainwindow/EveryWindow.h"

namespace tessara {
namespace {

/// The parts of tests/files/spoken.txt by the names above them.
std::map<std::string, std::string> ExpectedTrees() {
    std::map<std::string, std::string> trees;
    const ByteVector file = test::TestFile("spoken.txt");
    std::string text(file.begin(), file.end());
    for (std::size_t head = text.find("== "); head != std::string::npos;) {
        const std::size_t line = text.find('\n', head) + 1;
        const std::size_t next = text.find("\n== ", line);
        trees[text.substr(head + 3, line - head - 4)] = text.substr(line, next - line);
        head = next == std::string::npos ? next : next + 1;
    }
    return trees;
}

class SpokenTreeTest : public test::EveryWindow {
  protected:
    /// Without what is another on every run.
    std::string Spoken(QWidget& window) {
        std::string tree = test::SpokenTree(window);
        const std::string date = List().topLevelItem(0)->text(3).simplified().toStdString();
        for (const auto& [changing, word] : {std::pair{folder_.Path(), "FOLDER"}, {date, "DATE"}})
            for (std::size_t at; (at = tree.find(changing)) != std::string::npos;)
                tree.replace(at, changing.size(), word);
        return tree;
    }
};

// A window that is to be spoken of differently: what the test found goes into tests/files/spoken.txt.
TEST_F(SpokenTreeTest, TellsAScreenReaderWhatEveryWindowHolds) {
    std::map<std::string, std::string> expected = ExpectedTrees();
    VisitAll([&](QWidget& window, const std::string& name) {
        EXPECT_EQ(Spoken(window), expected[name]) << name;
        expected.erase(name);
    });
    for (const auto& [name, tree] : expected) ADD_FAILURE() << name << " did not open";
}

}  // namespace
}  // namespace tessara
