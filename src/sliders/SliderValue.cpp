// SPDX-License-Identifier: Apache-2.0
#include "sliders/SliderValue.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace tavrin {

namespace {

constexpr float kStep = std::bit_cast<float>(uint32_t{0xBC23D70A});           // -0.01
constexpr float kComponentStep = std::bit_cast<float>(uint32_t{0x3C23D70A});  // 0.01

int Truncated(double number) {
    constexpr double kLeast = std::numeric_limits<int>::min();
    constexpr double kMost = std::numeric_limits<int>::max();
    if (std::isnan(number)) return 0;
    return static_cast<int>(std::clamp(number, kLeast, kMost));
}

}  // namespace

int SliderPosition(float value, const ValueRange& range) {
    if (range.min == range.max) return 0;
    const double length = static_cast<double>(range.max) - static_cast<double>(range.min);
    return Truncated((static_cast<double>(value) - static_cast<double>(range.min)) / length * kSliderSteps);
}

float SliderValue(int position, const ValueRange& range) {
    const long double min = range.min;
    const auto value = static_cast<float>(min - (static_cast<long double>(range.max) - min) * position *
                                                    static_cast<long double>(kStep));
    return range.wholeNumbers ? std::trunc(value) : value;
}

int SteppingPosition(float value, const ValueRange& range) {
    const int position = SliderPosition(value, range);
    const bool isNext = position >= 0 && position < kSliderSteps && SliderValue(position + 1, range) == value;
    return isNext ? position + 1 : position;
}

float ClampedToRange(float value, const ValueRange& range) {
    return std::clamp(value, std::min(range.min, range.max), std::max(range.min, range.max));
}

float SteppedValue(float value, double steps, const ValueRange& range) {
    double step = (static_cast<double>(range.max) - static_cast<double>(range.min)) / kSliderSteps;
    if (step == 0) step = 1;
    if (range.wholeNumbers && std::abs(step) < 1) step = std::copysign(1.0, step);
    const auto moved = static_cast<float>(static_cast<double>(value) + steps * step);
    if (!std::isfinite(moved)) return value;
    const float whole = range.wholeNumbers ? std::round(moved) : moved;
    return range.min == range.max ? whole : ClampedToRange(whole, range);
}

int ComponentPosition(float component) { return Truncated(static_cast<double>(component) * kSliderSteps); }

float ComponentValue(int position) {
    return static_cast<float>(static_cast<long double>(position) * static_cast<long double>(kComponentStep));
}

int SwatchByte(float component, double scale) {
    return Truncated(static_cast<double>(component) * scale) & 0xFF;
}

}  // namespace tavrin
