#include "tests/onscreen/OnScreen.h"

#include <QClipboard>
#include <QScopedValueRollback>
#include <QScreen>

namespace tessara::test {

QString shotsFolder;

OnScreen::OnScreen() {
    QObject::connect(&watch_, &QTimer::timeout, &watch_, [this] { VisitModalWindow(); });
    watch_.start(20);
    if (!Becomes([this] { return window_.form.isActiveWindow(); }))
        throw std::runtime_error("the window never became active");
}

void OnScreen::VisitModalWindow() {
    QWidget* const shown = QApplication::activeModalWidget();
    if (shown == nullptr || visited_ != nullptr || !visit_) return;
    const QScopedValueRollback<QWidget*> visited(visited_, shown);
    ASSERT_TRUE(Becomes([&] { return shown->isActiveWindow() && shown->windowHandle()->isExposed(); }));
    std::exchange(visit_, {})(*shown);
    if (shown == QApplication::activeModalWidget()) shown->close();
}

QByteArray OnScreen::Run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    // It may be this program's clipboard that it asks for.
    if (!Becomes([&] { return process.state() == QProcess::NotRunning; }))
        ADD_FAILURE() << program.toStdString();
    return process.readAllStandardOutput();
}

void OnScreen::Pointer(const QPoint& at, const QString& actions) {
    const QStringList move = {"mousemove", QString::number(at.x()), QString::number(at.y())};
    Run(QStringLiteral("xdotool"), move + actions.split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

void OnScreen::Load(const Picture& picture) {
    window_.form.LoadPict(window_.Write("picture.png", picture));
    window_.session.ExportChanged = false;
}

void OnScreen::ChooseByPointer(std::string_view array, int index) {
    std::vector<const QMenu*> path;
    for (QMenu* menu = window_.form.Menus().Menu(array); menu != nullptr;
         menu = qobject_cast<QMenu*>(menu->parentWidget()))
        path.insert(path.begin(), menu);
    const QMenuBar& bar = *window_.form.menuBar();
    Pointer(bar.mapToGlobal(bar.actionGeometry(path.front()->menuAction()).center()), "click 1");
    for (std::size_t i = 0; i < path.size(); ++i) {
        ASSERT_TRUE(Becomes([&] { return path[i]->isVisible(); })) << path[i]->title().toStdString();
        const QAction* const next = i + 1 < path.size()
                                        ? path[i + 1]->menuAction()
                                        : window_.form.Menus().Item(std::string(array), index);
        Pointer(path[i]->mapToGlobal(path[i]->actionGeometry(const_cast<QAction*>(next)).center()),
                "click 1");
    }
}

void OnScreen::Shoot(const QString& name) {
    if (shotsFolder.isEmpty()) return;
    for (QWidget* const window : QApplication::topLevelWidgets())
        if (window->isVisible()) window->repaint();
    QGuiApplication::sync();
    const QPixmap shot = window_.form.screen()->grabWindow(0);
    EXPECT_TRUE(shot.save(shotsFolder + QLatin1Char('/') + name + QStringLiteral(".png")));
}

}  // namespace tessara::test
