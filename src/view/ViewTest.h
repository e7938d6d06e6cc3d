// SPDX-License-Identifier: Apache-2.0
// Pictures that tests make, and what is seen of them.
#pragma once

#include <gtest/gtest.h>

#include <QBuffer>
#include <QImage>
#include <fstream>
#include <random>
#include <string>

#include "support/TestSite.h"
#include "view/Picture.h"

namespace tavrin::test {

// Every pixel is another one: red tells the column, green the row.
inline QImage Chart(int width, int height, int blue = 0) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) image.setPixel(x, y, qRgb(x % 256, y % 256, blue));
    return image;
}

// Hardly to be compressed: half of its file has about half of its rows.
inline QImage Noise(int width, int height, unsigned seed = 1, bool hasAlpha = false) {
    std::mt19937 random(seed);
    QImage image(width, height, hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, static_cast<QRgb>(random()) | (hasAlpha ? 0 : 0xff000000));
    return image;
}

inline QImage Plain(int width, int height, QRgb colour) {
    QImage image(width, height, qAlpha(colour) == 255 ? QImage::Format_RGB32 : QImage::Format_ARGB32);
    image.fill(colour);
    return image;
}

inline PicturePtr Pictured(const QImage& image) { return std::make_shared<Picture>(image); }

inline std::string Encoded(const QImage& image, const char* format = "PNG") {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format));
    return bytes.toStdString();
}

inline void Append(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::app) << bytes;
}

// A PNG that claims a size and holds no pixels.
inline std::string ClaimedPng(uint32_t width, uint32_t height) {
    std::string png("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR", 16);
    const auto add = [&png](uint32_t number) {
        for (int shift = 24; shift >= 0; shift -= 8) png += static_cast<char>(number >> shift);
    };
    add(width);
    add(height);
    png += std::string("\x08\x02\0\0\0", 5);
    uint32_t crc = 0xffffffff;
    for (size_t at = 12; at < png.size(); ++at) {
        crc ^= static_cast<unsigned char>(png[at]);
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (0xedb88320 & (0 - (crc & 1)));
    }
    add(crc ^ 0xffffffff);
    return png;
}

}  // namespace tavrin::test
