// SPDX-License-Identifier: Apache-2.0
// The colours of a source, for light and dark ground.
#pragma once

#include <QColor>
#include <QPalette>
#include <QTextCharFormat>

#include "render/SourceWords.h"

namespace tavrin {

// A part's look. Keywords are bold and comments oblique as well, so that nobody depends on the colours.
QTextCharFormat SourceFormat(const QPalette& palette, SourceClass kind);
// Laid under the lines that the selected boxes have written, and under the line of the caret; the texts are
// legible on both.
QColor LitGround(const QPalette& palette);
QColor CaretGround(const QPalette& palette);
// Of the numbers of lines.
QColor NumberColor(const QPalette& palette);

}  // namespace tavrin
