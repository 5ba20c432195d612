#include "core/Inflate.h"

#include "tests/Support.h"

namespace tessara {
namespace {

TEST(Inflate, KeepsWhatComesBeforeDamage) {
    const ByteVector stored = test::Hex("7801 01 0400 fbff 61626364 03d8018b");
    const struct {
        const char* name;
        ByteVector stream;
        std::size_t room;
        std::string_view text;
    } cases[] = {
        {"whole", stored, 4, "abcd"},
        {"more room than bytes", stored, 9, "abcd"},
        {"less room than bytes", stored, 3, "abc"},
        {"no checksum", ByteVector(stored.begin(), stored.end() - 4), 4, "abcd"},
        {"wrong checksum", test::Hex("7801 01 0400 fbff 61626364 00000000"), 4, "abcd"},
        {"cut", ByteVector(stored.begin(), stored.begin() + 9), 4, "ab"},
        {"no zlib stream", test::Hex("00112233"), 4, ""},
        {"nothing", {}, 4, ""},
    };
    for (const auto& row : cases) {
        ByteVector target(row.room);
        const std::size_t count = InflateInto(row.stream, target);
        EXPECT_EQ(std::string(target.begin(), target.begin() + static_cast<std::ptrdiff_t>(count)), row.text)
            << row.name;
    }
}

}  // namespace
}  // namespace tessara
