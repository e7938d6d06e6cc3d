// SPDX-License-Identifier: Apache-2.0
#include "PngFile.h"

#include <png.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace tavrin::mray {

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

[[noreturn]] void fail(const std::string& path, const std::string& why) {
    throw std::runtime_error("cannot write " + path + ": " + why);
}

[[noreturn]] void onPngError(png_structp png, png_const_charp message) {
    *static_cast<std::string*>(png_get_error_ptr(png)) = message;
    png_longjmp(png, 1);
}

void onPngWarning(png_structp, png_const_charp) {}

// Nothing in here has a destructor: the library leaves by a long jump.
bool encode(png_structp png, png_infop info, std::FILE* file, png_uint_32 width, png_uint_32 height,
            const std::uint8_t* pixels) {
    if (setjmp(png_jmpbuf(png)) != 0) {
        return false;
    }
    png_init_io(png, file);
    png_set_compression_level(png, 1);
    png_set_filter(png, 0, PNG_FILTER_SUB);
    png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
    png_write_info(png, info);
    for (png_uint_32 y = 0; y < height; ++y) {
        png_write_row(png, pixels + static_cast<std::size_t>(y) * width * 3);
    }
    png_write_end(png, nullptr);
    return true;
}

void writeTo(const std::string& path, std::FILE* file, int width, int height,
             const std::vector<std::uint8_t>& pixels) {
    std::string message = "out of memory";
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &message, onPngError, onPngWarning);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    const bool good = info != nullptr && encode(png, info, file, static_cast<png_uint_32>(width),
                                                static_cast<png_uint_32>(height), pixels.data());
    png_destroy_write_struct(&png, &info);
    if (!good) {
        fail(path, message);
    }
    if (std::fflush(file) != 0) {
        fail(path, std::strerror(errno));
    }
}

}  // namespace

void writePng(const std::string& path, int width, int height, const std::vector<std::uint8_t>& pixels) {
    const std::string aside = path + ".part" + std::to_string(getpid());
    // One that is there already may be somebody's link.
    std::unique_ptr<std::FILE, CloseFile> file(std::fopen(aside.c_str(), "wbx"));
    if (!file) {
        fail(path, std::strerror(errno));
    }
    try {
        writeTo(path, file.get(), width, height, pixels);
        if (std::fclose(file.release()) != 0 || std::rename(aside.c_str(), path.c_str()) != 0) {
            fail(path, std::strerror(errno));
        }
    } catch (...) {
        std::remove(aside.c_str());
        throw;
    }
}

}  // namespace tavrin::mray
