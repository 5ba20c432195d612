#include "mainwindow/HelpWindow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QScrollBar>
#include <QTabBar>
#include <QTest>
#include <QTextBlock>

#include "artwork/Artwork.h"
#include "tests/Support.h"

namespace tessara {
namespace {

/// Tells the calls in order, with what the session says at that moment.
class RecordingViewer final : public HelpViewer {
  public:
    explicit RecordingViewer(const Session& session) : session_(session) {}
    std::vector<std::string> calls;

    void DisplayIndex(const std::string& page) override { Add("index " + page); }
    void DisplayContents(const std::string& page) override { Add("contents " + page); }
    void DisplayTopic(const std::string& topic) override { Add("topic " + topic); }
    void CloseHelp() override { Add("close"); }

  private:
    void Add(const std::string& call) { calls.push_back(call + (session_.HelpOpened ? "" : " unannounced")); }

    const Session& session_;
};

TEST(Help, OpensIndexAndContentsAtTheFirstPageBeforeTheTopic) {
    Session session;
    RecordingViewer viewer(session);
    Help help(session, viewer);
    help.CloseHelp();
    EXPECT_TRUE(viewer.calls.empty());
    help.RunHtmlHelp("2-1.htm#abouttr");
    help.CloseHelp();
    EXPECT_EQ(viewer.calls, (std::vector<std::string>{"index 1-1.htm", "contents 1-1.htm",
                                                      "topic 2-1.htm#abouttr", "close"}));
}

/// A small manual: a first page, and a long one with a mark far below.
class HelpWindowTest : public testing::Test {
  protected:
    HelpWindowTest() {
        const std::string head =
            "<html><head><link rel=\"stylesheet\" type=\"text/css\" href=\"style.css\"></head><body>";
        Write("1-1.htm", head + "<h1>First</h1></body></html>");
        std::string lines;
        for (int i = 0; i < 200; ++i) lines += "<p>A line.</p>";
        Write("2-1.htm", head + "<h1>Second</h1>" + lines + "<h2><a name=\"far\"></a>Far</h2>" + lines);
        Write("style.css", "h1 { color: #0f8f88; }");
        Write("contents.json", R"({
            "contents": [{"title": "Chapter", "parts": [
                {"title": "First", "page": "1-1.htm"},
                {"title": "Second", "page": "2-1.htm", "parts": [{"title": "Far", "page": "2-1.htm#far"}]}]}],
            "index": {"zebra": "1-1.htm", "Far away": "2-1.htm#far", "afar": "2-1.htm"}})");
    }

    void Write(const std::string& name, const std::string& text) {
        test::WriteWhole(folder_.File(name), AsBytes(text));
    }
    std::string Topic(const HelpWindow& window) {
        return HelpPage::TopicOf(window.Page()->source()).toStdString();
    }
    std::string Marked(const HelpWindow& window) {
        return window.Contents()->currentItem()->text(0).toStdString();
    }
    QColor HeadingColor(const HelpWindow& window) {
        return window.Page()->document()->begin().begin().fragment().charFormat().foreground().color();
    }

    test::TemporaryFolder folder_;
    Session session_;
};

TEST_F(HelpWindowTest, ShowsTheTopicWithTheContentsBesideItAndTheFirstPageBehindIt) {
    HelpWindow window(folder_.Path());
    Help(session_, window).RunHtmlHelp("2-1.htm#far");
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(window.Contents()->isVisible());
    EXPECT_EQ(Topic(window), "2-1.htm#far");
    EXPECT_EQ(Marked(window), "Far");
    EXPECT_GT(window.Page()->verticalScrollBar()->value(), 0);

    const auto press = [&](int tool) { QTest::mouseClick(window.Tools()->Imagetool(tool), Qt::LeftButton); };
    press(0);
    EXPECT_EQ(Topic(window), "1-1.htm");
    EXPECT_EQ(Marked(window), "First");
    EXPECT_FALSE(window.Tools()->Imagetool(0)->isEnabled());
    press(1);
    EXPECT_EQ(Topic(window), "2-1.htm#far");
    press(2);
    EXPECT_EQ(Topic(window), "1-1.htm");
    window.CloseHelp();
    EXPECT_FALSE(window.isVisible());
}

TEST_F(HelpWindowTest, IsNotSeenWithoutPagesAndStaysWhereItIsWithoutThePage) {
    HelpWindow nothing(folder_.File("missing"));
    Help(session_, nothing).RunHtmlHelp("2-1.htm");
    EXPECT_FALSE(nothing.isVisible());

    HelpWindow window(folder_.Path());
    Help(session_, window).RunHtmlHelp("9-9.htm#far");
    EXPECT_EQ(Topic(window), "1-1.htm");
}

TEST_F(HelpWindowTest, AChoiceInTheContentsOpensItOnceMoreToo) {
    HelpWindow window(folder_.Path());
    window.DisplayContents("1-1.htm");
    QTreeWidgetItem* second = window.Contents()->topLevelItem(0)->child(1);
    window.Contents()->setCurrentItem(second);
    EXPECT_EQ(Topic(window), "2-1.htm");
    window.Page()->verticalScrollBar()->setValue(1000);
    window.Page()->Open(QStringLiteral("2-1.htm#nowhere"));  // a mark that the contents do not list
    EXPECT_EQ(Marked(window), "Second");
    QTest::mouseClick(window.Contents()->viewport(), Qt::LeftButton, {},
                      window.Contents()->visualItemRect(second).center());
    EXPECT_EQ(Topic(window), "2-1.htm");
    EXPECT_EQ(window.Page()->verticalScrollBar()->value(), 0);
}

TEST_F(HelpWindowTest, TheIndexIsSortedAndNarrowedDownByTyping) {
    HelpWindow window(folder_.Path());
    Help(session_, window).RunHtmlHelp("1-1.htm");
    EXPECT_EQ(window.focusWidget(), window.Page());
    window.findChild<QTabWidget*>()->setCurrentWidget(window.Index());
    EXPECT_EQ(window.focusWidget(), window.Index()->Word()) << "one may type at once";
    QListWidget* words = window.Index()->Words();
    EXPECT_EQ(words->item(0)->text(), QStringLiteral("afar"));
    QTest::keyClicks(window.Index()->Word(), QStringLiteral("fAR"));
    EXPECT_TRUE(words->item(2)->isHidden());
    // The word that begins with it is marked, although another one stands above.
    EXPECT_EQ(words->currentItem()->text(), QStringLiteral("Far away"));
    QTest::keyClick(window.Index()->Word(), Qt::Key_Return);
    EXPECT_EQ(Topic(window), "2-1.htm#far");
    QTest::keyClick(window.Index()->Word(), Qt::Key_Up);
    QTest::keyClick(window.Index()->Word(), Qt::Key_Return);
    EXPECT_EQ(Topic(window), "2-1.htm");
}

TEST_F(HelpWindowTest, KeysLeadFromThePageToTheSidesAndBack) {
    HelpWindow window(folder_.Path());
    window.DisplayContents("1-1.htm");
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    const auto press = [&](Qt::Key key, Qt::KeyboardModifier modifier = Qt::NoModifier) {
        QTest::keyClick(window.windowHandle(), key, modifier);
        return window.focusWidget();
    };
    EXPECT_EQ(press(Qt::Key_F6), window.Contents());
    EXPECT_EQ(press(Qt::Key_F6), window.Page());
    EXPECT_EQ(press(Qt::Key_I, Qt::AltModifier), window.Index()->Word());
    EXPECT_EQ(press(Qt::Key_C, Qt::AltModifier), window.Contents());
    auto* const tabs = window.findChild<QTabBar*>();
    tabs->setFocus();
    EXPECT_EQ(press(Qt::Key_Right), tabs) << "who walks along the tabs stays on them";
}

TEST_F(HelpWindowTest, PagesFollowThePalette) {
    HelpWindow window(folder_.Path());
    window.DisplayTopic("2-1.htm");
    window.Page()->verticalScrollBar()->setValue(500);
    for (const QPalette& palette : {QPalette(QColor(60, 60, 60), QColor(43, 43, 43)),
                                    QPalette(QColor(240, 240, 240), QColor(239, 239, 239))}) {
        window.setPalette(palette);
        EXPECT_EQ(HeadingColor(window), ArtworkAccent(palette));
        EXPECT_EQ(window.Page()->verticalScrollBar()->value(), 500);
    }
}

TEST_F(HelpWindowTest, TheWheelWithCtrlAndTheKeysZoomWithinLimits) {
    HelpWindow window(folder_.Path());
    window.DisplayTopic("1-1.htm");
    const auto size = [&] { return window.Page()->document()->defaultFont().pointSizeF(); };
    const auto turn = [&](int delta) {
        QWheelEvent event({10, 10}, window.Page()->mapToGlobal(QPointF(10, 10)), {}, {0, delta}, Qt::NoButton,
                          Qt::ControlModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(window.Page()->viewport(), &event);
    };
    const qreal normal = size();
    turn(120);
    EXPECT_EQ(size(), normal + 1);
    for (int i = 0; i < 50; ++i) turn(-120);
    EXPECT_GE(size(), normal - 4);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(window.Page(), Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(size(), normal);
}

TEST_F(HelpWindowTest, CanBeUsedBesideAModalDialog) {
    // By the window system's clicks, which a modal dialog keeps from other windows.
    const auto goBack = [&](HelpWindow& window) {
        window.DisplayTopic("1-1.htm");
        window.DisplayTopic("2-1.htm");
        const QPoint back = window.Tools()->Imagetool(0)->geometry().center();
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, window.Tools()->mapTo(&window, back));
        return Topic(window) == "1-1.htm";
    };
    HelpWindow early(folder_.Path());
    HelpWindow late(folder_.Path());
    EXPECT_TRUE(goBack(early));
    {
        QDialog dialog;
        dialog.setModal(true);
        dialog.show();
        EXPECT_TRUE(goBack(early)) << "opened before the dialog";
        EXPECT_TRUE(goBack(late)) << "opened from the dialog";
        QDialog question(&dialog);
        question.setModal(true);
        question.show();
        EXPECT_TRUE(goBack(early)) << "with a further dialog";
        question.close();
        EXPECT_TRUE(goBack(early)) << "without it";
    }
    EXPECT_TRUE(goBack(early)) << "after the dialog";
    EXPECT_TRUE(early.isVisible() && late.isVisible());
}

}  // namespace
}  // namespace tessara
