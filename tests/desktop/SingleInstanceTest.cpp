#include "desktop/SingleInstance.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/Support.h"

namespace tessara {
namespace {

TEST(SingleInstance, OnlyOneHoldsTheLockAtATime) {
    const test::TemporaryFolder folder;
    const std::string lock = folder.File("lock");
    auto first = std::make_unique<SingleInstance>(lock);
    EXPECT_TRUE(first->IsFirst());
    EXPECT_FALSE(SingleInstance(lock).IsFirst());
    EXPECT_TRUE(SingleInstance(folder.File("other display")).IsFirst());
    first.reset();
    EXPECT_TRUE(SingleInstance(lock).IsFirst()) << "the file that a former instance left behind is no lock";
}

TEST(SingleInstance, WithoutAPlaceForTheLockTheProgramStarts) {
    EXPECT_TRUE(SingleInstance("/no/such/folder/lock").IsFirst());
}

}  // namespace
}  // namespace tessara
