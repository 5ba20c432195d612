#pragma once

#include <cstdio>
// After cstdio, which it needs.
#include <jpeglib.h>

#include <csetjmp>
#include <cstdint>
#include <string_view>

#include "core/Result.h"

/// What reading and writing JPEG through libjpeg-turbo have in common. The library reports a fatal error by a
/// jump. Every call that may end so runs inside `Guarded`, as a step that holds nothing with a destructor.
namespace tessara::jpg {

inline constexpr std::string_view kExifSignature("Exif\0\0", 6);
inline constexpr int kExifMarker = JPEG_APP0 + 1;
inline constexpr int kIccMarker = JPEG_APP0 + 2;
inline constexpr unsigned kLongestMarker = 0xffff;

/// What the library calls on errors and warnings, and what we remember of them.
struct ErrorState {
    jpeg_error_mgr manager{};
    std::jmp_buf escape{};
    std::int64_t missingFrom = INT64_MAX;  ///< first row of blocks for which the file has no complete data
};

/// Makes the library report to `state`, before any other call for `jpeg`.
void InstallErrorState(j_common_ptr jpeg, ErrorState& state);

/// False where the library gave the step up.
template <typename Step>
bool Guarded(ErrorState& state, const Step& step) {
    if (setjmp(state.escape) != 0) return false;
    step();
    return true;
}

/// What the library gave up for.
Failure FailureOf(ErrorState& state, j_common_ptr jpeg);

}  // namespace tessara::jpg
