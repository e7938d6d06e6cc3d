// SPDX-License-Identifier: Apache-2.0
// Path rules of library files and documents.
//
// Text that comes from files may separate path components by '/' or by '\'; both are understood
// everywhere. Results carry the separator of the style asked for. The style is a parameter so that the
// rules of both can be tested on any platform; the program itself uses kNativeStyle throughout.
#pragma once

#include <string>
#include <string_view>

namespace tavrin {

// Whose rules a path follows.
enum class PathStyle {
    Posix,    // '/' separates; a path that begins with '/' is absolute
    Windows,  // '\' separates; only a leading '\' or a drive letter makes a path absolute
};

inline constexpr PathStyle kNativeStyle = PathStyle::Posix;

constexpr char Separator(PathStyle style) { return style == PathStyle::Posix ? '/' : '\\'; }

// Resolves a path named in a library file against the directory `base`. An empty path gives ".". Kept as
// they are: a path that begins with '.' or with the style's separator, "/" exactly, and one whose second
// character is ':'. Any other is joined to `base`. In the Windows style "/usr/x" is thus joined, since
// only a path equal to "/" is kept there. All separators of the result are the style's.
std::string ResolvePath(std::string_view path, std::string_view base, PathStyle style = kNativeStyle);

// Drive and directory with the trailing separator, as they stand; empty if the path names no directory.
std::string PathDir(std::string_view path);
// Name and extension: what follows the last separator.
std::string PathFile(std::string_view path);
// Name without extension; the extension begins at the last dot.
std::string PathBase(std::string_view path);

// `directory`, a separator unless it ends in one, and `name`.
std::string JoinPath(std::string_view directory, std::string_view name, PathStyle style = kNativeStyle);

// The path made absolute from the current directory, "." and ".." taken out as text, links not followed.
std::string FullPath(const std::string& path);

}  // namespace tavrin
