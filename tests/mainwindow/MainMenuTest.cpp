#include "mainwindow/MainMenu.h"

#include <gtest/gtest.h>

#include <QMenu>

namespace tessara {
namespace {

/// A line for each entry that is shown: its caption, behind it what sets it apart, submenus further in.
QString TreeOf(const QList<QAction*>& actions, const QString& margin = {}) {
    QString tree;
    for (const QAction* action : actions) {
        if (!action->isVisible()) continue;
        tree += margin + (action->isSeparator() ? QStringLiteral("-") : action->text() + QLatin1Char('|'));
        if (!action->shortcut().isEmpty()) tree += action->shortcut().toString();
        if (!action->isEnabled() && !action->isSeparator()) tree += QStringLiteral(" off");
        tree += QLatin1Char('\n');
        if (action->menu()) tree += TreeOf(action->menu()->actions(), margin + QStringLiteral("  "));
    }
    return tree;
}

constexpr char kTree[] = R"(Fol&der|
  &Collapse|Ctrl+L
  &Refresh|Ctrl+R
  Current &Folder|Ctrl+N
  -
  Create &New Folder|
&File|
  Select &All|Ctrl+A
  &Cancel Selection|Ctrl+U off
  &Inverted Selection|
  -
  &Delete|Del off
  Delete &Files|Ctrl+X off
  -
  View Import Image in a New Window|F6
  View Export Image in a New Window|F7
  -
  List All Files|
  List All Graphics Files|
  List Graphics Files for Import|
  -
  Refresh|
  -
  Slide Show|
&Copy|
  &Copy to Clipboard|Ctrl+C
  &Paste from Clipboard|Ctrl+V
  -
  Copy &Whole Import Image|Ctrl+W
  -
  Capture Screen|
  Capture Entire Screen|
&Options|
Effec&ts|
  Rotate 90 &Right|
  Rotate 90 &Left|
  &Arbitrary Rotate|
  -
  Flip &Horizontal|
  Flip &Vertical|
  -
  &Wave|
  Tile&1|
  Tile&2|
  &Mosaic|
  Add &Noise|
  -
  Reflect [Lef&tRight]|
  Reflect [Up&Down]|
  -
  Re&size|
  -
  Undo|Ctrl+Z
  Redo|
F&ilters|
  &Color|
    Colorize|
    Color Balance|
    Contrast / Brightness|
    Tweak Gamma|
    GrayScale|
    -
    Swap Red Blue|
    Swap Red Green|
    Swap Green Blue|
  &Outline|
    Blur|
    Soften|
    Sharpen|
    -
    High-Pass|
    Anti Alias|
    Find Edges|
    Enhance Edge|
    Mask Ellipse|
  &Distort|
    Ripple : Sine|
    Ripple : Tooth|
    Ripple : Random|
    Ripple : Triangle|
    -
    Shake : UpDown|
    Shake : LeftRight|
    Stretch : UpLeft|
    Stretch : UpRight|
    Stretch : DownLeft|
    Stretch : DownRight|
    -
    Wind|
    Swirl|
    Fish Eye|
    Textured Glass|
  -
  &Stylize|
    Emboss|
    Emboss [Color] |
    Diffuse|
    -
    Negative|
    NeonTrace|
    Posterize|
    Solarize|
    Black and White|
    -
    Heat|
    Night|
    Ice|
    Aqua |
    Strange|
    Darkness|
    Africa|
  &Buttonize|
    Buttonize : Smooth|
    Buttonize : Simple|
    -
    Buttonize : Ellipse1|
    Buttonize : Ellipse2|
    Buttonize : Ellipse3|
  O&thers|
    Rects|
    Comic|
    Crazy Lines|
Conver&t|
  Convert &current image|F2
  Convert &selected files|F3
  Convert &all graphics files|F4
  -
  &Reload|
&Help|
  &Help|F1
  -
  Home&page|
  &Other Products|
  &Subscribe Newsletters|
  &Internet Services and Supports|
  -
  &About|
)";

TEST(MainMenu, ReadsAsDesignedAndTellsWhatIsChosen) {
    QMenuBar bar;
    std::vector<std::pair<std::string, int>> clicks;
    MainMenu menu(bar, [&](const std::string& array, int index) { clicks.emplace_back(array, index); });
    EXPECT_EQ(TreeOf(bar.actions()), QString::fromLatin1(kTree));

    // Hidden rows keep the indexes of their neighbours; two numbers of the help menu hold nothing.
    EXPECT_EQ(menu.Item("mStylize", 1)->text(), QStringLiteral("Emboss"));
    EXPECT_FALSE(menu.Item("mDistort", 12)->isVisible());
    EXPECT_EQ(menu.Item("mHelp", 7), nullptr);
    menu.Item("mFile", 16)->trigger();
    menu.Item("mOthers", 2)->trigger();
    menu.Item("mnOptions", MainMenu::kHead)->trigger();
    menu.SetEnabled("mEffects", 0, false);
    menu.Item("mEffects", 0)->trigger();
    EXPECT_EQ(clicks, (std::vector<std::pair<std::string, int>>{
                          {"mFile", 16}, {"mOthers", 2}, {"mnOptions", MainMenu::kHead}}));
    menu.SetEnabled("mnFilters", MainMenu::kHead, false);
    EXPECT_FALSE(menu.Enabled("mnFilters", MainMenu::kHead));
}

}  // namespace
}  // namespace tessara
