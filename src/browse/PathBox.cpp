#include "browse/PathBox.h"

#include <QAbstractItemView>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

#include "artwork/FieldColors.h"
#include "browse/FolderTree.h"
#include "browse/NodeKeys.h"
#include "browse/PathWalk.h"
#include "desktop/PathText.h"
#include "settings/RecentPaths.h"
#include "settings/SettingsFile.h"

namespace tessara {
namespace {

constexpr int kMostItems = 20;  ///< a list with more loses its oldest item before it takes another
constexpr int kPathRole = Qt::UserRole;

/// Drops its list down as wide as the paths in it, up to half of the screen.
class PathCombo final : public QComboBox {
  public:
    using QComboBox::QComboBox;

    void showPopup() override {
        const int wanted = view()->sizeHintForColumn(0) + 2 * view()->frameWidth();
        view()->setMinimumWidth(std::min(wanted, screen()->availableSize().width() / 2));
        QComboBox::showPopup();
    }
};

std::vector<std::string> ChildKeys(const FolderNode& node) {
    std::vector<std::string> keys;
    for (int i = 0; i < node.childCount(); ++i) keys.push_back(node.Child(i)->Key());
    return keys;
}

/// Walks in the folder tree, which reads on the way.
class FolderWalker final : public TreeWalker {
  public:
    explicit FolderWalker(FolderTree& tree) : tree_(tree), place_(tree.Computer()) {}

    FolderNode& Place() const { return *place_; }

    std::vector<std::string> KeysBelow() override {
        if (place_ != tree_.Computer()) tree_.ReadBelow(*place_);
        return ChildKeys(*place_);
    }
    void Enter(std::size_t position) override { place_ = place_->Child(static_cast<int>(position)); }

  private:
    FolderTree& tree_;
    FolderNode* place_;
};

/// The key of the drive that a node is on; of the first one for a node that is on none.
std::string DriveOf(const FolderTree& tree, const FolderNode* node) {
    const std::vector<std::string> keys = ChildKeys(*tree.Computer());
    if (keys.empty()) return {};
    return keys[DriveOfPath(keys, node == nullptr ? std::string() : tree.RealPathOf(*node)).value_or(0)];
}

}  // namespace

PathBox::PathBox(Browser& browser, QWidget* parent)
    : QWidget(parent), browser_(browser), ImageComboPath_(new PathCombo(this)) {
    ImageComboPath_->setObjectName("ImageComboPath");
    ImageComboPath_->setEditable(true);
    // A box with a list is spoken of by its text.
    ImageComboPath_->setAccessibleDescription(QStringLiteral("Path of the folder"));
    ImageComboPath_->lineEdit()->setAccessibleName(QStringLiteral("Path of the folder"));
    ImageComboPath_->setInsertPolicy(QComboBox::NoInsert);
    ImageComboPath_->setCompleter(nullptr);
    ImageComboPath_->setMaxVisibleItems(kMostItems + 1);
    ImageComboPath_->setIconSize(QSize(16, 16));
    // The text alone does not choose an item: a path is entered with Enter.
    disconnect(ImageComboPath_->lineEdit(), &QLineEdit::editingFinished, ImageComboPath_, nullptr);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(ImageComboPath_);
    SetColors();
    ImageComboPath_->installEventFilter(this);
    ImageComboPath_->lineEdit()->installEventFilter(this);
    connect(ImageComboPath_, &QComboBox::activated, this, [this](int item) {
        SetText(ItemPath(item));
        ImageCobomKeyup(false);
    });
    browser_.box = this;
}

void PathBox::SetColors() {
    const QColor ground = typing_ ? TypingGround(palette()) : QuietGround(palette());
    ImageComboPath_->setPalette(FieldPalette(palette(), ground));
}

void PathBox::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) SetColors();
    QWidget::changeEvent(event);
}

bool PathBox::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
        case QEvent::FocusIn:
            typing_ = true;
            SetColors();
            return false;
        case QEvent::FocusOut:
            typing_ = enterPressed_ = false;
            SetColors();
            return false;
        case QEvent::KeyPress: {
            const int key = static_cast<QKeyEvent*>(event)->key();
            enterPressed_ = key == Qt::Key_Return || key == Qt::Key_Enter;
            return false;
        }
        case QEvent::KeyRelease:
            return KeyReleased(static_cast<QKeyEvent*>(event)->key());
        case QEvent::Wheel:
            // A turn of the wheel would walk through the list's folders.
            return true;
        default:
            return false;
    }
}

/// Enter counts where it was pressed here, not where it has answered a message.
bool PathBox::KeyReleased(int key) {
    if (!enterPressed_ || (key != Qt::Key_Return && key != Qt::Key_Enter)) return false;
    enterPressed_ = false;
    ImageCobomKeyup(false);
    return true;
}

std::string PathBox::Text() const {
    const QString shown = ImageComboPath_->currentText();
    return shown == ShownText(text_) ? text_ : BytesOfText(shown);
}

void PathBox::SetText(const std::string& path) {
    text_ = path;
    ImageComboPath_->setEditText(ShownText(path));
}

std::string PathBox::ItemPath(int item) const {
    return ImageComboPath_->itemData(item, kPathRole).toByteArray().toStdString();
}

void PathBox::AddItem(const std::string& path, const QIcon& icon) {
    const std::string text = Text();
    ImageComboPath_->addItem(icon, ShownText(path), QByteArray::fromStdString(path));
    SetText(text);
}

void PathBox::RemoveOldestItem() {
    const std::string text = Text();
    ImageComboPath_->removeItem(0);
    SetText(text);
}

void PathBox::AddimgCombopath(std::string& path) {
    path = RealPath(path, browser_.session.DocumentsPath);
    if (ImageComboPath_->count() > kMostItems) RemoveOldestItem();
    if (path == kComputerKey) return;
    const FolderNode* node = browser_.tree->SelectedNode();
    // A path that could not be reached stands in the box to be corrected, but not among the last folders.
    if (node == nullptr) return SetText(path);
    int item = ImageComboPath_->findData(QByteArray::fromStdString(path), kPathRole);
    if (item < 0) {
        item = ImageComboPath_->count();
        AddItem(path, node->Icon());
        browser_.host.SetTreeToolTip(path);
    }
    ImageComboPath_->setItemIcon(item, node->Icon());
    ImageComboPath_->setCurrentIndex(item);
    SetText(path);
}

void PathBox::SetMeCaption() {
    const FolderNode* node = browser_.tree->SelectedNode();
    if (node == nullptr) return;
    browser_.host.SetCaption(browser_.session.ProgramTitle + " -> " + node->Key() +
                             (node->Key().ends_with(':') ? "\\" : ""));
}

void PathBox::SetComboPath() {
    const std::vector<FormerPath> former = ReadFormerPaths(browser_.session.PrivateFile(kSettingsFileName));
    for (const FormerPath& entry : former) AddItem(entry.path, browser_.tree->Pictures().IconOf(entry.icon));
    const bool hasFirst = !former.empty() && !former.front().path.empty();
    SetText(hasFirst ? former.front().path : browser_.session.AppPath);
}

void PathBox::SaveGetComBox(bool read) {
    const std::string file = browser_.session.PrivateFile(kRecentPathsName);
    if (read) {
        for (const std::string& path : ReadRecentPaths(file))
            AddItem(path, browser_.tree->Pictures().Icon(TreePicture::ClosedFolder));
        return;
    }
    std::vector<std::string> paths;
    for (int item = 0; item < ImageComboPath_->count(); ++item) paths.push_back(ItemPath(item));
    Ignore(WriteRecentPaths(file, paths));
}

/// The box's text as an absolute path. Its backslashes are separators where no folder has them in its name.
std::string PathBox::TypedPath() const {
    const std::string drive = DriveOf(*browser_.tree, browser_.tree->SelectedNode());
    const std::string home = QFile::encodeName(QDir::homePath()).toStdString();
    std::string typed = Text();
    std::string path = AbsolutePath(typed, drive, home);
    if (typed.find('\\') == std::string::npos || FileEnumerator().SetPath(path)) return path;
    std::ranges::replace(typed, '\\', '/');
    return AbsolutePath(typed, drive, home);
}

void PathBox::ImageCobomKeyup(bool quiet) {
    BrowserHost& host = browser_.host;
    host.BusyCursor(true);
    std::string path = TypedPath();
    browser_.tree->Deselect();
    if (GoTo(path, quiet)) {
        path = browser_.tree->SelectedNode()->Key();
        browser_.session.ImageValid = false;
    }
    SetText(path);
    AddimgCombopath(path);
    SetMeCaption();
    host.BusyCursor(false);
    host.UndoRefresh("KILL");
}

bool PathBox::GoTo(const std::string& path, bool quiet) {
    while (!TryToGoTo(path, quiet))
        if (!WantsRetry(path)) return false;
    return true;
}

bool PathBox::TryToGoTo(const std::string& path, bool quiet) {
    if (!FileListCheck_.SetPath(path) && !quiet) return false;
    FolderTree& tree = *browser_.tree;
    tree.Expand(*tree.Computer());
    tree.MarkRead(*tree.Computer());
    FolderWalker walker(tree);
    WalkDown(walker, path);
    FolderNode& place = walker.Place();
    tree.TreeViewS()->setFocus();
    tree.ReadBelow(place);
    tree.SelectNode(place);
    tree.Expand(place);
    tree.EnsureVisible(place);
    if (!browser_.FileViewFile.SetPath(place.Key()) && !quiet) return false;
    Ignore(browser_.FileViewFile.Refresh());
    tree.SelectNode(place);
    return true;
}

bool PathBox::WantsRetry(const std::string& path) {
    if (browser_.session.Starting) {
        browser_.session.StartFolderBad = true;
        return false;
    }
    return browser_.prompts.Ask({"Cannot switch to " + path, PromptButtons::RetryCancel}) == Answer::Retry;
}

}  // namespace tessara
