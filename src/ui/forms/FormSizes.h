// SPDX-License-Identifier: Apache-2.0
// Where the controls of each kind of widget stand in it, in dialog units.
#pragma once

#include "ui/windows/DialogUnits.h"

namespace tavrin::form_sizes {

inline constexpr int kLine = 13;  // the height of everything that stands on a line

namespace xfield {
inline constexpr UnitRect kList{0, 0, 72, kLine};
inline constexpr UnitRect kEdit{75, 0, 60, kLine};
inline constexpr UnitRect kInfo{138, 0, 36, kLine};
}  // namespace xfield

namespace xyfield {
inline constexpr UnitRect kList{0, 0, 72, kLine};
inline constexpr UnitRect kFirst{75, 0, 25, kLine};
inline constexpr UnitRect kSeparator{101, 0, 8, kLine};
inline constexpr UnitRect kSecond{110, 0, 25, kLine};
inline constexpr UnitRect kInfo{138, 0, 36, kLine};
}  // namespace xyfield

namespace xyzfield {
inline constexpr int kWidth = 202;
inline constexpr int kHeight = 46;
inline constexpr int kColumn = 51;  // from one axis to the next
inline constexpr UnitRect kList{6, 12, 48, kLine};
inline constexpr UnitRect kEdit{6, 27, 48, kLine};
inline constexpr UnitRect kInfo{160, 27, 36, kLine};
}  // namespace xyzfield

namespace button {
inline constexpr int kLeastWidth = 50;
inline constexpr int kHeight = 14;
}  // namespace button

namespace okfield {
inline constexpr int kWidth = 122;
inline constexpr int kHeight = 26;
inline constexpr UnitRect kDefault{6, 6, 53, 14};
inline constexpr UnitRect kOk{63, 6, 53, 14};
}  // namespace okfield

namespace stringinput {
inline constexpr UnitRect kLabel{0, 0, 52, kLine};
inline constexpr UnitRect kEdit{54, 0, 80, kLine};
inline constexpr UnitRect kFile{137, 0, 36, kLine};
inline constexpr UnitRect kInfo{176, 0, 36, kLine};
}  // namespace stringinput

}  // namespace tavrin::form_sizes
