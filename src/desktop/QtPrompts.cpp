#include "desktop/QtPrompts.h"

#include <QAbstractButton>
#include <QApplication>
#include <QColorDialog>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QMessageBox>
#include <QScreen>
#include <QTreeView>
#include <algorithm>

#include "core/Paths.h"
#include "desktop/HeldKeyFilter.h"
#include "desktop/PathText.h"

namespace tessara {
namespace {

/// The normal pointer while a dialog is open, whatever the program is busy with.
class NormalPointer {
  public:
    NormalPointer() {
        if (overridden_) QApplication::setOverrideCursor(Qt::ArrowCursor);
    }
    ~NormalPointer() {
        if (overridden_) QApplication::restoreOverrideCursor();
    }
    NormalPointer(const NormalPointer&) = delete;
    NormalPointer& operator=(const NormalPointer&) = delete;

  private:
    bool overridden_ = QApplication::overrideCursor() != nullptr;
};

/// The window that stays on top; null where there is none.
QWidget* TopmostWindow() {
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto topmost = std::ranges::find_if(windows, [](const QWidget* window) {
        return window->isVisible() && window->windowFlags().testFlag(Qt::WindowStaysOnTopHint);
    });
    return topmost != windows.end() ? *topmost : nullptr;
}

/// What a dialog stands over: a window that stays on top, which would hide it otherwise, or the dialog that
/// has the user's attention, also while another program is active; or else the active window.
QWidget* Owner() {
    for (QWidget* const owner : {TopmostWindow(), QApplication::activeModalWidget()})
        if (owner != nullptr) return owner;
    return QApplication::activeWindow();
}

/// As far as the screen has room. What that window shows is what the question is about.
void MoveBelow(const QWidget& window, QWidget& question) {
    question.adjustSize();
    const QRect frame = window.frameGeometry(), screen = window.screen()->availableGeometry();
    const int height = question.height() + frame.height() - window.height();
    question.move(frame.center().x() - question.width() / 2,
                  std::min(frame.bottom() + 1, screen.bottom() + 1 - height));
}

int Execute(QDialog& dialog) {
    const NormalPointer pointer;
    return dialog.exec();
}

QMessageBox::Icon IconOf(PromptIcon icon) {
    switch (icon) {
        case PromptIcon::Information:
            return QMessageBox::Information;
        case PromptIcon::Question:
            return QMessageBox::Question;
        case PromptIcon::Warning:
            return QMessageBox::Warning;
        case PromptIcon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

/// The first is the default.
QMessageBox::StandardButtons ButtonsOf(PromptButtons buttons) {
    switch (buttons) {
        case PromptButtons::YesNo:
            return QMessageBox::Yes | QMessageBox::No;
        case PromptButtons::RetryCancel:
            return QMessageBox::Retry | QMessageBox::Cancel;
        case PromptButtons::Ok:
            break;
    }
    return QMessageBox::Ok;
}

QMessageBox::StandardButton DefaultOf(PromptButtons buttons) {
    switch (buttons) {
        case PromptButtons::YesNo:
            return QMessageBox::Yes;
        case PromptButtons::RetryCancel:
            return QMessageBox::Retry;
        case PromptButtons::Ok:
            break;
    }
    return QMessageBox::Ok;
}

Answer AnswerOf(int button) {
    switch (button) {
        case QMessageBox::Ok:
            return Answer::Ok;
        case QMessageBox::Yes:
            return Answer::Yes;
        case QMessageBox::No:
            return Answer::No;
        case QMessageBox::Retry:
            return Answer::Retry;
        default:
            return Answer::Cancel;
    }
}

/// The toolkit takes the patterns out of a filter's last brackets and is told to hide those.
QString NameFilter(const SaveFilter& filter) {
    const std::string pattern = filter.pattern == "*.*" ? "*" : filter.pattern;
    return ShownText(filter.name + " (" + pattern + ")");
}

/// The toolkit's own dialog cuts off what its columns say.
void WidenColumns(QFileDialog& dialog) {
    auto* const files = dialog.findChild<QTreeView*>(QStringLiteral("treeView"));
    if (files == nullptr) return;
    const int character = dialog.fontMetrics().averageCharWidth();
    constexpr int kWidths[] = {36, 14, 20, 24};  // characters: name, size, type, date
    for (int column = 0; column < 4; ++column)
        files->header()->resizeSection(column, kWidths[column] * character);
    dialog.resize(std::min(120 * character, dialog.screen()->availableSize().width()), dialog.height());
}

void Prepare(QFileDialog& dialog, const SaveRequest& request) {
    QStringList filters;
    for (const SaveFilter& filter : request.filters) filters << NameFilter(filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setNameFilters(filters);
    dialog.selectNameFilter(filters.value(request.filterIndex - 1));
    if (!request.folder.empty()) dialog.setDirectory(ShownText(request.folder));
    dialog.selectFile(ShownText(request.name));
    WidenColumns(dialog);
}

/// From 0; the dialog tells the text that it shows, with or without the hidden patterns.
std::size_t ChosenFilter(const QFileDialog& dialog, const std::vector<SaveFilter>& filters) {
    const QString shown = dialog.selectedNameFilter();
    const auto chosen = std::ranges::find_if(
        filters, [&](const SaveFilter& filter) { return shown.startsWith(ShownText(filter.name)); });
    return static_cast<std::size_t>(chosen - filters.begin());
}

}  // namespace

std::string WithSuffix(std::string path, const std::vector<SaveFilter>& filters, std::size_t chosen) {
    const std::string_view extension = ExtensionOf(path);
    const bool hasOwn = (extension.size() == 3 || extension.size() == 4) &&
                        !std::ranges::all_of(extension, [](char c) { return c >= '0' && c <= '9'; });
    if (hasOwn || chosen >= filters.size() || filters[chosen].pattern == "*.*") return path;
    return path + filters[chosen].pattern.substr(1);
}

Answer QtPrompts::Ask(const Prompt& prompt) {
    QMessageBox box(IconOf(prompt.icon), QStringLiteral("Tessara Pro"), ShownText(prompt.text),
                    ButtonsOf(prompt.buttons), Owner());
    HeldKeyFilter heldKeys;
    for (QAbstractButton* const button : box.buttons()) button->installEventFilter(&heldKeys);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(DefaultOf(prompt.buttons));
    if (const QWidget* const topmost = TopmostWindow()) MoveBelow(*topmost, box);
    return AnswerOf(Execute(box));
}

void QtPrompts::Beep() {
    QApplication::beep();
}

std::string QtPrompts::BrowseFolder(const std::string& title, const std::string& start) {
    const bool canStart = !start.empty() && QDir(ShownText(start)).exists();
    QFileDialog dialog(Owner(), ShownText(title), canStart ? ShownText(start) : QDir::homePath());
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    WidenColumns(dialog);
    if (Execute(dialog) != QDialog::Accepted) return {};
    return BytesOfText(QDir::cleanPath(dialog.selectedFiles().value(0)));
}

std::string QtPrompts::PickSaveFile(const SaveRequest& request) {
    QFileDialog dialog(Owner());
    Prepare(dialog, request);
    while (Execute(dialog) == QDialog::Accepted) {
        const QString typed = dialog.selectedFiles().value(0);
        const std::string path =
            WithSuffix(BytesOfText(typed), request.filters, ChosenFilter(dialog, request.filters));
        const QFileInfo target(ShownText(path));
        if (!target.dir().exists()) {
            Ask({"The folder does not exist:\n" + BytesOfText(target.path()), PromptButtons::Ok,
                 PromptIcon::Warning});
            continue;
        }
        // The dialog itself has asked about the name as it was typed.
        if (target.filePath() == typed || !target.exists() ||
            Ask({path + "\nalready exists.\nDo you want to replace it?", PromptButtons::YesNo,
                 PromptIcon::Warning}) == Answer::Yes)
            return path;
    }
    return {};
}

ColorNumber QtPrompts::PickColor(const std::string& title, ColorNumber start) {
    const Pixel pixel = PixelFromColor(start);
    QColorDialog dialog(QColor(pixel.r, pixel.g, pixel.b), Owner());
    dialog.setWindowTitle(ShownText(title));
    if (Execute(dialog) != QDialog::Accepted) return start;
    const QColor color = dialog.currentColor();
    return RGB(color.red(), color.green(), color.blue());
}

}  // namespace tessara
