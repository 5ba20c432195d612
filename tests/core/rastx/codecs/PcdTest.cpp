#include "core/rastx/codecs/Pcd.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <tuple>
#include <vector>

#include "tests/Support.h"

namespace tessara {
namespace {

using test::Must;

constexpr std::size_t kSector = 2048;
constexpr int kNeutralBlue = 156;
constexpr int kNeutralRed = 137;

/// A plane of samples.
struct Field {
    int width, height;
    std::vector<int> samples;

    Field(int w, int h, const std::function<int(int, int)>& value)
        : width(w), height(h), samples(static_cast<std::size_t>(w * h)) {
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) At(x, y) = value(x, y);
    }
    int& At(int x, int y) { return samples[static_cast<std::size_t>(y * width + x)]; }
    int Clamped(int x, int y) const {
        return samples[static_cast<std::size_t>(std::min(y, height - 1) * width + std::min(x, width - 1))];
    }
    /// Twice the size: each sample is the mean of the two by two around its place.
    Field Predicted() const {
        return Field(2 * width, 2 * height, [this](int x, int y) {
            const int left = x / 2, right = (x + 1) / 2, top = y / 2, bottom = (y + 1) / 2;
            return (Clamped(left, top) + Clamped(right, top) + Clamped(left, bottom) +
                    Clamped(right, bottom) + 2) /
                   4;
        });
    }
};

struct Photo {
    Field luma, blue, red;
};
Photo FlatBase(int luma = 100, int blue = 150, int red = 140) {
    const auto flat = [](int value) { return [value](int, int) { return value; }; };
    return {{768, 512, flat(luma)}, {384, 256, flat(blue)}, {384, 256, flat(red)}};
}

void Place(ByteVector& file, std::size_t offset, const ByteVector& bytes) {
    if (file.size() < offset + bytes.size()) file.resize(offset + bytes.size());
    std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(offset));
}

/// A file with the plain picture Base; the two smaller ones are black.
ByteVector BasePac(const Photo& photo, unsigned attributes = 0, unsigned fourBaseEnd = 0) {
    ByteVector file(96 * kSector);
    Place(file, kSector, ByteWriter().Text("PCD_IPI").TakeBytes());
    Place(file, 0xe02, ByteWriter().U8(attributes).U16Be(fourBaseEnd).TakeBytes());
    for (int y = 0; y < 256; ++y) {
        const auto append = [&](const Field& field, int row) {
            for (int x = 0; x < field.width; ++x)
                file.push_back(static_cast<std::uint8_t>(field.Clamped(x, row)));
        };
        append(photo.luma, 2 * y);
        append(photo.luma, 2 * y + 1);
        append(photo.blue, y);
        append(photo.red, y);
    }
    return file;
}

/// Five codes, the same for all tables, that stand for different differences.
struct Code {
    unsigned length, bits;
};
constexpr Code kCodes[] = {{1, 0b0}, {2, 0b10}, {3, 0b110}, {4, 0b1110}, {6, 0b111100}};
using Differences = std::array<int, std::size(kCodes)>;

ByteVector Table(const Differences& differences) {
    ByteWriter table;
    table.U8(std::size(kCodes) - 1);
    for (std::size_t i = 0; i < std::size(kCodes); ++i)
        table.U8(kCodes[i].length - 1)
            .U16Be(kCodes[i].bits << (16 - kCodes[i].length))
            .U8(static_cast<std::uint8_t>(differences[i]));
    return table.TakeBytes();
}

/// Writes rows of differences and adds them to the field as it goes.
class DifferenceWriter {
  public:
    void AddRow(unsigned plane, Field& field, int row, const Differences& differences) {
        const bool chroma = plane != 0;
        Head(plane, chroma ? 2 * row : row);
        for (int x = 0; x < field.width; ++x) {
            random_ = random_ * 1664525 + 1013904223;
            const std::size_t choice = (random_ >> 24) % differences.size();
            Put(kCodes[choice].bits, kCodes[choice].length);
            field.At(x, row) += differences[choice];
        }
    }
    ByteVector End(int height) {
        Head(0, height);
        Put(0, 7);  // fills the last byte
        return bytes_;
    }

  private:
    void Head(unsigned plane, int row) {
        Put(0xfffffe, 24);
        Put(plane << 14 | static_cast<unsigned>(row) << 1, 16);
    }
    void Put(unsigned value, unsigned count) {
        while (count-- > 0) {
            if (free_ == 0) {
                bytes_.push_back(0);
                free_ = 8;
            }
            bytes_.back() |= static_cast<std::uint8_t>((value >> count & 1) << --free_);
        }
    }

    ByteVector bytes_;
    unsigned free_ = 0;
    unsigned random_ = 1;
};

constexpr Differences kLumaDifferences{0, 1, -1, 5, -7};
constexpr Differences kBlueDifferences{0, 2, -2, 4, -4};
constexpr Differences kRedDifferences{1, 0, -3, 3, 6};

/// A file with all sizes, and the planes of the largest one. Every eighth row has differences.
struct LargePac {
    Photo photo;
    ByteVector file;
    std::size_t fourBaseEnd = 0;  ///< sector
};

LargePac MakeLargePac() {
    LargePac pac{FlatBase(), {}, 0};
    pac.file = BasePac(pac.photo);
    Place(pac.file, 388 * kSector, Table(kLumaDifferences));
    pac.photo = {pac.photo.luma.Predicted(), pac.photo.blue.Predicted(), pac.photo.red.Predicted()};
    DifferenceWriter fourBase;
    for (int y = 0; y < 1024; y += 8) fourBase.AddRow(0, pac.photo.luma, y, kLumaDifferences);
    Place(pac.file, 389 * kSector, fourBase.End(1024));
    pac.fourBaseEnd = (pac.file.size() + kSector - 1) / kSector;

    Place(pac.file, (pac.fourBaseEnd + 12) * kSector,
          test::Concatenate({Table(kLumaDifferences), Table(kBlueDifferences), Table(kRedDifferences)}));
    pac.photo = {pac.photo.luma.Predicted(), pac.photo.blue.Predicted(), pac.photo.red.Predicted()};
    DifferenceWriter sixteenBase;
    for (int y = 0; y < 2048; y += 8) {
        sixteenBase.AddRow(0, pac.photo.luma, y, kLumaDifferences);
        sixteenBase.AddRow(2, pac.photo.blue, y / 2, kBlueDifferences);
        sixteenBase.AddRow(3, pac.photo.red, y / 2, kRedDifferences);
    }
    Place(pac.file, (pac.fourBaseEnd + 14) * kSector, sixteenBase.End(2048));
    pac.file[0xe02] = 2 << 2;
    Place(pac.file, 0xe03, ByteWriter().U16Be(static_cast<std::uint32_t>(pac.fourBaseEnd)).TakeBytes());
    return pac;
}
const LargePac& SharedLargePac() {
    static const LargePac pac = MakeLargePac();
    return pac;
}

/// The colours of luma and chroma, learned from one plain picture that holds them all.
using Components = std::tuple<int, int, int>;
std::map<Components, Pixel> ColorsOf(const std::vector<Components>& all) {
    const auto component = [&]<std::size_t index>(int x, int y) {
        return std::get<index>(all[std::min(all.size() - 1, static_cast<std::size_t>(y * 384 + x))]);
    };
    const Photo photo{{768, 512, [&](int x, int y) { return component.operator()<0>(x / 2, y / 2); }},
                      {384, 256, [&](int x, int y) { return component.operator()<1>(x, y); }},
                      {384, 256, [&](int x, int y) { return component.operator()<2>(x, y); }}};
    const Picture picture = Must(DecodePcd(BasePac(photo), {}));
    std::map<Components, Pixel> colors;
    for (int i = 0; i < static_cast<int>(all.size()); ++i)
        colors[all[static_cast<std::size_t>(i)]] = picture.At(i % 384 * 2, i / 384 * 2);
    return colors;
}

TEST(Pcd, TheDifferencesOfBothLargerSizesAreAddedToTheirPredictions) {
    const LargePac& pac = SharedLargePac();
    const Picture picture = Must(DecodePcd(pac.file, {}));
    ASSERT_EQ(picture.Width(), 3072);
    ASSERT_EQ(picture.Height(), 2048);
    // Chroma lies on every second sample of luma; there nothing but the stored planes counts.
    const auto at = [&](int x, int y) {
        return Components{pac.photo.luma.Clamped(2 * x, 2 * y), pac.photo.blue.Clamped(x, y),
                          pac.photo.red.Clamped(x, y)};
    };
    std::vector<Components> all;
    for (int y = 0; y < 1024; ++y)
        for (int x = 0; x < 1536; ++x) all.push_back(at(x, y));
    std::ranges::sort(all);
    all.erase(std::unique(all.begin(), all.end()), all.end());
    ASSERT_GT(all.size(), 300u);
    const auto colors = ColorsOf(all);
    for (int y = 0; y < 1024; ++y)
        for (int x = 0; x < 1536; ++x)
            ASSERT_EQ(picture.At(2 * x, 2 * y), colors.at(at(x, y))) << "at " << x << ", " << y;
}

TEST(Pcd, TheLargestSizeThatCanBeReadIsTaken) {
    struct Case {
        const char* name;
        int width;
        std::function<void(ByteVector&)> change;
    };
    const std::size_t end = SharedLargePac().fourBaseEnd;
    const Case cases[] = {
        {"4Base is the largest by the header", 1536, [](ByteVector& file) { file[0xe02] = 1 << 2; }},
        {"Base is the largest by the header", 768, [](ByteVector& file) { file[0xe02] = 0; }},
        {"the place of 16Base is missing", 3072, [](ByteVector& file) { file[0xe03] = file[0xe04] = 0; }},
        {"the place of 16Base is wrong", 3072, [](ByteVector& file) { ++file[0xe04]; }},
        {"a table of 16Base is damaged", 1536,
         [=](ByteVector& file) { file[(end + 12) * kSector + 1] = 16; }},
        {"16Base is not there", 1536, [=](ByteVector& file) { file.resize((end + 12) * kSector); }},
        {"16Base is cut short", 3072, [=](ByteVector& file) { file.resize(file.size() * 3 / 4); }},
        {"the table of 4Base fits nothing", 768,
         [](ByteVector& file) { Place(file, 388 * kSector, test::Hex("00 0f fff1 00")); }},
        {"4Base is not there", 768, [](ByteVector& file) { file.resize(389 * kSector); }},
        {"Base is cut short", 384, [](ByteVector& file) { file.resize(300 * kSector); }},
        {"Base/4 is cut short", 192, [](ByteVector& file) { file.resize(80 * kSector); }},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        ByteVector file = SharedLargePac().file;
        row.change(file);
        const Picture picture = Must(DecodePcd(file, {}));
        EXPECT_EQ(picture.Width(), row.width);
        EXPECT_EQ(picture.Height(), row.width / 3 * 2);
    }
}

TEST(Pcd, OrientationTurnsCounterClockwise) {
    struct Case {
        unsigned turns;
        int width, x, y;  ///< of the picture; of the stored picture's top left corner
    };
    const Case cases[] = {{0, 768, 0, 0}, {1, 512, 0, 767}, {2, 768, 767, 511}, {3, 512, 511, 0}};
    Photo photo = FlatBase(0, kNeutralBlue, kNeutralRed);
    photo.luma.At(0, 0) = 255;
    for (const Case& row : cases) {
        SCOPED_TRACE(row.turns);
        const Picture picture = Must(DecodePcd(BasePac(photo, row.turns), {}));
        ASSERT_EQ(picture.Width(), row.width);
        EXPECT_EQ(picture.At(row.x, row.y), kWhite);
        EXPECT_EQ(std::ranges::count(picture.Pixels(), kWhite), 1);
    }
}

TEST(Pcd, HighlightsAreBentUnlessAProgramWroteFullRange) {
    struct Case {
        const char* name;
        int luma, blue, red;
        bool byProgram;
        Pixel expected;
    };
    const Case cases[] = {
        {"black", 0, kNeutralBlue, kNeutralRed, false, kBlack},
        {"white of the scene", 182, kNeutralBlue, kNeutralRed, false, Grey(239)},
        {"highlight", 220, kNeutralBlue, kNeutralRed, false, Grey(253)},
        {"brightest", 255, kNeutralBlue, kNeutralRed, false, kWhite},
        {"more red, less blue", 96, 136, 157, false, {91, 128, 175, 255}},
        {"half, by a program", 128, kNeutralBlue, kNeutralRed, true, Grey(128)},
        {"brightest, by a program", 255, kNeutralBlue, kNeutralRed, true, kWhite},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        ByteVector file = BasePac(FlatBase(row.luma, row.blue, row.red));
        if (row.byProgram) Place(file, 0, ByteVector(32, 0xff)), Place(file, 32, ByteVector(4, 0x0e));
        EXPECT_EQ(Must(DecodePcd(file, {})).At(0, 0), row.expected);
    }
}

TEST(Pcd, OtherKindsOfFiles) {
    ByteVector sound = BasePac(FlatBase());
    sound[0xe09] = 2;
    EXPECT_FALSE(DecodePcd(sound, {}));

    ByteVector overview(10240 + 2 * 36864, 128);
    Place(overview, 0, ByteWriter().Text("PCD_OPA").TakeBytes());
    EXPECT_TRUE(RecognisePcd(overview));
    EXPECT_EQ(Must(DecodePcd(overview, {})).Width(), 192);

    ByteVector points = ByteWriter().Text("# .PCD v0.7 - points").Zeros(4096).TakeBytes();
    EXPECT_FALSE(RecognisePcd(points));
    EXPECT_FALSE(DecodePcd(points, {}));
}

}  // namespace
}  // namespace tessara
