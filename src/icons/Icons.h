// SPDX-License-Identifier: Apache-2.0
// The program's icons: drawings in one style, inked in the colour of the text around them.
//
// A drawing is a file `drawings/NAME.svg`, listed in icons.qrc: 24 by 24 units, lines of 1.75 units with
// round ends and corners, nothing within half a unit of the border. Long straight lines stand at multiples of
// 3 where they can, which fall on whole pixels at 16, 24, 32 and 48 pixels. Colours are written in the file
// and replaced when it is drawn: #000000 is the ink, and at most one accent goes with it, chosen by meaning:
// #c46a00 (amber) renders or starts, #c8281e (red) stops, deletes or clears, #1a63c0 (blue) is a state of
// desk, view or sliders; what is set is filled with it, what is cleared is an outline.
#pragma once

#include <QIcon>
#include <QString>

namespace tavrin {

// The icon of that name, drawn anew for each size, device pixel ratio, palette (dark or light) and state
// (a disabled one is paler, a selected one has the colour of the selected text alone). It follows the
// application's palette also after it was made. Names are those of the files under `drawings/`, without
// extension. An unknown name gives a null icon. For the main thread, as QIcon is.
QIcon Icon(const QString& name);

// The application's own, in colour, the same on every palette.
QIcon ApplicationIcon();

}  // namespace tavrin
