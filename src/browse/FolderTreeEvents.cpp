#include <QDropEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>

#include "artwork/FocusFramed.h"
#include "browse/FileList.h"
#include "browse/FolderNaming.h"
#include "browse/FolderTree.h"
#include "browse/MarkKeys.h"
#include "browse/SteadyTree.h"
#include "browse/TreeDelegate.h"
#include "desktop/Twips.h"

namespace tessara {
namespace {

constexpr int kIndentation = 13;  ///< pixels a level: in a narrow tree a deep folder still shows its name

}  // namespace

/// A tree that knows whether the user is at work: nodes also expand when one below them is shown.
class FolderTree::View final : public FocusFramed<SteadyTree> {
  public:
    using FocusFramed::FocusFramed;
    bool HasInput() const { return hasInput_; }

    void scrollTo(const QModelIndex& index, ScrollHint hint) override {
        QScrollBar& bar = *horizontalScrollBar();
        const int former = bar.value();
        QTreeWidget::scrollTo(index, hint);
        FitColumn();
        // The column is as wide as the widest node in sight; what has to be seen is the name of this one, or
        // at least where it begins.
        bar.setValue(former);
        const int left = visualRect(index).left();
        const int hidden = left + sizeHintForIndex(index).width() - viewport()->width();
        bar.setValue(bar.value() + std::min(left - indentation(), std::max(0, hidden)));
    }

  protected:
    void mousePressEvent(QMouseEvent* event) override {
        const QScopedValueRollback input(hasInput_, true);
        SteadyTree::mousePressEvent(event);
    }
    void mouseDoubleClickEvent(QMouseEvent* event) override {
        const QScopedValueRollback input(hasInput_, true);
        SteadyTree::mouseDoubleClickEvent(event);
    }
    void keyPressEvent(QKeyEvent* event) override {
        // All that is below would be all of the disk, and without an end where links lead in circles.
        if (event->key() == Qt::Key_Asterisk) {
            QKeyEvent plus(event->type(), Qt::Key_Plus, event->modifiers());
            return keyPressEvent(&plus);
        }
        const QScopedValueRollback input(hasInput_, true);
        SteadyTree::keyPressEvent(event);
    }
    void resizeEvent(QResizeEvent* event) override {
        SteadyTree::resizeEvent(event);
        FitColumn();
    }
    void showEvent(QShowEvent* event) override {
        SteadyTree::showEvent(event);
        FitColumn();
    }

  private:
    /// At once: a view that follows later still has a scroll bar too short for the nodes in sight.
    void FitColumn() {
        header()->setMinimumSectionSize(viewport()->width());
        header()->resizeSections(QHeaderView::ResizeToContents);
        updateGeometries();
    }

    bool hasInput_ = false;
};

FolderTree::FolderTree(Browser& browser, QWidget* parent)
    : QWidget(parent),
      browser_(browser),
      view_(new View(this)),
      TreeViewS_(view_),
      delegate_(new TreeDelegate(TreeViewS_)),
      naming_(new FolderNaming(browser, *this, *delegate_)) {
    naming_->setParent(this);
    TreeViewS_->setObjectName("TreeViewS");
    TreeViewS_->setAccessibleName(QStringLiteral("Folders"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(TreeViewS_);
    ConnectTree();
    browser_.tree = this;
}

void FolderTree::ConnectTree() {
    TreeViewS_->setItemDelegate(delegate_);
    TreeViewS_->setHeaderHidden(true);
    // As wide as the nodes in sight, so that long names can be scrolled to.
    TreeViewS_->header()->setStretchLastSection(false);
    TreeViewS_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    TreeViewS_->header()->setResizeContentsPrecision(0);
    TreeViewS_->setUniformRowHeights(true);
    TreeViewS_->setIconSize(QSize(16, 16));
    TreeViewS_->setIndentation(kIndentation);
    TreeViewS_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    TreeViewS_->setAcceptDrops(true);
    new MarkKeys(TreeViewS_, [this] {
        if (!naming_->IsNaming()) TreeViewS_Click();
    });
    TreeViewS_->viewport()->installEventFilter(this);
    connect(TreeViewS_, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* node) {
        if (!view_->HasInput()) return;
        NodeExpanded(*static_cast<FolderNode*>(node));
        TreeViewS_Click();
    });
    connect(TreeViewS_, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* node) {
        SelectNode(*static_cast<FolderNode*>(node));
        TreeViewS_NodeClick();
        TreeViewS_Click();
    });
    connect(TreeViewS_, &QTreeWidget::itemDoubleClicked, this,
            [this] { browser_.list->FileViewFile_PathChange(); });
}

void FolderTree::NodeExpanded(FolderNode& node) {
    SelectNode(node);
    ExpandPending_ = true;
}

/// What the mouse does on the viewport.
bool FolderTree::eventFilter(QObject*, QEvent* event) {
    const auto mouse = [&]() -> QMouseEvent& { return static_cast<QMouseEvent&>(*event); };
    switch (event->type()) {
        case QEvent::MouseButtonPress:
            return MousePressed(mouse().button());
        case QEvent::MouseButtonDblClick:
            return naming_->IsNaming();
        case QEvent::MouseButtonRelease:
            SetDropHighlightToNothing();
            return false;
        case QEvent::DragEnter:
        case QEvent::DragMove: {
            auto& drag = static_cast<QDragMoveEvent&>(*event);
            const QPoint position = drag.position().toPoint();
            TreeViewS_DragOver(position.x() * kTwipsPerPixel, position.y() * kTwipsPerPixel);
            drag.setDropAction(Qt::IgnoreAction);
            drag.accept();
            return true;
        }
        case QEvent::DragLeave:
        case QEvent::Drop:
            SetDropHighlightToNothing();
            return true;
        default:
            return false;
    }
}

/// Whether the press goes no further.
bool FolderTree::MousePressed(Qt::MouseButton button) {
    naming_->FinishLabelEdit();
    if (naming_->IsNaming()) return true;
    if (button != Qt::RightButton) return false;
    browser_.host.PopMenu("TreeViewS");
    return true;
}

void FolderTree::SetDropHighlightToNothing() {
    delegate_->dropHighlight = QPersistentModelIndex();
    TreeViewS_->viewport()->update();
}

void FolderTree::EnsureVisible(const FolderNode& node) {
    view_->scrollTo(view_->indexFromItem(&node), QAbstractItemView::EnsureVisible);
}

void FolderTree::MakeVisible(int X, int Y) {
    if (const QTreeWidgetItem* node = TreeViewS_->itemAt(X / kTwipsPerPixel, Y / kTwipsPerPixel))
        EnsureVisible(*static_cast<const FolderNode*>(node));
}

void FolderTree::TreeViewS_DragOver(int X, int Y) {
    const QPoint position(X / kTwipsPerPixel, Y / kTwipsPerPixel);
    auto* node = static_cast<FolderNode*>(TreeViewS_->itemAt(position));
    delegate_->dropHighlight = TreeViewS_->indexAt(position);
    TreeViewS_->viewport()->update();
    if (node != nullptr) {
        EnsureVisible(*node);
        Expand(*node);
    }
    constexpr int kStep = 20;
    constexpr int kSteps = 50;
    if (Y < 1000) {
        for (int i = kSteps; i >= 1; --i) MakeVisible(X, Y - kStep * i);
    } else if (TreeViewS_->height() * kTwipsPerPixel - 1500 < Y) {
        for (int i = 1; i <= kSteps; ++i) MakeVisible(X, Y + kStep * i);
    }
    if (X < 500) {
        MakeVisible(X - 500, Y);
    } else if (TreeViewS_->width() * kTwipsPerPixel - 500 < Y) {
        // The width against Y: so it is wanted.
        MakeVisible(X + 500, Y);
    }
}

}  // namespace tessara
