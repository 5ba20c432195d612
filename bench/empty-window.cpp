// What a window costs that has nothing in it, as large as the main window: the measure for that one's start.

#include <QApplication>
#include <QScreen>
#include <QWidget>

int main(int count, char** arguments) {
    const QApplication application(count, arguments);
    QWidget window;
    window.setWindowTitle(QStringLiteral("Empty"));
    window.setGeometry(window.screen()->availableGeometry());
    window.show();
    return QApplication::exec();
}
