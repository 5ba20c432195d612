#include <gtest/gtest.h>

#include <QApplication>

/// The tests of widgets need an application object for as long as they run.
int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
