#pragma once

#include <QTreeWidget>

namespace tessara {

/// To a screen reader the widget is a table of cells below column headers, the first cell of a row with the
/// row's check box. The toolkit takes any tree for a tree, and of one of those only names are read out. Rows
/// have none below them. To be called where the widget is made.
void SpeakAsTable(QTreeWidget* table);

/// Tells a screen reader of a check box that was clicked or pressed.
void TellCheck(QTreeWidgetItem* row);
/// Tells it that the rows stand elsewhere: it remembers cells by their places.
void TellNewOrder(QTreeWidget* table);

}  // namespace tessara
