// SPDX-License-Identifier: Apache-2.0
// Writing of PNG files.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tavrin::mray {

enum class PngEffort {
    Small,  // packed
    Quick   // as it is: for a picture that is looked at for a moment
};

// A picture that is written row by row.  It stands under another name until it is
// complete: whoever reads that meanwhile sees it grow, from the top.  Operations
// throw std::runtime_error, which tells the picture's name.
class PngFile {
  public:
    // Three bytes each for red, green and blue, sRGB.  part: its name while it
    // grows; a file of that name may be somebody's and is left alone (a failure).
    PngFile(const std::string& path, const std::string& part, int width, int height, PngEffort effort);
    // A picture that was not finished is removed.
    ~PngFile();
    PngFile(const PngFile&) = delete;
    PngFile& operator=(const PngFile&) = delete;

    // The next rows from the top; they stand in the file afterwards, but for the last few
    // kilobytes.
    void addRows(const std::uint8_t* pixels, int count);
    // Behind the last row: the picture gets its name.
    void finish();

  private:
    class Encoder;
    std::string path_, part_;
    std::unique_ptr<Encoder> encoder_;
};

// The name of a picture that grows, where nobody has another one for it.
std::string partName(const std::string& path);

// A whole picture in one go.
void writePng(const std::string& path, int width, int height, const std::vector<std::uint8_t>& pixels,
              PngEffort effort);

}  // namespace tavrin::mray
