// SPDX-License-Identifier: Apache-2.0
// What a slider makes of a value, and a value of a slider.
#pragma once

namespace tavrin {

// Of every slider in a panel: 0 at its left end.
inline constexpr int kSliderSteps = 100;

// The range of a number, which may be reversed: the slider then runs backward.
struct ValueRange {
    float min = 0;
    float max = 0;
    bool wholeNumbers = false;  // what the slider gives is cut to whole numbers
};

// Where the slider stands for a value: its share of the range in hundredths, cut off; 0 where the range is
// empty. A value outside the range gives a position outside 0 to 100, held at the ends of 32 bits.
int SliderPosition(float value, const ValueRange& range);

// The value of a position: min - (max - min) x position x (-0.01), where the constant is that of 32 bits, the
// sum is made in extended precision, and the result is rounded once. Cut toward zero for whole numbers.
float SliderValue(int position, const ValueRange& range);

// From where a key moves the slider: the position that gave the value, where there is one. The position
// itself may be one less, since it is cut off, and a step up from there would lead back to the same value.
int SteppingPosition(float value, const ValueRange& range);

// The value brought into the range, whichever way round that is.
float ClampedToRange(float value, const ValueRange& range);

// A value moved by some steps, of which `kSliderSteps` make the range and none is less than one for whole
// numbers. It stays in the range; an empty one has steps of one and no ends.
float SteppedValue(float value, double steps, const ValueRange& range);

// The same of a colour's component, which is 0 to 1: truncated hundredths, and position x 0.01 of 32 bits.
int ComponentPosition(float component);
float ComponentValue(int position);

// A component as a byte of a swatch: truncate(component x scale), of which the lowest 8 bits count.
inline constexpr double kPanelSwatchScale = 255.999;
inline constexpr double kPickerSwatchScale = 255.99;
int SwatchByte(float component, double scale);

}  // namespace tavrin
