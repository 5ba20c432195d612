#include <gtest/gtest.h>

#include <QLabel>
#include <QRegularExpression>
#include <QScreen>
#include <QTest>

#include "mainwindow/InformationDialogs.h"
#include "mainwindow/SplashForm.h"

namespace tessara {
namespace {

TEST(SplashForm, StandsInTheMiddleUntilAClickOrAKey) {
    SplashForm splash;
    splash.ShowAtOnce();
    const QPoint offset = splash.geometry().center() - splash.screen()->geometry().center();
    EXPECT_LE(offset.manhattanLength(), 2);
    EXPECT_EQ(splash.cursor().shape(), Qt::WaitCursor);
    QTest::mouseClick(splash.LabelBuild(), Qt::LeftButton);
    EXPECT_FALSE(splash.isVisible());
    splash.ShowAtOnce();
    QTest::keyClick(&splash, Qt::Key_Escape);
    EXPECT_FALSE(splash.isVisible());
}

class InformationDialogs : public testing::Test {
  protected:
    std::vector<std::string> opened_;

    const OpenLinkFunction recording_ = [this](const std::string& target, const std::string& kind) {
        opened_.push_back(kind + " " + target);
    };
    /// Activates all links of a form and counts them.
    template <typename Form>
    int FollowLinks() {
        Form form(recording_, nullptr);
        const QRegularExpression href(QStringLiteral("href=\"([^\"]+)\""));
        int links = 0;
        for (QLabel* label : form.template findChildren<QLabel*>())
            if (const auto match = href.match(label->text()); match.hasMatch()) {
                Q_EMIT label->linkActivated(match.captured(1));
                ++links;
            }
        return links;
    }
};

TEST_F(InformationDialogs, EnterOpensALinkOnlyWhereTheTabKeyHasLedToIt) {
    FrmHomePage form(recording_, nullptr);
    form.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Return}) QTest::keyClick(form.windowHandle(), key);
    EXPECT_EQ(opened_, std::vector<std::string>{"WEB www.tessara.example"});
    EXPECT_TRUE(form.isVisible());
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Return}) QTest::keyClick(form.windowHandle(), key);
    EXPECT_EQ(opened_.size(), 1u);
    EXPECT_FALSE(form.isVisible());
}

TEST_F(InformationDialogs, EveryLinkOpensItsOwnTarget) {
    EXPECT_EQ(FollowLinks<AboutForm>(), 1);
    EXPECT_EQ(FollowLinks<FrmHomePage>(), 1);
    EXPECT_EQ(FollowLinks<DialogProd>(), 1);
    EXPECT_EQ(FollowLinks<ServicesForm>(), 3);
    EXPECT_EQ(opened_, (std::vector<std::string>{
                           "WEB www.tessara.example", "WEB www.tessara.example",
                           "WEB www.tessara.example/products", "WEB www.tessara.example/newsletter",
                           "WEB www.tessara.example/support", "MAIL support@tessara.example"}));
}

}  // namespace
}  // namespace tessara
