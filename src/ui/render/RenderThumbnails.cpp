// SPDX-License-Identifier: Apache-2.0
#include "ui/render/RenderThumbnails.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <QFile>
#include <QImageReader>
#include <QLoggingCategory>
#include <QMetaObject>
#include <cmath>

#include "base/FileDescriptor.h"

namespace tavrin {

namespace {

constexpr int64_t kNanoseconds = 1'000'000'000;

// Fitted into `most`, or null. The file has been found to be a regular one of a size within the bounds.
QImage ReadFitted(QFile& file, QSize most) {
    QImageReader reader(&file);
    reader.setDecideFormatFromContent(true);
    const QSize size = reader.size();
    if (size.isEmpty() || int64_t{size.width()} * size.height() > RenderThumbnails::kMostPixels) return {};
    reader.setScaledSize(size.scaled(most, Qt::KeepAspectRatio).expandedTo({1, 1}));
    return reader.read();
}

}  // namespace

RenderThumbnails::RenderThumbnails(QObject* view, std::function<void()> arrived, QSize size)
    : QObject(view), m_arrived(std::move(arrived)), m_size(size) {
    // What a reader says of a file that is cut is no news: the file may still be growing.
    QLoggingCategory::setFilterRules("qt.gui.imageio*=false");
    m_pool.setMaxThreadCount(1);
}

RenderThumbnails::~RenderThumbnails() {
    m_pool.clear();
    m_pool.waitForDone();
}

QImage RenderThumbnails::Of(const std::string& path, qreal ratio) {
    if (path.empty()) return {};
    const auto [known, isNew] = m_known.try_emplace(path);
    if (!isNew && (!known->second.isRead || known->second.ratio == ratio)) return known->second.image;
    known->second.isRead = false;
    m_pool.start([this, path, size = m_size, ratio] {
        Known read = Read(path, size, ratio);
        QMetaObject::invokeMethod(
            this, [this, path, read = std::move(read)] { Arrive(path, read); }, Qt::QueuedConnection);
    });
    return known->second.image;
}

void RenderThumbnails::Refresh(const std::set<std::string>& paths) {
    std::erase_if(m_known, [&](const auto& entry) {
        if (!paths.contains(entry.first)) return true;
        return entry.second.isRead && StampOf(entry.first) != entry.second.stamp;
    });
}

void RenderThumbnails::Arrive(const std::string& path, const Known& read) {
    const auto known = m_known.find(path);
    if (known == m_known.end()) return;
    known->second = read;
    if (!read.image.isNull()) m_arrived();
}

RenderThumbnails::Stamp RenderThumbnails::StampOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return {};
    return {status.st_dev, status.st_ino, status.st_size,
            status.st_mtim.tv_sec * kNanoseconds + status.st_mtim.tv_nsec};
}

// On the thread of the pool.
RenderThumbnails::Known RenderThumbnails::Read(const std::string& path, QSize size, qreal ratio) {
    Known read;
    read.isRead = true;
    read.ratio = ratio;
    read.stamp = StampOf(path);
    // Nobody waits for the other end of a pipe.
    FileDescriptor descriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!descriptor || ::fstat(descriptor.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return read;
    QFile file;
    if (status.st_size > kMostBytes || !file.open(descriptor.Get(), QIODevice::ReadOnly)) return read;
    read.image = ReadFitted(file, (QSizeF(size) * ratio).toSize());
    read.image.setDevicePixelRatio(ratio);
    return read;
}

}  // namespace tavrin
