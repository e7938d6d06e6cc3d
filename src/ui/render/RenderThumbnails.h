// SPDX-License-Identifier: Apache-2.0
// Pictures of renders in small, and others that are files.
#pragma once

#include <QImage>
#include <QObject>
#include <QThreadPool>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>

namespace tavrin {

// A child of the view that shows them. Each file is read once, on a thread, and looked at again when Refresh
// says so. What is no picture, is cut or has gone, or is beyond the bounds, has none, without a word. Main
// thread only.
class RenderThumbnails : public QObject {
  public:
    // The place that a picture is fitted into if nothing else is said, in device-independent pixels.
    static constexpr QSize kSize{60, 45};
    static constexpr int64_t kMostBytes = 256LL << 20;  // of a file
    static constexpr int64_t kMostPixels = 64LL << 20;  // that have to be decoded

    // `arrived` is called when a picture can be shown that could not be before.
    RenderThumbnails(QObject* view, std::function<void()> arrived, QSize size = kSize);
    // Waits for the picture that is being read.
    ~RenderThumbnails() override;

    // The picture of a file, for a screen of that device pixel ratio; null while there is none.
    QImage Of(const std::string& path, qreal ratio);
    // Forgets those of other files, and of these the ones that are not what was read.
    void Refresh(const std::set<std::string>& paths);

  private:
    // Of a file; all 0 for none.
    struct Stamp {
        uint64_t device = 0;
        uint64_t node = 0;
        int64_t size = 0;
        int64_t changed = 0;  // nanoseconds

        bool operator==(const Stamp&) const = default;
    };
    struct Known {
        Stamp stamp;
        qreal ratio = 1;
        bool isRead = false;
        QImage image;
    };

    static Stamp StampOf(const std::string& path);
    static Known Read(const std::string& path, QSize size, qreal ratio);
    void Arrive(const std::string& path, const Known& read);

    std::function<void()> m_arrived;
    const QSize m_size;
    std::map<std::string, Known> m_known;
    QThreadPool m_pool;
};

}  // namespace tavrin
