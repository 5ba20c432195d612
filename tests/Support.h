#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <initializer_list>
#include <string>
#include <string_view>

#include "core/Bytes.h"
#include "core/Result.h"
#include "core/rastx/Codec.h"
#include "core/rastx/Picture.h"

/// What several tests need: small pictures, files, and comparisons that say what differs.
namespace tessara::test {

/// The value of a result that must not have failed; throws with the failure's message otherwise.
template <typename T>
T Must(Result<T> result) {
    if (!result) throw std::runtime_error(result.Error().message);
    return std::move(result).Value();
}
inline void Must(const Result<void>& result) {
    if (!result) throw std::runtime_error(result.Error().message);
}

/// A picture of one character per pixel, rows separated by blanks or line ends:
/// K black, W white, R G B C M Y the bright colours, digits 0 to 9 greys (0, 28, 56, ... 252), '.'
/// transparent. "KW WK" is a chequered picture of two by two. It has alpha if a '.' occurs.
Picture Draw(std::string_view rows);
/// The inverse: a character per pixel, '?' for a colour without one.
std::string Sketch(const Picture& picture);

/// A colourful picture without repetition: soft gradients, some edges and a little seeded noise, like a
/// photograph.
Picture PhotoLike(int width, int height, unsigned seed = 1);
/// The same with alpha from 0 to 255 across it.
Picture PhotoLikeWithAlpha(int width, int height, unsigned seed = 1);

/// The largest difference of any channel (alpha too, where either has it); 256 if the sizes differ.
int LargestDifference(const Picture& a, const Picture& b);
/// Peak signal to noise ratio of the colours in dB, 99 for equal pictures.
double Psnr(const Picture& a, const Picture& b);

/// Bytes from hexadecimal text; blanks are skipped.
ByteVector Hex(std::string_view text);
ByteVector Concatenate(std::initializer_list<ByteVector> parts);

/// Encodes to memory.
ByteVector Encode(decltype(Codec::encode) encode, const Picture& picture, const EncodeOptions& options = {});
ByteVector Encode(const Codec& codec, const Picture& picture, const EncodeOptions& options = {});

/// A file of the shared sample folder ("bmp/hopper.bmp"); empty where the folder is missing, see
/// SKIP_WITHOUT_SAMPLES.
ByteVector Sample(std::string_view name);
/// A file of tests/files; throws where it is missing.
ByteVector TestFile(std::string_view name);
bool HasSamples();

/// A new empty folder that is removed with everything in it at the end of the test.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    const std::string& Path() const { return path_; }
    std::string File(std::string_view name) const { return path_ + "/" + std::string(name); }

  private:
    std::string path_;
};

/// While one lives, the system gives no thread.
class NoMoreThreads {
  public:
    NoMoreThreads();
    ~NoMoreThreads() { pthread_setattr_default_np(&usual_); }
    NoMoreThreads(const NoMoreThreads&) = delete;
    NoMoreThreads& operator=(const NoMoreThreads&) = delete;

  private:
    pthread_attr_t usual_;
};

ByteVector ReadWhole(const std::string& path);
void WriteWhole(const std::string& path, Bytes bytes);

}  // namespace tessara::test

#define SKIP_WITHOUT_SAMPLES()          \
    if (!::tessara::test::HasSamples()) \
    GTEST_SKIP() << "the folder of sample pictures is missing: " TESSARA_SAMPLES
