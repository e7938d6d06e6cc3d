// SPDX-License-Identifier: Apache-2.0
#include "view/PictureFile.h"

#include <fcntl.h>
#include <png.h>
#include <sys/stat.h>

#include <QFile>
#include <QImageReader>
#include <algorithm>
#include <cerrno>
#include <csetjmp>
#include <cstring>

#include "base/Files.h"
#include "base/Paths.h"

namespace tavrin {

namespace {

constexpr size_t kPiece = 64 << 10;    // bytes read at once
constexpr size_t kSignature = 8;       // bytes by which a PNG is known
constexpr uint64_t kSlack = 64 << 20;  // bytes that a file may hold beside its pixels

}  // namespace

// The library's reader of what comes piece by piece. Its errors jump: what is between the two ends of a jump
// holds nothing that would have to go.
class PictureFile::Png {
  public:
    explicit Png(PicturePtr& picture) : m_picture(picture) {
        m_png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning);
        m_info = png_create_info_struct(m_png);
        // What claims a size that is not shown is to be told, and not to be an error of the library's.
        png_set_user_limits(m_png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
        png_set_progressive_read_fn(m_png, this, OnInfo, OnRow, OnEnd);
    }
    ~Png() { png_destroy_read_struct(&m_png, &m_info, nullptr); }
    Png(const Png&) = delete;
    Png& operator=(const Png&) = delete;

    // False once something is wrong.
    bool Take(const unsigned char* bytes, size_t count) {
        if (setjmp(png_jmpbuf(m_png))) return false;
        png_process_data(m_png, m_info, const_cast<png_bytep>(bytes), count);
        return m_trouble[0] == '\0';
    }
    // What has been read since is seen.
    void Tell() {
        if (m_picture == nullptr || m_rows == m_told) return;
        const bool isInterlaced = m_passes > 1;
        m_picture->RowsAreThere(isInterlaced ? m_picture->Size().height() : m_rows, isInterlaced);
        m_told = m_rows;
    }
    bool IsAtEnd() const { return m_isAtEnd; }
    std::string Trouble() const { return m_trouble; }

  private:
    static Png& Of(png_structp png) { return *static_cast<Png*>(png_get_progressive_ptr(png)); }
    static void OnError(png_structp png, png_const_charp text) {
        static_cast<Png*>(png_get_error_ptr(png))->Note(text);
        png_longjmp(png, 1);
    }
    static void OnWarning(png_structp, png_const_charp) {}
    static void OnInfo(png_structp png, png_infop) { Of(png).Begin(); }
    static void OnRow(png_structp png, png_bytep row, png_uint_32 y, int) {
        Png& self = Of(png);
        if (row == nullptr || self.m_picture == nullptr) return;
        png_progressive_combine_row(png, reinterpret_cast<png_bytep>(self.m_picture->Row(int(y))), row);
        // Of one that comes in passes all rows change again and again.
        self.m_rows = self.m_passes > 1 ? self.m_rows + 1 : int(y) + 1;
    }
    static void OnEnd(png_structp png, png_infop) { Of(png).m_isAtEnd = true; }

    void Note(const char* text) { std::snprintf(m_trouble, sizeof m_trouble, "%s", text); }
    void Begin() {
        const png_uint_32 width = png_get_image_width(m_png, m_info);
        const png_uint_32 height = png_get_image_height(m_png, m_info);
        if (!MakePicture(width, height)) png_longjmp(m_png, 1);
        png_set_expand(m_png);
        png_set_scale_16(m_png);
        png_set_gray_to_rgb(m_png);
        png_set_bgr(m_png);
        png_set_filler(m_png, 0xff, PNG_FILLER_AFTER);
        m_passes = png_set_interlace_handling(m_png);
        png_start_read_image(m_png);
    }
    bool MakePicture(png_uint_32 width, png_uint_32 height) {
        const std::string trouble = Picture::TroubleWithSize(width, height);
        if (!trouble.empty()) {
            Note(trouble.c_str());
            return false;
        }
        const bool hasAlpha = (png_get_color_type(m_png, m_info) & PNG_COLOR_MASK_ALPHA) != 0 ||
                              png_get_valid(m_png, m_info, PNG_INFO_tRNS) != 0;
        m_picture = std::make_shared<Picture>(QSize(int(width), int(height)), hasAlpha);
        if (png_get_interlace_type(m_png, m_info) != PNG_INTERLACE_NONE)
            std::fill_n(m_picture->Row(0), size_t(width) * height, hasAlpha ? 0 : 0xff000000);
        return true;
    }

    PicturePtr& m_picture;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
    int m_passes = 1;
    int m_rows = 0;
    int m_told = 0;
    bool m_isAtEnd = false;
    char m_trouble[256] = "";
};

PictureFile::PictureFile(std::string path, bool mayGrow) : m_path(std::move(path)), m_mayGrow(mayGrow) {}

PictureFile::~PictureFile() = default;

bool PictureFile::Open() {
    constexpr int kHow = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;  // a pipe is not waited for
    m_file = FileDescriptor(::open(m_path.c_str(), kHow));
    if (!m_file && errno == ENOENT && m_mayGrow)
        m_file = FileDescriptor(::open((m_path + ".part").c_str(), kHow));
    return static_cast<bool>(m_file);
}

// Another file has come to the place, or this one was begun anew.
bool PictureFile::WasReplaced() const {
    struct stat open = {};
    struct stat there = {};
    if (::fstat(m_file.Get(), &open) != 0 || uint64_t(open.st_size) < m_read) return true;
    if (::stat(m_path.c_str(), &there) != 0) return false;
    return there.st_ino != open.st_ino || there.st_dev != open.st_dev;
}

PictureFile::State PictureFile::Step(std::chrono::milliseconds most) {
    if (m_state == State::kWhole || m_state == State::kFailed) return m_state;
    if (m_file && m_state == State::kGrowing && WasReplaced()) {
        m_png.reset();
        m_file.Close();
        m_kind = Kind::kUnknown;
        m_read = 0;
    }
    // With its directory goes whoever would go on with it.
    if (m_mayGrow && m_state != State::kReading && !IsDirectory(PathDir(m_path))) m_mayGrow = false;
    if (!m_file && !Open()) {
        if (m_mayGrow && errno == ENOENT) return m_state = State::kMissing;
        return Fail(std::strerror(errno));
    }
    struct stat status = {};
    if (::fstat(m_file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return Fail("it is no file");
    m_state = ReadSlice(most);
    if (m_state == State::kWhole) {
        m_png.reset();
        m_file.Close();
    }
    return m_state;
}

PictureFile::State PictureFile::ReadSlice(std::chrono::milliseconds most) {
    const auto end = std::chrono::steady_clock::now() + most;
    unsigned char piece[kPiece];
    for (;;) {
        const ssize_t count = ::read(m_file.Get(), piece, sizeof piece);
        if (count < 0) return Fail(std::strerror(errno));
        const State state = count == 0 ? AtEnd() : TakeBytes(piece, size_t(count));
        if (state == State::kReading && std::chrono::steady_clock::now() < end) continue;
        if (m_png != nullptr) m_png->Tell();
        return state;
    }
}

PictureFile::State PictureFile::TakeBytes(const unsigned char* bytes, size_t count) {
    if (m_kind == Kind::kUnknown) {
        if (count < kSignature && m_mayGrow) {
            ::lseek(m_file.Get(), 0, SEEK_SET);
            return State::kGrowing;
        }
        const bool isPng = count >= kSignature && png_sig_cmp(bytes, 0, kSignature) == 0;
        m_kind = isPng ? Kind::kPng : Kind::kOther;
        if (isPng) m_png = std::make_unique<Png>(m_picture);
    }
    m_read += count;
    if (m_kind == Kind::kOther) return m_mayGrow ? State::kReading : ReadWhole();
    if (!m_png->Take(bytes, count)) return Fail(m_png->Trouble());
    if (m_png->IsAtEnd()) return State::kWhole;
    const uint64_t most = (m_picture == nullptr ? 0 : m_picture->Bytes() * 2) + kSlack;
    return m_read > most ? Fail("the file grows without an end") : State::kReading;
}

PictureFile::State PictureFile::AtEnd() {
    if (m_mayGrow) return State::kGrowing;
    if (m_kind == Kind::kOther) return ReadWhole();
    return Fail(m_read == 0 ? "the file is empty" : "the file is cut");
}

PictureFile::State PictureFile::ReadWhole() {
    QFile file;
    ::lseek(m_file.Get(), 0, SEEK_SET);
    file.open(m_file.Get(), QIODevice::ReadOnly);
    QImageReader reader(&file);
    reader.setAutoTransform(true);
    reader.setAllocationLimit(int(Picture::kMostPixels * 4 >> 20));
    if (!reader.canRead()) return Fail("it is no picture that can be shown");
    const QSize size = reader.size();
    const std::string trouble = size.isValid() ? Picture::TroubleWithSize(size.width(), size.height()) : "";
    if (!trouble.empty()) return Fail(trouble);
    const QImage image = reader.read();
    if (image.isNull()) return Fail(reader.errorString().toStdString());
    const std::string tooLarge = Picture::TroubleWithSize(image.width(), image.height());
    if (!tooLarge.empty()) return Fail(tooLarge);
    m_picture = std::make_shared<Picture>(image);
    return m_state = State::kWhole;
}

PictureFile::State PictureFile::Fail(const std::string& why) {
    if (m_png != nullptr) m_png->Tell();
    m_trouble = "cannot show " + m_path + ": " + why;
    m_png.reset();
    m_file.Close();
    return m_state = State::kFailed;
}

}  // namespace tavrin
