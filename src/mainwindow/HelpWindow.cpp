#include "mainwindow/HelpWindow.h"

#include <QEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QTabBar>
#include <QVBoxLayout>
#include <QWindow>

#include "artwork/Artwork.h"
#include "desktop/PathText.h"
#include "desktop/SpokenRole.h"
#include "settings/Product.h"

namespace tessara {
namespace {

constexpr QSize kSize(1000, 740);
constexpr int kSideWidth = 260;
constexpr int kStripHeight = 22;

enum Tool { kBack, kForward, kHome, kZoomOut, kZoomIn };

struct HelpTool {
    const char* drawing;
    const char* tooltip;
    int left;  ///< pixels
    void (*action)(HelpPage& page);
};
constexpr HelpTool kTools[] = {
    {"previous", "Back", 16, [](HelpPage& page) { page.backward(); }},
    {"next", "Forward", 39, [](HelpPage& page) { page.forward(); }},
    {"home", "First Page", 62, [](HelpPage& page) { page.Open(QLatin1String(kFirstHelpPage)); }},
    {"zoom-out", "Zoom out", 101, [](HelpPage& page) { page.Zoom(-1); }},
    {"zoom-in", "Zoom in", 124, [](HelpPage& page) { page.Zoom(1); }},
};

}  // namespace

HelpWindow::HelpWindow(const std::string& folder)
    : available_(QFileInfo(ShownText(folder + "/" + kFirstHelpPage)).isFile()),
      tools_(new ToolStrip({1, 6, 11}, this)),
      sides_(new QTabWidget),
      page_(new HelpPage(ShownText(folder), this)) {
    SetSpokenRole(this, QAccessible::Window);
    setObjectName(QStringLiteral("HelpWindow"));
    setWindowTitle(QLatin1String(kProductCaption) + QLatin1String("Help"));
    setWindowIcon(Artwork("tessara"));
    setAttribute(Qt::WA_QuitOnClose, false);  // the program ends without it
    const HelpTable table = ReadHelpTable(ShownText(folder));
    contents_ = new HelpContents(table.contents, sides_);
    index_ = new HelpIndex(table.index, sides_);
    LayOut();
    AddTools();
    AddKeys();
    connect(contents_, &HelpContents::TopicChosen, page_, &HelpPage::Open);
    connect(index_, &HelpIndex::TopicChosen, page_, &HelpPage::Open);
    connect(page_, &QTextBrowser::sourceChanged, this,
            [this](const QUrl& address) { contents_->ShowTopic(HelpPage::TopicOf(address)); });
}

void HelpWindow::LayOut() {
    sides_->addTab(contents_, QStringLiteral("&Contents"));
    sides_->addTab(index_, QStringLiteral("&Index"));
    sides_->setDocumentMode(true);
    auto* split = new QSplitter;
    split->addWidget(sides_);
    split->addWidget(page_);
    split->setStretchFactor(1, 1);
    split->setSizes({kSideWidth, kSize.width() - kSideWidth});
    split->setChildrenCollapsible(false);
    tools_->setFixedHeight(kStripHeight);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(tools_);
    layout->addWidget(split, 1);
    resize(kSize.boundedTo(screen()->availableSize()));
}

void HelpWindow::AddTools() {
    for (const HelpTool& tool : kTools) tools_->AddTool(tool.drawing, QLatin1String(tool.tooltip), tool.left);
    connect(tools_, &ToolStrip::Imagetool_Click, this, [this](int tool) { kTools[tool].action(*page_); });
    connect(tools_, &ToolStrip::BackMouseMove, tools_, &ToolStrip::EndHover);
    connect(page_, &QTextBrowser::backwardAvailable, this,
            [this](bool available) { tools_->SetImageTool(kBack, available); });
    connect(page_, &QTextBrowser::forwardAvailable, this,
            [this](bool available) { tools_->SetImageTool(kForward, available); });
    tools_->SetImageTool(kBack, false);
    tools_->SetImageTool(kForward, false);
}

void HelpWindow::AddKeys() {
    const auto add = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    const auto press = [this](Tool tool) { return [this, tool] { kTools[tool].action(*page_); }; };
    add(QKeySequence::Back, press(kBack));
    add(QKeySequence::Forward, press(kForward));
    add(Qt::ALT | Qt::Key_Home, press(kHome));
    add(QKeySequence::ZoomIn, press(kZoomIn));
    add(QKeySequence::ZoomOut, press(kZoomOut));
    add(Qt::CTRL | Qt::Key_0, [this] { page_->ResetZoom(); });
    add(Qt::Key_Escape, [this] { close(); });
    add(Qt::Key_F6, [this] { (page_->hasFocus() ? sides_->currentWidget() : page_)->setFocus(); });
    // Who asks for the contents by their letter means to walk through them; the tabs themselves keep the
    // keys.
    connect(sides_, &QTabWidget::currentChanged, this, [this] {
        if (!sides_->tabBar()->hasFocus()) sides_->currentWidget()->setFocus();
    });
}

void HelpWindow::DisplayIndex(const std::string& page) {
    ShowOn(index_, page);
}

void HelpWindow::DisplayContents(const std::string& page) {
    ShowOn(contents_, page);
}

void HelpWindow::ShowOn(QWidget* side, const std::string& page) {
    sides_->setCurrentWidget(side);
    DisplayTopic(page);
}

void HelpWindow::DisplayTopic(const std::string& topic) {
    if (!available_) return;
    page_->Open(ShownText(topic));
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    page_->setFocus();
}

bool HelpWindow::event(QEvent* event) {
    // A modal dialog blocks all windows but those that belong to it. This one is there to explain the dialog.
    if (event->type() == QEvent::WindowBlocked && windowHandle())
        windowHandle()->setTransientParent(QGuiApplication::modalWindow());
    return QWidget::event(event);
}

}  // namespace tessara
