#include "core/Files.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <new>

#include "core/HeldSignals.h"
#include "tests/Support.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;

Result<void> WriteText(ByteSink& sink, std::string_view text) {
    return sink.Write(AsBytes(text));
}

std::string Text(const std::string& path) {
    const ByteVector bytes = test::ReadWhole(path);
    return {bytes.begin(), bytes.end()};
}

std::size_t FilesIn(const std::string& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(ReplaceFile, MakesANewFileAndReplacesAnOldOne) {
    const test::TemporaryFolder folder;
    const std::string path = folder.File("a.bmp");
    for (const char* text : {"first", "second, longer", "3rd"}) {
        test::Must(ReplaceFile(path, [&](ByteSink& sink) { return WriteText(sink, text); }));
        EXPECT_EQ(Text(path), text);
        EXPECT_EQ(FilesIn(folder.Path()), 1u);
    }
}

TEST(ReplaceFile, AFailedSaveLeavesWhatWasThere) {
    const test::TemporaryFolder folder;
    const std::string path = folder.File("a.bmp");
    const std::function<Result<void>()> failures[] = {
        [] { return CannotWrite("the encoder gave up"); },
        []() -> Result<void> { throw std::bad_alloc(); },
    };
    for (const auto& failure : failures) {
        const auto fail = [&](ByteSink& sink) -> Result<void> {
            TRY(WriteText(sink, "half of it"));
            return failure();
        };
        EXPECT_FALSE(ReplaceFile(path, fail));
        EXPECT_EQ(FilesIn(folder.Path()), 0u);
        test::Must(ReplaceFile(path, [](ByteSink& sink) { return WriteText(sink, "old"); }));
        EXPECT_FALSE(ReplaceFile(path, fail));
        EXPECT_EQ(Text(path), "old");
        EXPECT_EQ(FilesIn(folder.Path()), 1u);
        fs::remove(path);
    }
}

TEST(ReplaceFile, AFolderThatIsNotThereIsAFailure) {
    const test::TemporaryFolder folder;
    const auto write = [](ByteSink& sink) { return WriteText(sink, "x"); };
    EXPECT_FALSE(ReplaceFile(folder.File("missing/a.bmp"), write));
    // One that goes, or becomes a file, while the picture is being written.
    const std::string target = folder.File("goes");
    for (const bool becomesFile : {false, true}) {
        fs::create_directory(target);
        EXPECT_FALSE(ReplaceFile(target + "/a.bmp", [&](ByteSink& sink) {
            fs::remove(target);
            if (becomesFile) test::WriteWhole(target, AsBytes("a file"));
            return WriteText(sink, "x");
        }));
        EXPECT_EQ(fs::exists(target), becomesFile);
    }
    EXPECT_EQ(Text(target), "a file");
}

// A full disk, made by a limit on the size of files: the write in the middle of the save fails.
TEST(ReplaceFile, AFullDiskLeavesWhatWasThere) {
    const test::TemporaryFolder folder;
    const std::string path = folder.File("a.bmp");
    test::Must(ReplaceFile(path, [](ByteSink& sink) { return WriteText(sink, "old"); }));
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    rlimit small = old;
    small.rlim_cur = 1 << 20;
    setrlimit(RLIMIT_FSIZE, &small);
    const Result<void> saved =
        ReplaceFile(path, [](ByteSink& sink) { return sink.Write(ByteVector(std::size_t{3} << 20)); });
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
    ASSERT_FALSE(saved);
    EXPECT_EQ(saved.Error().kind, FailureKind::CannotWrite);
    EXPECT_EQ(Text(path), "old");
    EXPECT_EQ(FilesIn(folder.Path()), 1u);
}

TEST(ReplaceFile, WritesThroughSymbolicLinks) {
    const test::TemporaryFolder folder;
    fs::create_directory(folder.File("real"));
    test::WriteWhole(folder.File("real/a.bmp"), AsBytes("old"));
    fs::create_symlink("real/a.bmp", folder.File("relative"));
    fs::create_symlink(folder.File("relative"), folder.File("chain"));
    fs::create_symlink("real/new.bmp", folder.File("dangling"));
    fs::create_symlink("loop", folder.File("loop"));

    test::Must(ReplaceFile(folder.File("chain"), [](ByteSink& sink) { return WriteText(sink, "new"); }));
    EXPECT_EQ(Text(folder.File("real/a.bmp")), "new");
    EXPECT_TRUE(fs::is_symlink(folder.File("chain")));
    EXPECT_TRUE(fs::is_symlink(folder.File("relative")));
    test::Must(ReplaceFile(folder.File("dangling"), [](ByteSink& sink) { return WriteText(sink, "made"); }));
    EXPECT_EQ(Text(folder.File("real/new.bmp")), "made");
    EXPECT_FALSE(ReplaceFile(folder.File("loop"), [](ByteSink& sink) { return WriteText(sink, "x"); }));
}

TEST(ReplaceFile, KeepsThePermissionsOfTheOldFile) {
    const test::TemporaryFolder folder;
    const std::string path = folder.File("a.bmp");
    test::WriteWhole(path, AsBytes("old"));
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    test::Must(ReplaceFile(path, [](ByteSink& sink) { return WriteText(sink, "new"); }));
    EXPECT_EQ(fs::status(path).permissions(), static_cast<fs::perms>(0640));
}

// Root may write everywhere, so the save is somebody else's, in a process of its own.
TEST(ReplaceFile, LeavesAProtectedFileAsItIs) {
    const test::TemporaryFolder folder;
    const std::string path = folder.File("a.bmp");
    test::WriteWhole(path, AsBytes("old"));
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    ASSERT_EQ(chmod(folder.Path().c_str(), 0777), 0);
    const auto saves = [](const std::string& target) {
        constexpr uid_t kNobody = 65534;
        if (geteuid() == 0 && seteuid(kNobody) != 0) return false;
        return ReplaceFile(target, [](ByteSink& sink) { return WriteText(sink, "new"); }).Ok();
    };
    EXPECT_EXIT(_exit(saves(path)), testing::ExitedWithCode(false), "");
    EXPECT_EXIT(_exit(saves(folder.File("b.bmp"))), testing::ExitedWithCode(true), "");
    EXPECT_EQ(Text(path), "old");
}

TEST(ReplaceFile, OverwritesBytesAlreadyWritten) {
    const test::TemporaryFolder folder;
    const std::string path = folder.File("a.tif");
    test::Must(ReplaceFile(path, [](ByteSink& sink) -> Result<void> {
        TRY(WriteText(sink, "????"));
        TRY(sink.Write(ByteVector(std::size_t{1} << 20, 'x')));
        TRY(sink.Overwrite(1, AsBytes("ab")));
        return WriteText(sink, "end");
    }));
    const std::string text = Text(path);
    EXPECT_EQ(text.size(), (std::size_t{1} << 20) + 7);
    EXPECT_EQ(text.substr(0, 6), "?ab?xx");
    EXPECT_EQ(text.substr(text.size() - 4), "xend");
}

TEST(HeldSignals, WaitUntilTheWorkIsDone) {
    const test::TemporaryFolder folder;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        const std::string path = folder.File(std::to_string(signal));
        const auto work = [&] {
            const HeldSignals held;
            raise(signal);
            test::WriteWhole(path, AsBytes("whole"));
        };
        EXPECT_EXIT(work(), testing::KilledBySignal(signal), "");
        EXPECT_EQ(Text(path), "whole");
    }
}

TEST(FileBytes, AFolderOrAMissingFileIsAFailure) {
    const test::TemporaryFolder folder;
    EXPECT_FALSE(FileBytes::Read(folder.Path()));
    EXPECT_FALSE(FileBytes::Read(folder.File("missing")));
    EXPECT_FALSE(IsFile(folder.Path()));
}

}  // namespace
}  // namespace tessara
