#include "tests/Support.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <vector>

#include "core/ByteSink.h"

namespace tessara::test {
namespace {

struct Letter {
    char name;
    Pixel pixel;
};
constexpr Letter kLetters[] = {
    {'K', kBlack},
    {'W', kWhite},
    {'R', {0, 0, 255, 255}},
    {'G', {0, 255, 0, 255}},
    {'B', {255, 0, 0, 255}},
    {'C', {255, 255, 0, 255}},
    {'M', {255, 0, 255, 255}},
    {'Y', {0, 255, 255, 255}},
    {'.', kTransparent},
};

Pixel PixelOf(char name) {
    if (name >= '0' && name <= '9') return Grey(static_cast<std::uint8_t>(28 * (name - '0')));
    for (const Letter& letter : kLetters)
        if (letter.name == name) return letter.pixel;
    throw std::invalid_argument(std::string("no such pixel: ") + name);
}

char NameOf(Pixel pixel) {
    if (pixel.a == 0) return '.';
    for (const Letter& letter : kLetters)
        if (letter.pixel == pixel) return letter.name;
    for (char digit = '0'; digit <= '9'; ++digit)
        if (PixelOf(digit) == pixel) return digit;
    return '?';
}

ByteVector ReadStream(std::ifstream& stream) {
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace

Picture Draw(std::string_view rows) {
    std::vector<Pixel> pixels;
    int width = 0;
    int column = 0;
    const auto endRow = [&] {
        if (column == 0) return;
        if (width != 0 && column != width) throw std::invalid_argument("rows of different lengths");
        width = column;
        column = 0;
    };
    bool alpha = false;
    for (const char c : rows) {
        if (c == ' ' || c == '\n') {
            endRow();
            continue;
        }
        pixels.push_back(PixelOf(c));
        alpha |= c == '.';
        ++column;
    }
    endRow();
    Picture picture = Must(Picture::Create(width, static_cast<int>(pixels.size()) / std::max(width, 1),
                                           alpha ? Alpha::Straight : Alpha::None));
    std::copy(pixels.begin(), pixels.end(), picture.MutablePixels().begin());
    return picture;
}

std::string Sketch(const Picture& picture) {
    std::string text;
    for (int y = 0; y < picture.Height(); ++y) {
        if (y > 0) text += ' ';
        for (const Pixel pixel : picture.Row(y)) text += NameOf(pixel);
    }
    return text;
}

Picture PhotoLike(int width, int height, unsigned seed) {
    Picture picture = Must(Picture::Create(width, height, Alpha::None));
    std::minstd_rand random(seed);
    const double phase = seed * 0.37;
    for (int y = 0; y < height; ++y) {
        const auto row = picture.MutableRow(y);
        for (int x = 0; x < width; ++x) {
            const double u = x / 37.0 + phase;
            const double v = y / 29.0 - phase;
            const double shade = 40.0 * ((x / 41 + y / 53) % 2);
            const auto channel = [&](double wave) {
                const double noise = static_cast<double>(random() % 7) - 3;
                return static_cast<std::uint8_t>(std::clamp(108.0 + 80.0 * wave + shade + noise, 0.0, 255.0));
            };
            row[static_cast<std::size_t>(x)] = {channel(std::sin(u + v)), channel(std::sin(u) * std::cos(v)),
                                                channel(std::cos(u - 0.5 * v)), 255};
        }
    }
    return picture;
}

Picture PhotoLikeWithAlpha(int width, int height, unsigned seed) {
    Picture picture = PhotoLike(width, height, seed);
    picture.SetAlpha(Alpha::Straight);
    const auto pixels = picture.MutablePixels();
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        pixels[i].a = static_cast<std::uint8_t>((i % static_cast<std::size_t>(width)) * 255 /
                                                static_cast<std::size_t>(std::max(1, width - 1)));
        if (pixels[i].a == 0) pixels[i] = kTransparent;
    }
    return picture;
}

int LargestDifference(const Picture& a, const Picture& b) {
    if (a.Width() != b.Width() || a.Height() != b.Height()) return 256;
    const bool alpha = a.HasAlpha() || b.HasAlpha();
    int largest = 0;
    for (std::size_t i = 0; i < a.PixelCount(); ++i) {
        const Pixel p = a.Pixels()[i];
        const Pixel q = b.Pixels()[i];
        largest = std::max({largest, std::abs(p.b - q.b), std::abs(p.g - q.g), std::abs(p.r - q.r),
                            alpha ? std::abs(p.a - q.a) : 0});
    }
    return largest;
}

double Psnr(const Picture& a, const Picture& b) {
    if (a.Width() != b.Width() || a.Height() != b.Height()) return 0;
    double sum = 0;
    for (std::size_t i = 0; i < a.PixelCount(); ++i) {
        const Pixel p = a.Pixels()[i];
        const Pixel q = b.Pixels()[i];
        sum += (p.b - q.b) * (p.b - q.b) + (p.g - q.g) * (p.g - q.g) + (p.r - q.r) * (p.r - q.r);
    }
    if (sum == 0) return 99;
    return 10 * std::log10(255.0 * 255.0 * 3 * static_cast<double>(a.PixelCount()) / sum);
}

ByteVector Hex(std::string_view text) {
    ByteVector bytes;
    int high = -1;
    for (const char c : text) {
        if (c == ' ' || c == '\n') continue;
        const int digit = c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10;
        if (digit < 0 || digit > 15) throw std::invalid_argument("not hexadecimal");
        if (high < 0) {
            high = digit;
        } else {
            bytes.push_back(static_cast<std::uint8_t>(high * 16 + digit));
            high = -1;
        }
    }
    return bytes;
}

ByteVector Concatenate(std::initializer_list<ByteVector> parts) {
    ByteVector whole;
    for (const ByteVector& part : parts) whole.insert(whole.end(), part.begin(), part.end());
    return whole;
}

ByteVector Encode(decltype(Codec::encode) encode, const Picture& picture, const EncodeOptions& options) {
    MemorySink sink;
    Must(encode(picture, options, sink));
    return sink.TakeBytes();
}

ByteVector Encode(const Codec& codec, const Picture& picture, const EncodeOptions& options) {
    return Encode(codec.encode, picture, options);
}

bool HasSamples() {
    return std::filesystem::is_directory(TESSARA_SAMPLES);
}

ByteVector Sample(std::string_view name) {
    std::ifstream stream(std::string(TESSARA_SAMPLES) + "/" + std::string(name), std::ios::binary);
    return ReadStream(stream);
}

ByteVector TestFile(std::string_view name) {
    return ReadWhole(std::string(TESSARA_TEST_FILES) + "/" + std::string(name));
}

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tessara-test-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
    path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

NoMoreThreads::NoMoreThreads() {
    constexpr std::size_t kMoreThanThereIs = std::size_t{1} << 50;
    pthread_getattr_default_np(&usual_);
    pthread_attr_t endless = usual_;
    pthread_attr_setstacksize(&endless, kMoreThanThereIs);
    pthread_setattr_default_np(&endless);
}

ByteVector ReadWhole(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) throw std::runtime_error("cannot read " + path);
    return ReadStream(stream);
}

void WriteWhole(const std::string& path, Bytes bytes) {
    std::ofstream stream(path, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!stream) throw std::runtime_error("cannot write " + path);
}

}  // namespace tessara::test
