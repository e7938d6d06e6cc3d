// SPDX-License-Identifier: Apache-2.0
#include "Coarse.h"

#include <algorithm>
#include <cstddef>

namespace tavrin::mray {

namespace {

// A value that is dragged is to be followed by more than twelve pictures a second, with
// all that is done to a picture before and after it is drawn.
constexpr double kSoon = 35'000;  // microseconds
constexpr int kCoarsest = 8;

// The two pixels of a row or column that a place of the larger picture lies between,
// and how far it is from the first to the second, in 256ths.
struct Between {
    std::size_t first, second;
    int share;
};

std::vector<Between> places(int from, int to) {
    std::vector<Between> result;
    result.reserve(static_cast<std::size_t>(to));
    for (int i = 0; i < to; ++i) {
        const double at = std::clamp((i + 0.5) * from / to - 0.5, 0.0, from - 1.0);
        const auto first = static_cast<std::size_t>(at);
        const std::size_t second = std::min(first + 1, static_cast<std::size_t>(from - 1));
        result.push_back({first, second, static_cast<int>((at - static_cast<double>(first)) * 256)});
    }
    return result;
}

int mixed(int a, int b, int share) { return a * (256 - share) + b * share; }

}  // namespace

int shrunk(int side, int shrink) { return (side + shrink - 1) / shrink; }

Fineness firstFineness(const Options& options, double microsecondsASample) {
    const double pixels = double{1} * options.width * options.height;
    if (pixels * options.samples * microsecondsASample <= kSoon) {
        return {1, options.samples};
    }
    int shrink = 1;
    while (shrink < kCoarsest && pixels / shrink / shrink * microsecondsASample > kSoon) {
        ++shrink;
    }
    return {shrink, 1};
}

std::vector<std::uint8_t> enlarged(const std::vector<std::uint8_t>& from, int width, int height, int toWidth,
                                   int toHeight) {
    if (width == toWidth && height == toHeight) {
        return from;
    }
    const std::vector<Between> columns = places(width, toWidth);
    const std::size_t stride = static_cast<std::size_t>(width) * 3;
    std::vector<std::uint8_t> result;
    result.reserve(static_cast<std::size_t>(toWidth) * static_cast<std::size_t>(toHeight) * 3);
    for (const Between& row : places(height, toHeight)) {
        const std::uint8_t* above = &from[row.first * stride];
        const std::uint8_t* below = &from[row.second * stride];
        for (const Between& column : columns) {
            for (std::size_t c = 0; c < 3; ++c) {
                const std::size_t left = column.first * 3 + c;
                const std::size_t right = column.second * 3 + c;
                const int top = mixed(above[left], above[right], column.share);
                const int bottom = mixed(below[left], below[right], column.share);
                result.push_back(
                    static_cast<std::uint8_t>((mixed(top, bottom, row.share) + (1 << 15)) >> 16));
            }
        }
    }
    return result;
}

}  // namespace tavrin::mray
