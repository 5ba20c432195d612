#include <gtest/gtest.h>

#include "desktop/Application.h"

int main(int count, char** arguments) {
    // A screen that exists in memory only, also where the tests are merely listed.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&count, arguments);
    const tessara::Application application(count, arguments);
    return RUN_ALL_TESTS();
}
