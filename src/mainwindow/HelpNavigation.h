#pragma once

#include <QLineEdit>
#include <QListWidget>
#include <QTreeWidget>
#include <vector>

#include "artwork/FocusFramed.h"
#include "mainwindow/HelpTable.h"

namespace tessara {

/// The contents of the help as a tree.
class HelpContents final : public FocusFramed<QTreeWidget> {
    Q_OBJECT
  public:
    HelpContents(const std::vector<HelpEntry>& contents, QWidget* parent);

    /// Marks the entry of a topic, or of its page where the mark has none.
    void ShowTopic(const QString& topic);

  Q_SIGNALS:
    void TopicChosen(const QString& topic);

  private:
    QTreeWidgetItem* Find(const QString& topic) const;
};

/// The index of the help: words, and a line that narrows them down.
class HelpIndex final : public QWidget {
    Q_OBJECT
  public:
    HelpIndex(const std::vector<HelpEntry>& index, QWidget* parent);

    QLineEdit* Word() const { return word_; }
    QListWidget* Words() const { return words_; }

  Q_SIGNALS:
    void TopicChosen(const QString& topic);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Narrow(const QString& part);
    void Choose(const QListWidgetItem* item);

    QLineEdit* word_;
    QListWidget* words_;
};

}  // namespace tessara
