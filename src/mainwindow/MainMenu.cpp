#include "mainwindow/MainMenu.h"

#include <QMenu>

#include "desktop/Named.h"
#include "desktop/PathText.h"
#include "edit/EffectCatalogue.h"

namespace tessara {
namespace {

constexpr std::string_view kSeparator = "-";

QAction* MakeAction(std::string_view caption, QWidget* parent) {
    auto* action = new QAction(parent);
    // A separator with a text would show it, as a heading.
    if (caption == kSeparator)
        action->setSeparator(true);
    else
        action->setText(ShownText(caption));
    return action;
}

}  // namespace

MainMenu::MainMenu(QMenuBar& bar, Click click) : bar_(bar), click_(std::move(click)) {
    for (const MenuHead& head : MenuHeads()) AddHead(head);
    for (const MenuItem& item : MenuItems()) AddItem(item);
    for (const EffectEntry& entry : EffectEntries())
        AddItem({entry.array, entry.index, entry.caption, entry.shortcut}, entry.visible);
}

void MainMenu::AddHead(const MenuHead& head) {
    const auto parent = menus_.find(head.parent);
    QWidget* above = parent == menus_.end() ? static_cast<QWidget*>(&bar_) : parent->second;
    QAction* action = head.kind == HeadKind::Menu ? AddMenu(head, above) : MakeAction(head.caption, above);
    above->addAction(action);
    Enter(action, head.name, kHead);
}

QAction* MainMenu::AddMenu(const MenuHead& head, QWidget* above) {
    auto* menu = new QMenu(ShownText(head.caption), above);
    menu->setObjectName(ShownText(head.name));
    menus_.emplace(head.name, menu);
    if (!head.array.empty()) menus_.emplace(head.array, menu);
    return menu->menuAction();
}

void MainMenu::AddItem(const MenuItem& item, bool visible) {
    QMenu* menu = menus_.find(item.array)->second;
    QAction* action = MakeAction(item.caption, menu);
    action->setShortcut(QKeySequence(ShownText(item.shortcut)));
    action->setEnabled(item.enabled);
    action->setCheckable(item.checkable);
    action->setVisible(visible);
    menu->addAction(action);
    Enter(action, item.array, item.index);
}

void MainMenu::Enter(QAction* action, std::string_view name, int index) {
    const std::string key(name);
    const QString shown = ShownText(name);
    action->setObjectName(index == kHead ? shown : Indexed(shown, index));
    items_.emplace(std::pair(key, index), action);
    // A menu's own action is only pointed at, never triggered.
    QObject::connect(action, &QAction::triggered, &bar_, [this, key, index] { click_(key, index); });
}

QAction* MainMenu::Item(const std::string& array, int index) const {
    const auto found = items_.find({array, index});
    return found == items_.end() ? nullptr : found->second;
}

QMenu* MainMenu::Menu(std::string_view name) const {
    const auto found = menus_.find(name);
    return found == menus_.end() ? nullptr : found->second;
}

void MainMenu::SetEnabled(const std::string& array, int index, bool enabled) {
    if (QAction* action = Item(array, index)) action->setEnabled(enabled);
}

bool MainMenu::Enabled(const std::string& array, int index) const {
    const QAction* action = Item(array, index);
    return action != nullptr && action->isEnabled();
}

void MainMenu::SetChecked(const std::string& array, int index, bool checked) {
    if (QAction* action = Item(array, index)) action->setChecked(checked);
}

}  // namespace tessara
