#include <gtest/gtest.h>

#include <filesystem>

#include "settings/FixedText.h"
#include "settings/RecentPaths.h"
#include "settings/SettingsFile.h"
#include "tests/Support.h"

namespace tessara {
namespace {

ByteVector Blanks(std::size_t count) {
    return ByteVector(count, ' ');
}
ByteVector Text(std::string_view text) {
    return {text.begin(), text.end()};
}
ByteVector Folder(std::string_view text) {
    return Text(FixedText(text, 300));
}
ByteVector Repeated(const char* hex, int count) {
    ByteVector bytes;
    for (int i = 0; i < count; ++i) bytes = test::Concatenate({bytes, test::Hex(hex)});
    return bytes;
}

class SettingsFiles : public testing::Test {
  protected:
    test::TemporaryFolder folder_;
    const std::string path_ = folder_.File("ts40.cfg");
    const SettingsFile file_{path_};
};

TEST_F(SettingsFiles, AFirstRunWritesBothRecordsAndTheGap) {
    EXPECT_FALSE(file_.HasContents());
    test::WriteWhole(path_, {});
    EXPECT_FALSE(file_.HasContents()) << "an empty file counts as absent";
    test::Must(file_.Write(ConvertOptions::FirstRun("/opt/tessara")));
    test::Must(file_.Write(SlideOptions{}));
    const ByteVector expected = test::Concatenate(
        {test::Hex("0000"), Repeated("ffff", 25), test::Hex("01"), test::Hex("0000 ffff ffff"),
         Repeated("0000", 7), Folder("/opt/tessara///"), Folder("/opt/tessara///"), test::Hex("00 0000"),
         ByteVector(123), test::Hex("01 00 00 01 d0070000 00")});
    ASSERT_EQ(expected.size(), 808u);
    EXPECT_EQ(test::ReadWhole(path_), expected);
}

TEST_F(SettingsFiles, RecordsAreIndependentAndForeignBytesStay) {
    test::WriteWhole(path_, ByteVector(1000, 0x77));
    ConvertOptions options = ConvertOptions::FirstRun("/a");
    options.ListAllFiles = options.ListImportOnly = true;
    options.ExportOn[9] = true;
    options.ConvertScope = 2;
    options.OverwriteMode = 1;
    options.StartFolder = FolderField("/über");
    test::Must(file_.Write(options));
    SlideOptions slides;
    test::Must(file_.Read(slides));
    EXPECT_EQ(slides.SlideDelay, 0x77777777) << "the second record is as it was";
    slides = {.SlideAuto = 0,
              .SlideResize = 1,
              .SlideFullScreen = 1,
              .SlideCircular = 0,
              .SlideDelay = 100,
              .SlideOrder = 2};
    test::Must(file_.Write(slides));
    ConvertOptions readOptions;
    SlideOptions readSlides;
    test::Must(file_.Read(readOptions));
    test::Must(file_.Read(readSlides));
    EXPECT_EQ(readOptions, options);
    EXPECT_EQ(readSlides, slides);
    const ByteVector bytes = test::ReadWhole(path_);
    EXPECT_EQ(bytes.size(), 1000u);
    EXPECT_EQ(bytes[676], 0x77);
    EXPECT_EQ(bytes[808], 0x77);
}

TEST_F(SettingsFiles, AShortFileIsReadAsFarAsItGoes) {
    test::WriteWhole(path_, test::Concatenate({test::Hex("0100"), Repeated("ffff", 25), test::Hex("02"),
                                               Repeated("0000", 10), Text("/target///")}));
    ConvertOptions options;
    options.StartFolder = FolderField("/before");
    options.OverwriteMode = 2;
    test::Must(file_.Read(options));
    EXPECT_TRUE(options.ListAllFiles) << "every value but 0 is True";
    EXPECT_EQ(options.ConvertScope, 2);
    EXPECT_EQ(FolderOf(options.TargetFolder), "/target");
    EXPECT_EQ(FolderOf(options.StartFolder), "/before");
    EXPECT_EQ(options.OverwriteMode, 2);
}

TEST_F(SettingsFiles, ADelayOfNothingIsRepairedForAutomaticSlidesOnly) {
    for (const bool automatic : {true, false}) {
        SlideOptions slides;
        slides.SlideAuto = automatic;
        slides.SlideDelay = 0;
        test::Must(file_.Write(slides));
        test::Must(file_.Read(slides));
        EXPECT_EQ(slides.SlideDelay, automatic ? 2000 : 0);
    }
}

TEST_F(SettingsFiles, FolderFieldsEndAtTheirTerminator) {
    struct Case {
        const char* field;
        const char* folder;
    };
    for (const Case& row :
         {Case{"/a b///  ", "/a b"}, {"///", ""}, {"/a", ""}, {"", ""}, {"/a///b///", "/a"}, {"////  ", "/"}})
        EXPECT_EQ(FolderOf(row.field), row.folder) << row.field;
    // A path that leaves no room for the terminator counts as empty when it is read again.
    ConvertOptions options = ConvertOptions::FirstRun("/" + std::string(297, 'x'));
    test::Must(file_.Write(options));
    test::Must(file_.Read(options));
    EXPECT_EQ(FolderOf(options.StartFolder), "");
    EXPECT_EQ(options.StartFolder.size(), 300u);
}

TEST(FixedText, NeverSplitsACharacter) {
    struct Case {
        const char* text;
        std::size_t size;
        const char* cut;
    };
    const Case cases[] = {
        {"abc", 2, "ab"}, {"aü", 2, "a"}, {"aü", 3, "aü"},
        {"€x", 2, ""},    {"x€", 3, "x"}, {"\x80\x80\x80\x80\x80\x80", 5, "\x80\x80\x80\x80\x80"},
    };
    for (const Case& row : cases) EXPECT_EQ(CutText(row.text, row.size), row.cut) << row.text;
    EXPECT_EQ(FixedText("ü", 4), "ü  ");
}

TEST(RecentPaths, AreRecordsOfAHundredBytes) {
    const test::TemporaryFolder folder;
    const std::string file = folder.File("Recentlyused.src");
    EXPECT_TRUE(ReadRecentPaths(file).empty());
    using Paths = std::vector<std::string>;
    const std::string longest(97, 'l');
    test::Must(WriteRecentPaths(file, {"/a b", longest, longest + "x", "/c"}));
    const ByteVector bytes = test::ReadWhole(file);
    ASSERT_EQ(bytes.size(), 400u);
    EXPECT_EQ(ByteVector(bytes.begin(), bytes.begin() + 100),
              test::Concatenate({Text("/a b///"), Blanks(93)}));
    EXPECT_EQ(ReadRecentPaths(file), (Paths{"/a b", longest, "/c"}));
    test::Must(WriteRecentPaths(file, {"/"}));
    EXPECT_EQ(ReadRecentPaths(file), (Paths{"/", longest, "/c"})) << "the former tail stays";
    const std::filesystem::file_time_type before{};
    std::filesystem::last_write_time(file, before);
    test::Must(WriteRecentPaths(file, {"/"}));
    EXPECT_EQ(std::filesystem::last_write_time(file), before) << "what is there is not written again";

    test::WriteWhole(
        file, test::Concatenate({Text(FixedText("///", 100)), Text(FixedText("/x///y", 100)), Blanks(50)}));
    EXPECT_EQ(ReadRecentPaths(file), Paths{"/x"});
}

TEST(RecentPaths, OfAFormerSettingsFileEndAtADoubleBackslash) {
    const test::TemporaryFolder folder;
    const std::string file = folder.File("ts40.cfg");
    EXPECT_TRUE(ReadFormerPaths(file).empty());
    test::WriteWhole(file, ByteVector(808));
    EXPECT_TRUE(ReadFormerPaths(file).empty());
    test::WriteWhole(file, test::Concatenate({ByteVector(999), test::Hex("0300"), ByteVector(199),
                                              Text(FixedText("c:\\old\\\\", 198)), test::Hex("0900"),
                                              Text(FixedText("no end", 198)), test::Hex("0100"),
                                              Text(FixedText("d:\\\\", 198)), test::Hex("0500")}));
    const auto paths = ReadFormerPaths(file);
    ASSERT_EQ(paths.size(), 2u);
    EXPECT_EQ(paths[0].path, "c:\\old");
    EXPECT_EQ(paths[0].icon, 9);
    EXPECT_EQ(paths[1].path, "d:");
}

}  // namespace
}  // namespace tessara
