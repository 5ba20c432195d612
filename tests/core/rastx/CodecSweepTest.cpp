#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <random>
#include <set>
#include <sstream>

#include "core/Paths.h"
#include "core/Text.h"
#include "core/rastx/Codec.h"
#include "tests/Support.h"

/// What holds for every codec of the table, found by walking the folder of sample pictures.
namespace tessara {
namespace {

struct SampleRow {
    std::string name;                        ///< "bmp/hopper.bmp"
    std::string folder;                      ///< "bmp"
    std::vector<std::pair<int, int>> sizes;  ///< all that the file's description allows, the best first
};

/// All "320x200" in a text.
std::vector<std::pair<int, int>> SizesIn(const std::string& text) {
    std::vector<std::pair<int, int>> sizes;
    for (std::size_t i = text.find('x'); i != std::string::npos; i = text.find('x', i + 1)) {
        std::size_t start = i;
        while (start > 0 && std::isdigit(static_cast<unsigned char>(text[start - 1]))) --start;
        if (start < i && std::isdigit(static_cast<unsigned char>(text[i + 1])))
            sizes.emplace_back(std::stoi(text.substr(start)), std::stoi(text.substr(i + 1)));
    }
    return sizes;
}

/// The table of the folder's README: | file | size | ...
std::vector<SampleRow> SampleRows() {
    const ByteVector readme = test::Sample("README.md");
    std::istringstream lines(std::string(readme.begin(), readme.end()));
    std::vector<SampleRow> rows;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream cells(line);
        std::string before, name, size;
        std::getline(cells, before, '|');
        std::getline(cells, name, '|');
        std::getline(cells, size, '|');
        const std::size_t slash = name.find('/');
        if (slash == std::string::npos || !before.empty()) continue;
        rows.push_back({name.substr(1, name.size() - 2), name.substr(1, slash - 1), SizesIn(size)});
    }
    return rows;
}

/// Formats whose pixel size is the reader's choice among several.
bool SizeIsAChoice(const std::string& folder) {
    return folder == "emf" || folder == "pcd";
}

TEST(Samples, EveryOneIsReadWithItsTrueSize) {
    SKIP_WITHOUT_SAMPLES();
    std::set<std::string> foldersRead;
    for (const SampleRow& row : SampleRows()) {
        SCOPED_TRACE(row.name);
        const ByteVector file = test::Sample(row.name);
        ASSERT_FALSE(file.empty());
        const Result<Picture> picture = DecodeFile(file, ExtensionOf(row.name));
        if (!picture) {
            ADD_FAILURE() << picture.Error().message;
            continue;
        }
        const std::pair size{picture.Value().Width(), picture.Value().Height()};
        const auto end = SizeIsAChoice(row.folder) ? row.sizes.end() : row.sizes.begin() + 1;
        EXPECT_NE(std::find(row.sizes.begin(), end, size), end) << size.first << 'x' << size.second;
        foldersRead.insert(row.folder);
    }
    EXPECT_EQ(foldersRead.size(), ImportFormatTable().size());
}

TEST(Samples, HaveTheirTruePixels) {
    SKIP_WITHOUT_SAMPLES();
    const struct {
        const char* name;
        int x, y;
        Pixel pixel;
    } kRows[] = {
        {"jpeg/hibiscus.regular.jpeg", 150, 200, {64, 95, 86, 255}},
        {"jpg/cat.jpg", 100, 100, {111, 99, 99, 255}},
        // Inks of 76, 45 and 16 without black.
        {"jpg/cymk.jpg", 300, 200, {239, 210, 179, 255}},
        {"png/hippopotamus.interlaced.png", 18, 14, {82, 91, 46, 255}},
        {"png/iptc.png", 31, 31, {198, 206, 210, 255}},
        {"png/bpp2-indexed.png", 3, 12, {0, 255, 255, 255}},
        {"png/bpp16-grayscale-alpha.png", 8, 8, {119, 119, 119, 128}},
        {"tif/Oregon_Scientific_DS6639_-_DSC_0307_-_small_-_LZW_-_strips.tif",
         211,
         133,
         {250, 241, 251, 255}},
        {"tif/4bit.tif", 100, 2, {102, 102, 102, 255}},
        {"tif/1pagefax.tif", 1727, 1145, {255, 255, 255, 255}},
        {"tif/IndexColorPalette.tif", 100, 200, {0, 0, 255, 255}},
        {"tif/ycbcr_jpeg_8bit.tif", 300, 200, {25, 9, 0, 255}},
        {"tiff/hat.tiff", 44, 60, {13, 162, 223, 255}},
        {"tiff/ccitt4.tiff", 56, 150, {0, 0, 0, 255}},
        {"tiff/rgb-3c-16b.tiff", 80, 70, {110, 192, 143, 255}},
        {"tiff/bpp32-rgba.tiff", 5, 9, {0, 255, 255, 119}},
        {"tiff/tiff_tiled_planar_lzw.tiff", 270, 370, {223, 255, 255, 255}},
    };
    for (const auto& row : kRows)
        EXPECT_EQ(test::Must(DecodeFile(test::Sample(row.name), ExtensionOf(row.name))).At(row.x, row.y),
                  row.pixel)
            << row.name;
}

TEST(Samples, ContentsDecideBeforeTheName) {
    SKIP_WITHOUT_SAMPLES();
    std::size_t told = 0;
    for (const SampleRow& row : SampleRows()) {
        SCOPED_TRACE(row.name);
        const ByteVector file = test::Sample(row.name);
        const Codec* codec = FindCodec(file, ExtensionOf(row.name));
        ASSERT_NE(codec, nullptr);
        if (codec->recognition != Recognition::Signature || !codec->recognise(file)) continue;
        ++told;
        EXPECT_EQ(FindCodec(file, "xyz"), codec);
        for (const ImportFormat& format : ImportFormatTable())
            EXPECT_EQ(FindCodec(file, format.label), codec) << format.label;
    }
    EXPECT_GT(told, 80u);
}

/// Stops the process, and so the test, when one decode takes unreasonably long.
class Watchdog {
  public:
    Watchdog() { alarm(kSeconds); }
    ~Watchdog() { alarm(0); }

  private:
#ifdef __SANITIZE_ADDRESS__
    static constexpr unsigned kSeconds =
        25;  // the sanitizers cost about that factor of the 5 seconds allowed
#else
    static constexpr unsigned kSeconds = 5;
#endif
};

/// At most 4 GiB more than the process has; the sanitizers have a limit of their own.
void LimitMemory() {
#ifndef __SANITIZE_ADDRESS__
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, rlim_t{6} << 30);
    setrlimit(RLIMIT_AS, &limit);
#endif
}

void DecodeHostile(Bytes file, std::string_view extension) {
    const Watchdog watchdog;
    const Result<Picture> picture = DecodeFile(file, extension);
    EXPECT_TRUE(!picture || !picture.Value().Empty());
}

class HostileFiles : public testing::TestWithParam<std::string_view> {
  protected:
    /// The smallest samples of the format that the parameter names.
    static std::vector<SampleRow> Chosen() {
        std::multimap<std::size_t, SampleRow> bySize;
        for (const SampleRow& row : SampleRows())
            if (EqualIgnoringCase(row.folder, GetParam())) bySize.emplace(test::Sample(row.name).size(), row);
        std::vector<SampleRow> rows;
        constexpr std::size_t kMost = 3;
        for (const auto& [size, row] : bySize)
            if (rows.size() < kMost) rows.push_back(row);
        return rows;
    }
};

TEST_P(HostileFiles, CutShortAnywhere) {
    SKIP_WITHOUT_SAMPLES();
    LimitMemory();
    const auto chosen = Chosen();
    ASSERT_FALSE(chosen.empty());
    for (const SampleRow& row : chosen) {
        const ByteVector file = test::Sample(row.name);
        constexpr std::size_t kPlaces = 64;
        for (std::size_t i = 0; i < kPlaces; ++i) {
            // Half of the places lie in the first bytes, where the headers are.
            const std::size_t length = i < kPlaces / 2 ? std::min(file.size(), i * 3)
                                                       : file.size() * (i - kPlaces / 2) / (kPlaces / 2);
            SCOPED_TRACE(row.name + " cut at " + std::to_string(length));
            DecodeHostile(Bytes(file).first(length), ExtensionOf(row.name));
        }
    }
}

TEST_P(HostileFiles, WithBytesChangedAtRandom) {
    SKIP_WITHOUT_SAMPLES();
    LimitMemory();
    for (const SampleRow& row : Chosen()) {
        const ByteVector original = test::Sample(row.name);
        for (unsigned seed = 0; seed < 200; ++seed) {
            SCOPED_TRACE(row.name + " seed " + std::to_string(seed));
            std::minstd_rand random(seed + 1);
            ByteVector file = original;
            // Every other file is changed in its header alone, where a byte does most harm.
            const std::size_t reach = seed % 2 ? file.size() : std::min<std::size_t>(file.size(), 128);
            for (unsigned change = 0; change <= seed % 8; ++change)
                file[random() % reach] = static_cast<std::uint8_t>(random() >> 7);
            DecodeHostile(file, ExtensionOf(row.name));
        }
    }
}

std::vector<std::string_view> ImportLabels() {
    std::vector<std::string_view> labels;
    for (const ImportFormat& format : ImportFormatTable()) labels.push_back(format.label);
    return labels;
}

INSTANTIATE_TEST_SUITE_P(Formats, HostileFiles, testing::ValuesIn(ImportLabels()),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace
}  // namespace tessara
