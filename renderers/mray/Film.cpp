// SPDX-License-Identifier: Apache-2.0
#include "Film.h"

#include <bit>
#include <cstring>

namespace tavrin::mray {

namespace {

// A curve like film: straight in the dark and middle tones, bending softly
// towards white.
float tone(float x) {
    constexpr float kStraight = 0.50f;
    constexpr float kRest = 1 - kStraight;
    return x <= kStraight ? x : kStraight + kRest * (1 - std::exp(-(x - kStraight) / (kRest * 1.15f)));
}

float encodeSrgb(float x) { return x <= 0.0031308f ? 12.92f * x : 1.055f * std::pow(x, 1 / 2.4f) - 0.055f; }

// The curve is tabulated over the upper bits of the number itself: finely where
// it is dark, coarsely where it is bright.
constexpr int kShift = 14;
constexpr float kDarkest = 1.0f / 8192;
constexpr float kBrightest = 64.0f;

std::uint32_t bits(float x) { return std::bit_cast<std::uint32_t>(x) >> kShift; }

std::vector<std::uint16_t> makeCurve() {
    std::vector<std::uint16_t> curve;
    for (std::uint32_t i = bits(kDarkest); i <= bits(kBrightest); ++i) {
        const float x = std::bit_cast<float>((i << kShift) + (1U << (kShift - 1)));
        curve.push_back(static_cast<std::uint16_t>(255 * 255 * encodeSrgb(tone(x))));
    }
    curve.front() = static_cast<std::uint16_t>(255 * 255 * 12.92f * kDarkest * 0.5f);
    return curve;
}

// Weights of the samples of one pixel and half of those beside it, by a bell
// that is narrow enough to keep the picture crisp.
std::vector<float> makeWeights(int count) {
    constexpr float kSpread = 0.42f;
    std::vector<float> weights;
    for (int i = -count; i < 2 * count; ++i) {
        const float off = (static_cast<float>(i) + 0.5f) / static_cast<float>(count) - 0.5f;
        weights.push_back(std::fabs(off) > 1.001f ? 0.0f : std::exp(-off * off / (2 * kSpread * kSpread)));
    }
    if (count == 1) {
        return {0, 1, 0};
    }
    return weights;
}

// Evenly spread numbers -0.5..0.5 that show no pattern to the eye.
float dither(int x, int y) {
    const float a = 0.06711056f * static_cast<float>(x) + 0.00583715f * static_cast<float>(y);
    const float b = 52.9829189f * (a - std::floor(a));
    return b - std::floor(b) - 0.5f;
}

}  // namespace

Grid Grid::of(int samples) {
    switch (samples) {
        case 1:
            return {1, 1};
        case 2:
            return {2, 1};
        case 9:
            return {3, 3};
        case 16:
            return {4, 4};
        default:
            return {2, 2};
    }
}

Film::Film(int width, int height, Grid grid, float exposure)
    : width_(width),
      height_(height),
      grid_(grid),
      exposure_(exposure),
      weightsX_(makeWeights(grid.x)),
      weightsY_(makeWeights(grid.y)),
      curve_(makeCurve()),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3) {}

// Very bright samples count less, so that highlights have smooth edges too.
Film::Sum Film::sampleOver(const float* sample, Vec3 behind) {
    Vec3 color{sample[0], sample[1], sample[2]};
    float alpha = sample[3];
    const float all = color.x + color.y + color.z + alpha;
    if (!(std::fabs(all) <= 1e30f)) {
        ++strange_;
        color = {};
        alpha = 1;
    }
    alpha = std::clamp(alpha, 0.0f, 1.0f);
    color = mix(behind, color, alpha);
    color = {std::max(color.x, 0.0f), std::max(color.y, 0.0f), std::max(color.z, 0.0f)};
    const float weight = 1 / (1 + exposure_ * std::max({color.x, color.y, color.z}));
    return {color * weight, weight};
}

// Adds one row of samples, filtered across, to the sums of the tile's pixels.
void Film::filterRow(const Area& tile, const float* samples, const Vec3* background, std::vector<Sum>& row) {
    const int wide = tile.width + 2 * kMargin;
    std::vector<Sum> line;
    line.reserve(static_cast<std::size_t>(wide * grid_.x));
    for (int x = 0; x < wide; ++x) {
        for (int k = 0; k < grid_.x; ++k, samples += 4) {
            line.push_back(sampleOver(samples, background[x]));
        }
    }
    row.assign(static_cast<std::size_t>(tile.width), Sum{});
    const int reach = 3 * grid_.x;
    for (int x = 0; x < tile.width; ++x) {
        Sum& sum = row[static_cast<std::size_t>(x)];
        const Sum* from = &line[static_cast<std::size_t>(x * grid_.x)];
        for (int k = 0; k < reach; ++k) {
            const float w = weightsX_[static_cast<std::size_t>(k)];
            sum.color += from[k].color * w;
            sum.weight += from[k].weight * w;
        }
    }
}

void Film::develop(const Area& tile, const std::vector<float>& samples, const std::vector<Vec3>& background) {
    const int wide = tile.width + 2 * kMargin;
    const int sampleRows = (tile.height + 2 * kMargin) * grid_.y;
    std::vector<std::vector<Sum>> rows(static_cast<std::size_t>(3 * grid_.y));
    for (int i = 0; i < sampleRows; ++i) {
        const float* from = &samples[static_cast<std::size_t>(sampleRows - 1 - i) *
                                     static_cast<std::size_t>(wide * grid_.x) * 4];
        const Vec3* behind =
            &background[static_cast<std::size_t>(i / grid_.y) * static_cast<std::size_t>(wide)];
        filterRow(tile, from, behind, rows[static_cast<std::size_t>(i) % rows.size()]);
        if ((i + 1) % grid_.y != 0 || i + 1 < 3 * grid_.y) {
            continue;
        }
        const int y = (i + 1) / grid_.y - 3;
        std::vector<Sum> sums(static_cast<std::size_t>(tile.width));
        for (int k = 0; k < 3 * grid_.y; ++k) {
            const auto& row = rows[static_cast<std::size_t>(y * grid_.y + k) % rows.size()];
            const float w = weightsY_[static_cast<std::size_t>(k)];
            for (std::size_t x = 0; x < sums.size() && w > 0; ++x) {
                sums[x].color += row[x].color * w;
                sums[x].weight += row[x].weight * w;
            }
        }
        encode(tile, y, sums);
    }
}

void Film::encode(const Area& tile, int y, const std::vector<Sum>& sums) {
    const int row = tile.y + y;
    std::uint8_t* to = &pixels_[(static_cast<std::size_t>(row) * static_cast<std::size_t>(width_) +
                                 static_cast<std::size_t>(tile.x)) *
                                3];
    for (int x = 0; x < tile.width; ++x) {
        const Sum& sum = sums[static_cast<std::size_t>(x)];
        const Vec3 color = sum.color * (exposure_ / sum.weight);
        const float noise = dither(tile.x + x, row);
        for (const float channel : {color.x, color.y, color.z}) {
            const float x0 = std::clamp(channel, kDarkest, kBrightest);
            const float level = static_cast<float>(curve_[bits(x0) - bits(kDarkest)]) * (1.0f / 255);
            *to++ = static_cast<std::uint8_t>(std::clamp(level + noise + 0.5f, 0.0f, 255.0f));
        }
    }
}

}  // namespace tavrin::mray
