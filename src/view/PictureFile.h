// SPDX-License-Identifier: Apache-2.0
// A picture's file, read as it grows.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "base/FileDescriptor.h"
#include "view/Picture.h"

namespace tavrin {

// Reads one file in slices, so that nobody waits for a long one. Files of the kind that grow (PNG) are shown
// row by row as they come; others are read once they are whole. The file is kept open: it may be renamed or
// removed meanwhile. A file that is cut, is no picture, or grows without end becomes a trouble, with what was
// read of it. Main thread only.
class PictureFile {
  public:
    enum class State {
        kMissing,  // not there yet
        kGrowing,  // all that is there has been read, and more may come
        kReading,  // more is there already
        kWhole,
        kFailed,
    };

    // While a picture is being made, it grows in "PATH.part" where there is such a file.
    PictureFile(std::string path, bool mayGrow);
    ~PictureFile();
    PictureFile(const PictureFile&) = delete;
    PictureFile& operator=(const PictureFile&) = delete;

    const std::string& Path() const { return m_path; }
    // Reads on, for about that long at most.
    State Step(std::chrono::milliseconds most);
    // Nothing more comes: what is not whole by the end of the file is cut.
    void IsComplete() { m_mayGrow = false; }
    State Now() const { return m_state; }
    // Why it failed: a sentence with the file's path.
    const std::string& Trouble() const { return m_trouble; }

    // Null until its size is known. Of a file that failed, what could be read.
    const PicturePtr& Get() const { return m_picture; }

  private:
    class Png;
    enum class Kind { kUnknown, kPng, kOther };

    bool Open();
    bool WasReplaced() const;
    State ReadSlice(std::chrono::milliseconds most);
    State TakeBytes(const unsigned char* bytes, size_t count);
    State AtEnd();
    State ReadWhole();
    State Fail(const std::string& why);

    std::string m_path;
    bool m_mayGrow;
    State m_state = State::kReading;
    std::string m_trouble;
    FileDescriptor m_file;
    Kind m_kind = Kind::kUnknown;
    uint64_t m_read = 0;  // bytes
    PicturePtr m_picture;
    std::unique_ptr<Png> m_png;
};

}  // namespace tavrin
