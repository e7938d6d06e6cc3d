// SPDX-License-Identifier: Apache-2.0
#include "Profile.h"

#include <array>

namespace tavrin::mray {

namespace {

constexpr int kPerSpan = 6;

// Where the curve passes: foot, belly, neck, lip and the inside.
constexpr std::array<Vec2, 17> kThrough{{{0.0f, -0.985f},
                                         {0.20f, -0.985f},
                                         {0.33f, -0.995f},
                                         {0.37f, -0.965f},
                                         {0.40f, -0.85f},
                                         {0.58f, -0.45f},
                                         {0.66f, -0.08f},
                                         {0.55f, 0.30f},
                                         {0.31f, 0.60f},
                                         {0.28f, 0.78f},
                                         {0.39f, 0.97f},
                                         {0.385f, 0.995f},
                                         {0.35f, 0.97f},
                                         {0.235f, 0.78f},
                                         {0.26f, 0.60f},
                                         {0.50f, 0.28f},
                                         {0.0f, -0.05f}}};

constexpr float kWide = 2.0f;  // reach of the table
constexpr float kTall = 2.0f;

Vec2 curve(Vec2 a, Vec2 b, Vec2 c, Vec2 d, float t) {
    const Vec2 linear = (c - a) * 0.5f;
    const Vec2 square = a - b * 2.5f + c * 2.0f - d * 0.5f;
    const Vec2 cubic = (b - c) * 1.5f + (d - a) * 0.5f;
    return b + (linear + (square + cubic * t) * t) * t;
}

}  // namespace

Profile::Profile() {
    const int last = static_cast<int>(kThrough.size()) - 1;
    const auto through = [&](int i) { return kThrough[static_cast<std::size_t>(std::clamp(i, 0, last))]; };
    for (int i = 0; i < last; ++i) {
        for (int k = 0; k < kPerSpan; ++k) {
            const float t = static_cast<float>(k) / kPerSpan;
            Vec2 p = curve(through(i - 1), through(i), through(i + 1), through(i + 2), t);
            p.x = std::max(p.x, 0.0f);
            outline_.push_back(p);
        }
    }
    outline_.push_back(through(last));
    for (int y = 0; y < kRows; ++y) {
        for (int x = 0; x < kColumns; ++x) {
            table_.push_back(exactDistance({kWide * static_cast<float>(x) / (kColumns - 1),
                                            kTall * (2 * static_cast<float>(y) / (kRows - 1) - 1)}));
        }
    }
}

float Profile::exactDistance(Vec2 p) const {
    float nearest = 1e9f;
    bool inside = false;
    for (std::size_t i = 0; i < outline_.size(); ++i) {
        const Vec2 a = outline_[i];
        const Vec2 b = outline_[(i + 1) % outline_.size()];
        if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) {
            inside = !inside;
        }
        if (i + 1 == outline_.size()) {
            break;  // the closing piece lies on the axis and is no surface
        }
        const Vec2 edge = b - a;
        const Vec2 from = p - a;
        const float t = std::clamp(dot(from, edge) / std::max(dot(edge, edge), 1e-9f), 0.0f, 1.0f);
        const Vec2 off = from - edge * t;
        nearest = std::min(nearest, dot(off, off));
    }
    return inside ? -std::sqrt(nearest) : std::sqrt(nearest);
}

float Profile::distance(Vec2 p) const {
    const float x = std::clamp(p.x / kWide, 0.0f, 0.9999f) * (kColumns - 1);
    const float y = std::clamp(p.y / kTall * 0.5f + 0.5f, 0.0f, 0.9999f) * (kRows - 1);
    const int column = static_cast<int>(x);
    const int row = static_cast<int>(y);
    const float fx = x - static_cast<float>(column);
    const float fy = y - static_cast<float>(row);
    const float* cell = &table_[static_cast<std::size_t>(row * kColumns + column)];
    return mix(mix(cell[0], cell[1], fx), mix(cell[kColumns], cell[kColumns + 1], fx), fy);
}

std::vector<Profile::Point> Profile::points(int count) const {
    std::vector<float> along{0};
    for (std::size_t i = 1; i < outline_.size(); ++i) {
        along.push_back(along.back() + length(outline_[i] - outline_[i - 1]));
    }
    std::vector<Point> result;
    const auto last = outline_.size() - 1;
    for (int i = 0; i <= count; ++i) {
        const float at = static_cast<float>(last) * static_cast<float>(i) / static_cast<float>(count);
        const auto k = std::min(static_cast<std::size_t>(at), last - 1);
        const float t = at - static_cast<float>(k);
        const Vec2 before = outline_[k == 0 ? 0 : k - 1];
        const Vec2 after = outline_[std::min(k + 2, last)];
        const Vec2 slopeA = outline_[k + 1] - before;
        const Vec2 slopeB = after - outline_[k];
        const Vec2 slope = slopeA * (1 - t) + slopeB * t;
        const float size = std::max(length(slope), 1e-9f);
        result.push_back({outline_[k] * (1 - t) + outline_[k + 1] * t,
                          {slope.y / size, -slope.x / size},
                          mix(along[k], along[k + 1], t) / along.back()});
    }
    return result;
}

}  // namespace tavrin::mray
