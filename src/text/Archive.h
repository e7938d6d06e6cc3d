// SPDX-License-Identifier: Apache-2.0
// The reader behind every text format.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

// A file held in memory with a reading position. Owned by the parser that opened it; readers take it by
// reference. Files are read whole when opened, so that a parser pays for no system call per token and the
// line number of an error is found without reading the file again.
class CArchive {
  public:
    // Opens a regular file. On failure nothing is returned and `error` holds the platform's message.
    static std::optional<CArchive> Open(const std::string& path, std::string& error);

    // Reads from memory; `path` is what messages will name.
    static CArchive FromText(std::string path, std::string text);

    // The next byte as an unsigned char's value, or -1 at the end of the file.
    int ReadByte() {
        return m_position < m_text.size() ? static_cast<unsigned char>(m_text[m_position++]) : -1;
    }
    int PeekByte() const {
        return m_position < m_text.size() ? static_cast<unsigned char>(m_text[m_position]) : -1;
    }

    // Reads up to and past the next line feed. `line` is without its line end (LF or CR LF) and stays
    // valid as long as the archive. False at the end of the file.
    bool ReadLine(std::string_view& line);

    // Passes over what is left of the current line; its line feed stays unread.
    void SkipToLineEnd();

    void Rewind() { m_position = 0; }

    const std::string& Path() const { return m_path; }

    // The number of the line that the position is in, counted from 1.
    int LineNumber() const { return LineAt(m_position); }
    // The same for any place of the text.
    int LineAt(size_t position) const;

    // What parse errors add about a line, behind their message; an empty function adds nothing.
    void SetRemark(std::function<std::string(int line)> remark) { m_remark = std::move(remark); }
    std::string RemarkOn(int line) const { return m_remark ? m_remark(line) : std::string(); }

    // Ends the text at a place that is not yet read, and hands out what stood behind.
    std::string CutOff(size_t position);

    std::string_view Text() const { return m_text; }
    size_t Position() const { return m_position; }

    // What is left to read, and passing over part of it: for scanners that work on whole runs of bytes.
    std::string_view Rest() const { return std::string_view(m_text).substr(m_position); }
    void Skip(size_t count) { m_position += count; }

  private:
    std::string m_path;
    std::string m_text;
    size_t m_position = 0;
    std::function<std::string(int)> m_remark;
    // How far lines have been counted: a text in which many places are asked for, each behind the one before,
    // is gone through once, not once for each.
    mutable size_t m_countedTo = 0;
    mutable int m_lineFeeds = 0;
};

}  // namespace tavrin
