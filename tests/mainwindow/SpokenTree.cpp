#include "tests/mainwindow/SpokenTree.h"

#include <QMetaEnum>

namespace tessara::test {
namespace {

std::string TextOf(const QAccessibleInterface& thing, QAccessible::Text kind) {
    return thing.text(kind).simplified().toStdString();
}

/// A view gives its name for everything that it is asked for.
std::string OwnTextOf(const QAccessibleInterface& thing, QAccessible::Text kind, const std::string& before) {
    const std::string text = TextOf(thing, kind);
    return text.empty() || text == TextOf(thing, QAccessible::Name) ? "" : before + text;
}

/// Whether the keys go to it. Parts of a view do not take them by themselves, and some controls hand them on.
bool TakesFocus(const QAccessibleInterface& thing) {
    const auto* const widget = qobject_cast<QWidget*>(thing.object());
    return widget != nullptr && thing.state().focusable && widget->focusProxy() == nullptr;
}

/// All that two neighbours may have in common.
std::string KindOf(const QAccessibleInterface& thing) {
    const QAccessible::State state = thing.state();
    std::string kind = RoleName(thing) + (TakesFocus(thing) ? "*" : "");
    const auto add = [&kind](bool holds, const char* word) { kind += holds ? std::string(" ") + word : ""; };
    add(state.disabled, "disabled");
    add(state.checkable, state.checked ? "checked" : "unchecked");
    add(state.expandable, state.expanded ? "expanded" : "collapsed");
    add(state.selected, "selected");
    return kind;
}

/// What one has for itself.
std::string OwnPartOf(QAccessibleInterface& thing) {
    std::string part = OwnTextOf(thing, QAccessible::Value, " = ");
    if (const auto* value = thing.valueInterface())
        part = " = " + value->currentValue().toString().toStdString() + " of " +
               value->minimumValue().toString().toStdString() + " to " +
               value->maximumValue().toString().toStdString();
    return part + OwnTextOf(thing, QAccessible::Accelerator, " ") +
           OwnTextOf(thing, QAccessible::Description, " - ");
}

/// Writes the lines, and remembers the last, to which a neighbour may be added.
class Writer {
  public:
    void Write(QAccessibleInterface& thing, std::size_t depth) {
        if (thing.state().invisible) return;
        const bool tells = TakesFocus(thing) || !thing.text(QAccessible::Name).isEmpty();
        if (tells) WriteLine(thing, std::string(2 * depth, ' ') + KindOf(thing) + ": ");
        for (int i = 0; i < thing.childCount(); ++i)
            if (QAccessibleInterface* child = thing.child(i)) Write(*child, depth + (tells ? 1 : 0));
    }
    std::string tree;

  private:
    void WriteLine(QAccessibleInterface& thing, const std::string& head) {
        const std::string own = OwnPartOf(thing);
        const bool joins = own.empty() && head == openHead_;
        tree += (joins ? ", " : (tree.empty() ? "" : "\n") + head) + TextOf(thing, QAccessible::Name) + own;
        openHead_ = own.empty() ? head : "";
    }

    std::string openHead_;  ///< of the last line; empty where that takes no more names
};

}  // namespace

std::string RoleName(const QAccessibleInterface& thing) {
    return QMetaEnum::fromType<QAccessible::Role>().valueToKey(thing.role());
}

std::string SpokenTree(QWidget& window) {
    Writer writer;
    writer.Write(*QAccessible::queryAccessibleInterface(&window), 0);
    return writer.tree + "\n";
}

}  // namespace tessara::test
