#include "desktop/LinkOpener.h"

#include <gtest/gtest.h>

namespace tessara {
namespace {

TEST(LinkOpener, AddressesGetTheirSchemeAndLowerCase) {
    using namespace std::string_literals;
    struct Row {
        std::string target;
        const char* kind;
        std::string address;
    };
    const Row kRows[] = {
        {"www.Example.org/News.HTM", "WEB", "http://www.example.org/news.htm"},
        {"HTTP://Example.org", "web", "http://example.org"},
        {"fTp://example.org/A", "Web", "ftp://example.org/a"},
        {"https://example.org", "WEB", "http://https://example.org"},
        {"example.org \0 \0"s, "WEB", "http://example.org"},
        {" http://example.org", "WEB", "http:// http://example.org"},
        {"Help@Example.org", "mail", "mailto:help@example.org"},
        {"mailto:help@example.org", "MAIL", "mailto:mailto:help@example.org"},
        {"Example.org ", "OTHER", "example.org"},
    };
    ScriptedLinkOpener opener;
    for (const Row& row : kRows) {
        opener.OpenLink(row.target, row.kind);
        EXPECT_EQ(opener.opened.back(), row.address);
    }
}

TEST(LinkOpener, FoldersKeepEveryByteOfTheirNames) {
    EXPECT_EQ(FolderAddress("/home/Ann/A b#c?d%e"), "file:///home/Ann/A%20b%23c%3Fd%25e");
    EXPECT_EQ(FolderAddress("/\xc3\xa4\xff/"), "file:///%C3%A4%FF/");
    EXPECT_TRUE(FolderAddress("new").starts_with("file:///"));
    EXPECT_TRUE(FolderAddress("new").ends_with("/new"));
}

}  // namespace
}  // namespace tessara
