// SPDX-License-Identifier: Apache-2.0
// The boxes that the log's text names: a click on a name goes to the box.
#pragma once

#include <QRectF>
#include <QString>
#include <QTextBlock>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class QPainter;

namespace tavrin {

// Owned by the text of the log, which asks it about what is in view and nothing else: a log of any length
// costs what its window shows. A name counts while its box stands; nothing of the text is changed.
class LogLinks {
  public:
    struct Needs {
        std::function<bool(const std::string& box)> stands;  // by title and number, such as "Noise_3"
        std::function<void(const std::string& box)> goTo;
    };
    explicit LogLinks(Needs needs) : m_needs(std::move(needs)) {}

    static constexpr int kMostWords = 6;  // of a name

    struct Link {
        int start = 0;  // in the row
        int length = 0;
        std::string box;
    };
    // In the order of the row.
    std::vector<Link> In(const QString& row) const;
    std::optional<Link> At(const QString& row, int position) const;

    // Underlines the links of a row of the text whose layout begins at `origin`.
    void Paint(QPainter& painter, const QTextBlock& row, QPointF origin) const;

    void GoTo(const Link& link) const { m_needs.goTo(link.box); }

  private:
    std::optional<Link> EndingAt(const QString& row, qsizetype end) const;

    Needs m_needs;
};

}  // namespace tavrin
