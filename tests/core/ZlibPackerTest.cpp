#include "core/ZlibPacker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <random>

#include "core/ByteReader.h"
#include "core/ByteSink.h"
#include "core/rastx/codecs/Tif.h"
#include "tests/Support.h"

namespace tessara {
namespace {

/// A TIFF of one strip, whose reader unpacks zlib streams: one row of grey.
ByteVector AsPicture(Bytes stream, std::size_t count) {
    ByteWriter file;
    file.U32Le(0x002a4949).U32Le(8).U16Le(7);
    const auto field = [&](std::uint32_t tag, std::size_t value) {
        file.U16Le(tag).U16Le(4).U32Le(1).U32Le(static_cast<std::uint32_t>(value));
    };
    constexpr std::size_t kWidth = 1000;
    field(256, kWidth);
    field(257, count / kWidth);
    field(258, 8);
    field(259, 8);
    field(262, 1);
    field(273, 8 + 2 + 7 * 12 + 4);
    field(279, stream.size());
    file.U32Le(0).Append(stream);
    return file.TakeBytes();
}

std::uint32_t Adler32(Bytes bytes) {
    std::uint32_t a = 1;
    std::uint32_t b = 0;
    for (const std::uint8_t byte : bytes) {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    return b << 16 | a;
}

template <typename Make>
ByteVector Filled(std::size_t count, Make make) {
    ByteVector bytes(count);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(make());
    return bytes;
}

TEST(ZlibPacker, PacksEveryKindOfData) {
    std::minstd_rand random(7);
    const auto noise = [&] { return random() >> 8; };
    // Steeply falling frequencies would have codes of far more bits than are allowed.
    const auto steep = [&] {
        return std::min<std::uint32_t>(31, std::countl_zero(static_cast<std::uint32_t>(random()) << 1));
    };
    const auto residual = [&] { return static_cast<int>(random() % 5) + static_cast<int>(random() % 5) - 4; };
    unsigned step = 0;
    const struct {
        const char* name;
        ByteVector raw;
        double largestShare;  ///< packed to raw
    } cases[] = {
        {"noise", Filled(200'000, noise), 1.01},
        {"steep", Filled(200'000, steep), 0.3},
        {"what prediction leaves of a photograph", Filled(201'000, residual), 0.42},
        {"one value", ByteVector(200'000, 9), 0.01},
        {"a short pattern", Filled(200'000, [&] { return step++ % 100; }), 0.05},
        {"little data", Filled(1000, residual), 0.6},
    };
    for (const auto& row : cases) {
        ZlibPacker packer;
        const Bytes packed = packer.Pack(row.raw);
        EXPECT_LE(static_cast<double>(packed.size()), row.largestShare * static_cast<double>(row.raw.size()))
            << row.name;
        ByteReader check(packed.last(4));
        EXPECT_EQ(check.U32Be(), Adler32(row.raw)) << row.name;
        const Picture picture = test::Must(DecodeTif(AsPicture(packed, row.raw.size()), {}));
        ASSERT_EQ(picture.PixelCount(), row.raw.size()) << row.name;
        for (std::size_t i = 0; i < row.raw.size(); ++i)
            ASSERT_EQ(picture.Pixels()[i].g, row.raw[i]) << row.name << " at " << i;
    }
}

}  // namespace
}  // namespace tessara
