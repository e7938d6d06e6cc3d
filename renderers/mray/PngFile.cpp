// SPDX-License-Identifier: Apache-2.0
#include "PngFile.h"

#include <png.h>
#include <unistd.h>
#include <zlib.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace tavrin::mray {

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

[[noreturn]] void onPngError(png_structp png, png_const_charp message) {
    *static_cast<std::string*>(png_get_error_ptr(png)) = message;
    png_longjmp(png, 1);
}

void onPngWarning(png_structp, png_const_charp) {}

}  // namespace

// The library's part.  It leaves by a long jump, so nothing in these functions has a
// destructor; each returns whether it went well, and message() tells why not.
class PngFile::Encoder {
  public:
    explicit Encoder(std::FILE* file) : file_(file) {
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, &message_, onPngError, onPngWarning);
        info_ = png_ != nullptr ? png_create_info_struct(png_) : nullptr;
    }
    ~Encoder() { png_destroy_write_struct(&png_, &info_); }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    bool begin(int width, int height, PngEffort effort) {
        if (info_ == nullptr || setjmp(png_jmpbuf(png_)) != 0) {
            return false;
        }
        png_init_io(png_, file_.get());
        const bool quick = effort == PngEffort::Quick;
        png_set_compression_level(png_, quick ? Z_NO_COMPRESSION : Z_BEST_SPEED);
        png_set_filter(png_, 0, quick ? PNG_FILTER_NONE : PNG_FILTER_SUB);
        png_set_IHDR(png_, info_, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
                     PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                     PNG_FILTER_TYPE_DEFAULT);
        png_set_sRGB(png_, info_, PNG_sRGB_INTENT_PERCEPTUAL);
        png_write_info(png_, info_);
        stride_ = static_cast<std::size_t>(width) * 3;
        return true;
    }
    bool add(const std::uint8_t* pixels, int count, bool flush) {
        if (setjmp(png_jmpbuf(png_)) != 0) {
            return false;
        }
        for (int i = 0; i < count; ++i) {
            png_write_row(png_, pixels + static_cast<std::size_t>(i) * stride_);
        }
        if (flush) {
            png_write_flush(png_);
        }
        return true;
    }
    bool end() {
        if (setjmp(png_jmpbuf(png_)) != 0) {
            return false;
        }
        png_write_end(png_, nullptr);
        return true;
    }
    // False with the reason in errno.
    bool close() { return std::fflush(file_.get()) == 0 && std::fclose(file_.release()) == 0; }
    [[nodiscard]] const std::string& message() const { return message_; }

  private:
    std::unique_ptr<std::FILE, CloseFile> file_;
    std::string message_ = "out of memory";
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::size_t stride_ = 0;
};

namespace {

[[noreturn]] void fail(const std::string& path, const std::string& why) {
    throw std::runtime_error("cannot write " + path + ": " + why);
}

}  // namespace

PngFile::PngFile(const std::string& path, const std::string& part, int width, int height, PngEffort effort)
    : path_(path), part_(part) {
    std::FILE* file = std::fopen(part.c_str(), "wbx");
    if (file == nullptr) {
        fail(path, std::strerror(errno));
    }
    encoder_ = std::make_unique<Encoder>(file);
    if (!encoder_->begin(width, height, effort)) {
        const std::string why = encoder_->message();
        std::remove(part_.c_str());
        fail(path, why);
    }
}

PngFile::~PngFile() {
    if (encoder_) {
        std::remove(part_.c_str());
    }
}

void PngFile::addRows(const std::uint8_t* pixels, int count) {
    if (!encoder_->add(pixels, count, true)) {
        fail(path_, encoder_->message());
    }
}

void PngFile::finish() {
    if (!encoder_->end()) {
        fail(path_, encoder_->message());
    }
    if (!encoder_->close() || std::rename(part_.c_str(), path_.c_str()) != 0) {
        fail(path_, std::strerror(errno));
    }
    encoder_.reset();
}

std::string partName(const std::string& path) { return path + ".part" + std::to_string(getpid()); }

void writePng(const std::string& path, int width, int height, const std::vector<std::uint8_t>& pixels,
              PngEffort effort) {
    PngFile file(path, partName(path), width, height, effort);
    file.addRows(pixels.data(), height);
    file.finish();
}

}  // namespace tavrin::mray
