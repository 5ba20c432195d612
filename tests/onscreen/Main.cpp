#include <gtest/gtest.h>

#include <QApplication>

#include "tests/onscreen/OnScreen.h"

/// [FOLDER], behind the options of the tests: where screenshots go.
int main(int count, char** arguments) {
    testing::InitGoogleTest(&count, arguments);
    const QApplication application(count, arguments);
    const QStringList left = QApplication::arguments();
    if (left.size() > 1) tessara::test::shotsFolder = left[1];
    return RUN_ALL_TESTS();
}
