#include "core/LowerCase.h"

#include <gtest/gtest.h>

namespace tessara {
namespace {

TEST(LowerCase, KnowsTheLettersOfEuropeAndKeepsAllElse) {
    struct Case {
        const char* text;
        const char* lower;
    };
    const Case cases[] = {
        {"/IN/Photo 1.JPG", "/in/photo 1.jpg"},
        {"ÀÖØÞ×ß", "àöøþ×ß"},
        {"ĀāŁłŽŸ", "āāłłžÿ"},
        {"ΆΩΣς", "άωσς"},
        {"ЁЖЯѢ", "ёжяѣ"},
        {"日本İ", "日本İ"},
        {"A\xff\xc3", "a\xff\xc3"},
    };
    for (const Case& row : cases) EXPECT_EQ(LowerCaseText(row.text), row.lower);
}

}  // namespace
}  // namespace tessara
