#include "browse/FileInfo.h"

#include <sys/stat.h>

#include <cmath>
#include <cstdio>
#include <ctime>

#include "core/Paths.h"

namespace tessara {

void FindFile(const std::string& path, FindData& data) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        data.cFileName = "Error";
        return;
    }
    std::string folder;
    SplitPath(path, folder, data.cFileName);
    const auto size = static_cast<std::uint64_t>(status.st_size);
    data.lastWriteTime = status.st_mtime;
    data.nFileSizeHigh = static_cast<std::uint32_t>(size >> 32);
    data.nFileSizeLow = static_cast<std::uint32_t>(size);
}

FileInfoTexts FileInfoOf(const FindData& data) {
    FileInfoTexts info;
    info.bytes = static_cast<std::int32_t>(data.nFileSizeHigh != 0 ? data.nFileSizeHigh : data.nFileSizeLow);
    info.bytesText = std::to_string(info.bytes);
    const std::time_t seconds = data.lastWriteTime;
    std::tm time{};
    gmtime_r(&seconds, &time);
    const auto number = [](int value) { return std::to_string(value); };
    info.dateText = number(time.tm_year + 1900) + "-" + number(time.tm_mon + 1) + "-" + number(time.tm_mday) +
                    "  " + number(time.tm_hour) + ":" + number(time.tm_min) + ":" + number(time.tm_sec);
    return info;
}

FileInfoTexts FileInfo(const std::string& path) {
    FindData data;
    FindFile(path, data);
    return FileInfoOf(data);
}

int BrowseRootCode(int selector) {
    if (selector < 2) return 0;
    return selector < 12 ? selector : selector + 4;
}

std::string SizeNumber(float value) {
    const float tenths = std::nearbyint(value * 10);
    const float rounded = tenths >= -32768 && tenths <= 32767 ? tenths / 10 : value;
    char text[32];
    std::snprintf(text, sizeof text, "%.7g", static_cast<double>(rounded));
    std::string number = text;
    if (number.starts_with("0.")) number.erase(0, 1);
    if (number.starts_with("-0.")) number.erase(1, 1);
    return number;
}

std::string SizeText(std::int32_t bytes) {
    const float kilobytes = static_cast<float>(bytes) / 1024;
    return kilobytes > 1024 ? SizeNumber(kilobytes / 1024) + "MB" : SizeNumber(kilobytes) + "KB";
}

}  // namespace tessara
