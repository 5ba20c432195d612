#pragma once

#include <cstdint>
#include <string>

namespace tessara {

/// The data of one folder entry. Where there is none the name is "Error" and the other fields are as they
/// stood.
struct FindData {
    std::string cFileName;
    std::int64_t lastWriteTime = 0;  ///< seconds since 1970, UTC
    std::uint32_t nFileSizeHigh = 0;
    std::uint32_t nFileSizeLow = 0;
};
void FindFile(const std::string& path, FindData& data);

struct FileInfoTexts {
    /// Of a file of 4 GB and more the high word, from 2 GB on negative: kept as it always was.
    std::int32_t bytes = 0;
    std::string bytesText;
    std::string dateText;  ///< UTC, plain numbers: "2004-3-5  7:9:2"
};
FileInfoTexts FileInfo(const std::string& path);
/// The same from data that is at hand.
FileInfoTexts FileInfoOf(const FindData& data);

/// The number that the folder picker takes for a root: the list of special folders leaves four numbers free.
int BrowseRootCode(int selector);

/// A size with at most one decimal, without a zero before the point: "120.6", ".5", "12". A value of more
/// than 3276.7 does not fit the 16-bit integer that it is rounded through, and stays unrounded.
std::string SizeNumber(float value);
/// A row's size: "120.6KB". Exactly 1024 KB are still KB.
std::string SizeText(std::int32_t bytes);

}  // namespace tessara
