#include "desktop/Application.h"

#include <gtest/gtest.h>

#include <QEvent>
#include <new>

namespace tessara {
namespace {

TEST(Application, AnEventThatFindsNoMemoryEndsAlone) {
    class Hungry final : public QObject {
        bool event(QEvent*) override {
            QApplication::setOverrideCursor(Qt::WaitCursor);
            throw std::bad_alloc();
        }
    } hungry;
    QEvent event(QEvent::User);
    EXPECT_FALSE(QCoreApplication::sendEvent(&hungry, &event));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

}  // namespace
}  // namespace tessara
