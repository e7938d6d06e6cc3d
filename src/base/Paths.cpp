// SPDX-License-Identifier: Apache-2.0
#include "base/Paths.h"

#include <algorithm>
#include <filesystem>

namespace tavrin {

namespace {

constexpr std::string_view kSeparators = "/\\";

bool IsKeptAsItIs(std::string_view path, PathStyle style) {
    if (path.front() == '.' || path.front() == '\\' || path == "/") return true;
    if (style == PathStyle::Posix && path.front() == '/') return true;
    return path.size() > 1 && path[1] == ':';
}

}  // namespace

std::string ResolvePath(std::string_view path, std::string_view base, PathStyle style) {
    if (path.empty()) return ".";
    std::string result;
    if (!IsKeptAsItIs(path, style)) {
        result.append(base);
        result += Separator(style);
    }
    result.append(path);
    const char foreign = style == PathStyle::Posix ? '\\' : '/';
    std::replace(result.begin(), result.end(), foreign, Separator(style));
    return result;
}

std::string PathDir(std::string_view path) {
    const auto last = path.find_last_of(kSeparators);
    if (last != std::string_view::npos) return std::string(path.substr(0, last + 1));
    if (path.size() > 1 && path[1] == ':') return std::string(path.substr(0, 2));
    return {};
}

std::string PathFile(std::string_view path) { return std::string(path.substr(PathDir(path).size())); }

std::string PathBase(std::string_view path) {
    std::string file = PathFile(path);
    const auto dot = file.rfind('.');
    if (dot != std::string::npos) file.resize(dot);
    return file;
}

std::string JoinPath(std::string_view directory, std::string_view name, PathStyle style) {
    std::string result(directory);
    if (result.empty() || kSeparators.find(result.back()) == std::string_view::npos)
        result += Separator(style);
    result.append(name);
    return result;
}

std::string FullPath(const std::string& path) {
    std::error_code error;
    const auto absolute = std::filesystem::absolute(path, error);
    return error ? path : absolute.lexically_normal().string();
}

}  // namespace tavrin
