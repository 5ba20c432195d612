// Writes a picture of the main window as it stands on the present screen, a file of a folder in its panes:
//
//     tessara_window_pictures FOLDER FILE.png [light|dark] [ROW]
//
// The environment says which screen (DISPLAY) and which scale (QT_SCALE_FACTOR). ROW, from 0, is the file
// that is clicked on; without it the panes stay empty.

#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "bench/WholeWindow.h"

namespace {

using namespace tessara;

/// The colours of a usual dark desktop.
QPalette DarkPalette() {
    QPalette palette(QColor(53, 53, 53), QColor(45, 45, 48));
    palette.setColor(QPalette::Base, QColor(30, 30, 32));
    palette.setColor(QPalette::AlternateBase, QColor(38, 38, 40));
    palette.setColor(QPalette::Highlight, QColor(42, 110, 180));
    palette.setColor(QPalette::ToolTipBase, QColor(60, 60, 62));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText,
                            QPalette::HighlightedText}) {
        palette.setColor(role, QColor(225, 225, 228));
        palette.setColor(QPalette::Disabled, role, QColor(125, 125, 128));
    }
    return palette;
}

bool WritePicture(const char* folder, const char* file, int row) {
    bench::WholeWindow window;
    if (!window.form.Form_Load()) return false;
    window.form.EnterFolder(folder);
    if (row >= 0 && row < window.form.List().RowCount()) window.ShowRow(row);
    QApplication::processEvents();
    return window.form.grab().save(QString::fromLocal8Bit(file));
}

}  // namespace

int main(int count, char** arguments) {
    const QApplication application(count, arguments);
    if (count < 3) return EXIT_FAILURE;
    if (count > 3 && std::string_view(arguments[3]) == "dark") QApplication::setPalette(DarkPalette());
    if (WritePicture(arguments[1], arguments[2], count > 4 ? std::atoi(arguments[4]) : -1))
        return EXIT_SUCCESS;
    std::fprintf(stderr, "%s cannot be written\n", arguments[2]);
    return EXIT_FAILURE;
}
