// SPDX-License-Identifier: Apache-2.0
// The reader of pictures: icons of boxes and the wallpaper of the desk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace tavrin {

// A picture from an SGI file that is run-length encoded, with one byte per channel and three or four
// channels; no other kind is read. Owned by whoever asked for it. It is complete or empty: when anything is
// wrong with the file, `pixels` is null, both sizes are 0 and `message` is the warning. After the constructor
// only FlattenOver changes it.
//
// What a file can cost: the picture is allocated only when the tables of its rows have been read and each
// row lies inside the file. A file may name one row many times, so a small one may hold a large picture: at
// most kMaxPixels, which are 4 bytes each, and never more than 5462 bytes for each byte of the file. The time
// is bounded by ysize x channels rows of kMaxRowBytes.
class CSgiImage {
  public:
    // Larger pictures are refused: 64 Mi pixels, 256 MB, such as 8192 x 8192.
    static constexpr size_t kMaxPixels = size_t{1} << 26;
    // The most bytes that one channel of one row may take in the file.
    static constexpr size_t kMaxRowBytes = 4096;

    // Receives the warning of a failed read, for the log; may be empty.
    using LogFunction = std::function<void(const std::string&)>;

    // Reads the regular file at `path`; the caller tests `pixels` for null.
    CSgiImage(const std::string& path, const LogFunction& log);
    // With pixels of its own, so that one reading of an icon serves several colours.
    CSgiImage(const CSgiImage& other);
    CSgiImage& operator=(const CSgiImage&) = delete;
    virtual ~CSgiImage() = default;

    // Lays the picture over a colour, of which each channel is limited to 0 to 1. Alpha stays as it is. Does
    // nothing without pixels.
    void FlattenOver(float r, float g, float b);

    int32_t width = 0;   // pixels in a row; at least 1 in a picture that was read
    int32_t height = 0;  // rows; at least 1 in a picture that was read
    // width x height x 4 bytes: R, G, B, A. The first row is the bottom of the picture, as glDrawPixels
    // wants it. Where a row of the file ends early, the bytes that it leaves are 0.
    std::unique_ptr<uint8_t[]> pixels;
    std::string message;  // the warning of a failed read, else empty

  private:
    size_t ByteCount() const;
};

}  // namespace tavrin
