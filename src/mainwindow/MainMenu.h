#pragma once

#include <QAction>
#include <QMenuBar>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include "mainwindow/MenuTable.h"

namespace tessara {

/// The menu bar, made from the tables. An item is named by its control array and index; a head, which is a
/// menu or an entry of the bar itself, by its name and the index -1.
class MainMenu {
  public:
    using Click = std::function<void(const std::string& array, int index)>;
    static constexpr int kHead = -1;

    /// `click` is called for an item chosen, and for a head without items.
    MainMenu(QMenuBar& bar, Click click);

    /// Null where there is none.
    QAction* Item(const std::string& array, int index) const;
    /// By the name of its head or of its control array.
    QMenu* Menu(std::string_view name) const;
    void SetEnabled(const std::string& array, int index, bool enabled);
    bool Enabled(const std::string& array, int index) const;
    void SetChecked(const std::string& array, int index, bool checked);

  private:
    void AddHead(const MenuHead& head);
    QAction* AddMenu(const MenuHead& head, QWidget* above);
    void AddItem(const MenuItem& item, bool visible = true);
    void Enter(QAction* action, std::string_view name, int index);

    QMenuBar& bar_;
    Click click_;
    std::map<std::pair<std::string, int>, QAction*> items_;
    std::map<std::string, QMenu*, std::less<>> menus_;
};

}  // namespace tessara
