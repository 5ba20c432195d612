#pragma once

#include <QIcon>
#include <QTreeWidgetItem>
#include <string>

namespace tessara {

/// A node of the folder tree. There can be many thousands: nothing is kept twice.
class FolderNode final : public QTreeWidgetItem {
  public:
    FolderNode(std::string key, QString text, QIcon icon)
        : QTreeWidgetItem(UserType), key_(std::move(key)), text_(std::move(text)), icon_(std::move(icon)) {
        setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    }

    const std::string& Key() const { return key_; }
    const QString& Text() const { return text_; }
    const QIcon& Icon() const { return icon_; }
    void Rename(std::string key, QString text) {
        key_ = std::move(key);
        text_ = std::move(text);
        emitDataChanged();
    }

    /// What was not read yet may have subfolders: its mark to expand it stands until that is known.
    void SetUnread(bool unread) {
        const auto policy = unread ? ShowIndicator : DontShowIndicatorWhenChildless;
        if (childIndicatorPolicy() != policy) setChildIndicatorPolicy(policy);
    }
    bool CanExpand() const { return childCount() > 0 || childIndicatorPolicy() == ShowIndicator; }

    FolderNode* Child(int i) const { return static_cast<FolderNode*>(child(i)); }
    FolderNode* Parent() const { return static_cast<FolderNode*>(parent()); }

    QVariant data(int, int role) const override {
        if (role == Qt::DisplayRole || role == Qt::EditRole) return text_;
        return role == Qt::DecorationRole ? QVariant(icon_) : QVariant();
    }

    /// The build of the tree in which a click has read this node's subfolders; 0 for none.
    int visitedIn = 0;

  private:
    std::string key_;
    QString text_;
    QIcon icon_;
};

}  // namespace tessara
