// SPDX-License-Identifier: Apache-2.0
#include "ui/support/Pictures.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <cstdlib>

#include "base/Paths.h"
#include "support/TestSite.h"
#include "ui/base/Text.h"

namespace tavrin::test {

namespace {

constexpr const char* kEnding = ".png";

bool IsApart(QRgb one, QRgb other, int channel) {
    const auto apart = [channel](int a, int b) { return std::abs(a - b) > channel; };
    return apart(qRed(one), qRed(other)) || apart(qGreen(one), qGreen(other)) ||
           apart(qBlue(one), qBlue(other));
}

QImage WithoutAlpha(const QImage& picture) {
    QImage plain = picture.convertToFormat(QImage::Format_RGB32);
    plain.setDevicePixelRatio(1);
    return plain;
}

std::string SizeText(const QImage& picture) {
    return std::to_string(picture.width()) + " x " + std::to_string(picture.height());
}

// Calls `visit(x, y)` for each pixel that both have and that differs.
template <typename Visit>
void ForEachDifference(const QImage& one, const QImage& other, int channel, Visit visit) {
    const QSize common = one.size().boundedTo(other.size());
    for (int y = 0; y < common.height(); ++y) {
        for (int x = 0; x < common.width(); ++x) {
            if (IsApart(one.pixel(x, y), other.pixel(x, y), channel)) visit(x, y);
        }
    }
}

}  // namespace

int CountDifferences(const QImage& one, const QImage& other, int channel) {
    const auto area = [](const QImage& picture) { return picture.width() * picture.height(); };
    if (one.size() != other.size()) return std::max(area(one), area(other));
    int count = 0;
    ForEachDifference(one, other, channel, [&](int, int) { ++count; });
    return count;
}

QImage DifferencePicture(const QImage& one, const QImage& other, int channel) {
    QImage picture = WithoutAlpha(one);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const int faint = 192 + qGray(picture.pixel(x, y)) / 4;
            picture.setPixel(x, y, qRgb(faint, faint, faint));
        }
    }
    ForEachDifference(one, other, channel, [&](int x, int y) { picture.setPixel(x, y, qRgb(255, 0, 0)); });
    return picture;
}

std::string PictureShelf::Written(const QImage& picture, const std::string& name) const {
    const std::string path = JoinPath(m_results, name + kEnding);
    QDir().mkpath(QFileInfo(Shown(path)).path());
    return picture.save(Shown(path)) ? path : "(cannot be written: " + path + ")";
}

std::string PictureShelf::Compare(const QImage& picture, const std::string& name, const std::string& way,
                                  PictureTolerance tolerance) const {
    const QImage seen = WithoutAlpha(picture);
    const std::string path = JoinPath(m_references, name + kEnding);
    if (m_update) {
        QDir().mkpath(Shown(m_references));
        return seen.save(Shown(path)) ? std::string() : "cannot write " + path;
    }
    const QImage reference(Shown(path));
    const std::string result = name + "." + way;
    if (reference.isNull()) return "no reference " + path + "\n  seen: " + Written(seen, result);
    const int count = CountDifferences(seen, reference, tolerance.channel);
    if (count <= tolerance.pixels) return {};
    const std::string sizes = seen.size() == reference.size()
                                  ? ""
                                  : "\n  sizes: " + SizeText(seen) + ", not " + SizeText(reference);
    return std::to_string(count) + " pixels differ from the reference" + sizes + "\n  reference: " + path +
           "\n  seen: " + Written(seen, result) + "\n  difference: " +
           Written(DifferencePicture(seen, reference, tolerance.channel), result + ".difference");
}

std::vector<std::string> PictureShelf::References() const {
    std::vector<std::string> names;
    const QDir folder(Shown(m_references));
    for (const QString& file : folder.entryList({"*.png"}, QDir::Files, QDir::Name)) {
        names.push_back(Bytes(file.chopped(4)));
    }
    return names;
}

PictureShelf DeskPictureShelf() {
    return {SourcePath("tests/pictures/reference"), BuildPath("pictures"),
            std::getenv("TAVRIN_UPDATE_PICTURES") != nullptr};
}

}  // namespace tavrin::test
