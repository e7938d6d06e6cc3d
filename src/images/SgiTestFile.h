// SPDX-License-Identifier: Apache-2.0
// Builds SGI files in memory for tests, sound ones and broken ones.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace tavrin::test {

using Rgba = std::array<uint8_t, 4>;

inline std::string BigEndianBytes(uint64_t value, int count) {
    std::string bytes;
    for (int shift = 8 * (count - 1); shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift & 0xFF);
    return bytes;
}

// A row's code from bytes given as numbers.
inline std::string Code(const std::vector<int>& bytes) {
    std::string text;
    for (const int byte : bytes) text += static_cast<char>(byte);
    return text;
}

// Runs of three and more are written as such, all else is copied; the closing 0 stands behind.
inline std::string EncodeRow(const std::vector<uint8_t>& values) {
    constexpr size_t kMaxCount = 127;
    const auto runAt = [&](size_t at) {
        size_t count = 1;
        while (at + count < values.size() && count < kMaxCount && values[at + count] == values[at]) ++count;
        return count;
    };
    std::string code;
    for (size_t at = 0; at < values.size();) {
        if (const size_t run = runAt(at); run >= 3) {
            code += Code({static_cast<int>(run), values[at]});
            at += run;
            continue;
        }
        const size_t begin = at;
        while (at < values.size() && at - begin < kMaxCount && runAt(at) < 3) ++at;
        code += static_cast<char>(0x80 | (at - begin));
        code.append(values.begin() + static_cast<std::ptrdiff_t>(begin),
                    values.begin() + static_cast<std::ptrdiff_t>(at));
    }
    return code + '\0';
}

// A file as its parts. Change a part, then ask for the bytes: nothing here minds whether they make sense.
struct SgiTestFile {
    int magic = 474;
    int storage = 1;
    int bytesPerChannel = 1;
    int dimension = 3;
    int width = 0;
    int height = 0;
    int channels = 0;
    std::vector<std::string> rows;  // encoded: all rows of channel 0, then those of channel 1, and so on

    // A picture whose pixels are all alike; only the first `channels` bytes of the colour are stored.
    static SgiTestFile Plain(int width, int height, int channels, const Rgba& colour) {
        return Picture(width, channels,
                       std::vector<Rgba>(static_cast<size_t>(width) * static_cast<size_t>(height), colour));
    }

    // The pixels row by row, the bottom row first.
    static SgiTestFile Picture(int width, int channels, const std::vector<Rgba>& pixels) {
        SgiTestFile file;
        file.width = width;
        file.height = static_cast<int>(pixels.size()) / width;
        file.channels = channels;
        for (size_t channel = 0; channel < static_cast<size_t>(channels); ++channel) {
            for (size_t begin = 0; begin < pixels.size(); begin += static_cast<size_t>(width)) {
                std::vector<uint8_t> row;
                for (size_t x = 0; x < static_cast<size_t>(width); ++x)
                    row.push_back(pixels[begin + x][channel]);
                file.rows.push_back(EncodeRow(row));
            }
        }
        return file;
    }

    std::string Header() const {
        std::string bytes = BigEndianBytes(static_cast<uint64_t>(magic), 2) +
                            Code({storage, bytesPerChannel}) +
                            BigEndianBytes(static_cast<uint64_t>(dimension), 2) +
                            BigEndianBytes(static_cast<uint16_t>(width), 2) +
                            BigEndianBytes(static_cast<uint16_t>(height), 2) +
                            BigEndianBytes(static_cast<uint64_t>(channels), 2);
        bytes.resize(kHeaderBytes, '\xEE');  // what the reader has no use for
        return bytes;
    }

    // The rows follow the tables in their order.
    std::string Bytes() const {
        std::string starts;
        std::string lengths;
        std::string data;
        for (const std::string& row : rows) {
            starts += BigEndianBytes(DataOffset() + data.size(), 4);
            lengths += BigEndianBytes(row.size(), 4);
            data += row;
        }
        return Header() + starts + lengths + data;
    }

    size_t DataOffset() const { return kHeaderBytes + 8 * rows.size(); }
    size_t StartOffset(size_t row) const { return kHeaderBytes + 4 * row; }
    size_t LengthOffset(size_t row) const { return kHeaderBytes + 4 * (rows.size() + row); }

    static constexpr size_t kHeaderBytes = 512;
};

// The bytes of a file with one table entry replaced.
inline std::string WithEntry(std::string bytes, size_t offset, uint64_t value) {
    return bytes.replace(offset, 4, BigEndianBytes(value, 4));
}

}  // namespace tavrin::test
