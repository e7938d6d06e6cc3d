// SPDX-License-Identifier: Apache-2.0
#include "images/SgiImage.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <new>
#include <span>
#include <vector>

#include "base/FileDescriptor.h"
#include "base/ReadLimit.h"

namespace tavrin {

namespace {

constexpr size_t kHeaderBytes = 512;
constexpr int kMagic = 474;
constexpr int kRunLengthEncoded = 1;
constexpr int kDimension = 3;
constexpr int kRgb = 3;
constexpr int kRgba = 4;
constexpr size_t kPixelBytes = 4;
constexpr uint8_t kOpaque = 255;

constexpr uint8_t kCountBits = 0x7F;
constexpr uint8_t kCopyBit = 0x80;

const char* const kCannotOpen = "unable to open file";
const char* const kBadHeader = "invalid header";
const char* const kBadMagic = "invalid magic number";
const char* const kNotCompressed = "expecting compressed data";
const char* const kNotBytes = "expecting byte-per-channel data";
const char* const kNotRgb = "expecting RGB or RGBA data";
const char* const kBadTables = "error reading row offset data";
const char* const kBadPixels = "error reading pixel data";
const char* const kTooLarge = "the file is larger than the setting maxfilesize allows";

uint32_t BigEndian(std::span<const uint8_t> bytes) {
    uint32_t value = 0;
    for (const uint8_t byte : bytes) value = value << 8 | byte;
    return value;
}

class SgiFile {
  public:
    bool Open(const std::string& path) {
        // Not blocking, so that opening a pipe without a writer does not wait for ever.
        m_file = FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
        struct stat status {};
        if (!m_file || ::fstat(m_file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
        m_size = static_cast<uint64_t>(status.st_size);
        return true;
    }

    bool IsTooLarge() const { return m_size > ReadLimit(); }

    bool Holds(uint64_t offset, uint64_t count) const { return offset <= m_size && count <= m_size - offset; }

    // Fills all of `bytes`, or fails.
    bool ReadAt(uint64_t offset, std::span<uint8_t> bytes) const {
        if (!Holds(offset, bytes.size())) return false;
        while (!bytes.empty()) {
            const ssize_t count =
                ::pread(m_file.Get(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) return false;
            offset += static_cast<uint64_t>(count);
            bytes = bytes.subspan(static_cast<size_t>(count));
        }
        return true;
    }

  private:
    FileDescriptor m_file;
    uint64_t m_size = 0;
};

// Decodes one channel of one row into every fourth byte from `first` on. False where the data ends before
// its closing 0, or tells more than `width` pixels.
bool DecodeRow(std::span<const uint8_t> data, uint8_t* first, size_t width) {
    size_t written = 0;
    for (size_t position = 0; position < data.size();) {
        const uint8_t code = data[position++];
        if (code == 0) return true;
        const size_t count = code & kCountBits;
        const bool copied = (code & kCopyBit) != 0;
        const size_t taken = copied ? count : 1;
        if (taken > data.size() - position || count > width - written) return false;
        for (size_t i = 0; i < count; ++i)
            first[(written + i) * kPixelBytes] = data[position + (copied ? i : 0)];
        position += taken;
        written += count;
    }
    return false;
}

// Reads one file. Each step leaves the reason of its failure, or null.
class SgiReader {
  public:
    const char* Read(const std::string& path) {
        if (!m_file.Open(path)) return kCannotOpen;
        if (m_file.IsTooLarge()) return kTooLarge;
        for (const auto step : {&SgiReader::ReadHeader, &SgiReader::ReadTables, &SgiReader::ReadRows}) {
            if (const char* reason = (this->*step)()) return reason;
        }
        return nullptr;
    }

    size_t Width() const { return static_cast<size_t>(m_xsize); }
    size_t Height() const { return static_cast<size_t>(m_ysize); }
    std::unique_ptr<uint8_t[]> TakePixels() { return std::move(m_pixels); }

  private:
    const char* ReadHeader() {
        std::array<uint8_t, kHeaderBytes> header;
        if (!m_file.ReadAt(0, header)) return kBadHeader;
        const auto field = [&](size_t offset, size_t size) {
            return static_cast<int>(BigEndian(std::span(header).subspan(offset, size)));
        };
        if (field(0, 2) != kMagic) return kBadMagic;
        if (field(2, 1) != kRunLengthEncoded) return kNotCompressed;
        if (field(3, 1) != 1) return kNotBytes;
        m_channels = static_cast<size_t>(field(10, 2));
        if (field(4, 2) != kDimension || (m_channels != kRgb && m_channels != kRgba)) return kNotRgb;
        m_xsize = static_cast<int16_t>(field(6, 2));
        m_ysize = static_cast<int16_t>(field(8, 2));
        return nullptr;
    }

    const char* ReadTables() {
        if (m_ysize < 1) return kBadTables;
        const size_t bytes = Height() * m_channels * sizeof(uint32_t);
        if (!m_file.Holds(kHeaderBytes, 2 * bytes)) return kBadTables;
        return ReadTable(kHeaderBytes, m_starts) && ReadTable(kHeaderBytes + bytes, m_lengths) ? nullptr
                                                                                               : kBadTables;
    }

    bool ReadTable(size_t offset, std::vector<uint32_t>& table) const {
        std::vector<uint8_t> bytes(Height() * m_channels * sizeof(uint32_t));
        if (!m_file.ReadAt(offset, bytes)) return false;
        table.reserve(Height() * m_channels);
        for (size_t at = 0; at < bytes.size(); at += sizeof(uint32_t))
            table.push_back(BigEndian(std::span(bytes).subspan(at, sizeof(uint32_t))));
        return true;
    }

    // All rows are looked at before the picture is allocated, so that no header's word alone costs memory.
    bool RowsFit() const {
        for (size_t i = 0; i < m_starts.size(); ++i) {
            if (m_lengths[i] == 0 || m_lengths[i] > CSgiImage::kMaxRowBytes) return false;
            if (!m_file.Holds(m_starts[i], m_lengths[i])) return false;
        }
        return true;
    }

    const char* ReadRows() {
        if (m_xsize < 1 || Width() > CSgiImage::kMaxPixels / Height() || !RowsFit()) return kBadPixels;
        m_pixels.reset(new (std::nothrow) uint8_t[Width() * Height() * kPixelBytes]());
        if (!m_pixels) return kBadPixels;
        for (size_t y = 0; y < Height(); ++y) {
            if (!ReadRow(y)) return kBadPixels;
        }
        return nullptr;
    }

    bool ReadRow(size_t y) {
        uint8_t* const row = &m_pixels[y * Width() * kPixelBytes];
        for (size_t channel = 0; channel < m_channels; ++channel) {
            const size_t entry = channel * Height() + y;
            const auto data = std::span(m_buffer).first(m_lengths[entry]);
            if (!m_file.ReadAt(m_starts[entry], data) || !DecodeRow(data, row + channel, Width()))
                return false;
        }
        if (m_channels == kRgb) {
            for (size_t x = 0; x < Width(); ++x) row[x * kPixelBytes + kRgb] = kOpaque;
        }
        return true;
    }

    SgiFile m_file;
    int m_xsize = 0;
    int m_ysize = 0;
    size_t m_channels = 0;
    std::vector<uint32_t> m_starts;   // where each row begins in the file, all rows of a channel together
    std::vector<uint32_t> m_lengths;  // how many bytes it takes there
    std::array<uint8_t, CSgiImage::kMaxRowBytes> m_buffer;
    std::unique_ptr<uint8_t[]> m_pixels;
};

uint8_t ColourByte(float value) {
    if (!(value > 0)) return 0;  // what is no number as well
    return static_cast<uint8_t>(std::min(value, 1.0F) * 255.999);
}

}  // namespace

CSgiImage::CSgiImage(const std::string& path, const LogFunction& log) {
    SgiReader reader;
    if (const char* reason = reader.Read(path)) {
        message = "WARNING: " + path + ": " + reason;
        if (log) log(message);
        return;
    }
    width = static_cast<int32_t>(reader.Width());
    height = static_cast<int32_t>(reader.Height());
    pixels = reader.TakePixels();
}

CSgiImage::CSgiImage(const CSgiImage& other)
    : width(other.width), height(other.height), message(other.message) {
    if (!other.pixels) return;
    pixels = std::make_unique_for_overwrite<uint8_t[]>(ByteCount());
    std::copy_n(other.pixels.get(), ByteCount(), pixels.get());
}

size_t CSgiImage::ByteCount() const {
    return static_cast<size_t>(width) * static_cast<size_t>(height) * kPixelBytes;
}

void CSgiImage::FlattenOver(float r, float g, float b) {
    if (!pixels) return;
    const std::array<uint8_t, 3> background = {ColourByte(r), ColourByte(g), ColourByte(b)};
    for (size_t at = 0; at < ByteCount(); at += kPixelBytes) {
        const uint8_t alpha = pixels[at + kRgb];
        if (alpha == kOpaque) continue;
        for (size_t i = 0; i < background.size(); ++i) {
            uint8_t& channel = pixels[at + i];
            // The shift would darken the background where nothing covers it.
            channel = alpha == 0
                          ? background[i]
                          : static_cast<uint8_t>((alpha * channel + (kOpaque - alpha) * background[i]) >> 8);
        }
    }
}

}  // namespace tavrin
