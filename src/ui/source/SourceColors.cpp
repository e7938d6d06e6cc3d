// SPDX-License-Identifier: Apache-2.0
#include "ui/source/SourceColors.h"

namespace tavrin {

namespace {

struct Look {
    SourceClass kind;
    QRgb onLight;
    QRgb onDark;
};
constexpr Look kLooks[] = {
    {SourceClass::kKeyword, 0xff7a1fa0, 0xffd9a6f5},  {SourceClass::kType, 0xff005f70, 0xff74d4e0},
    {SourceClass::kFunction, 0xff1550a8, 0xff8fc2ff}, {SourceClass::kVariable, 0xff7d4300, 0xfff2ba84},
    {SourceClass::kConstant, 0xff8a3a00, 0xffffc48a}, {SourceClass::kDirective, 0xff575700, 0xffdada80},
    {SourceClass::kNumber, 0xff9c2418, 0xffffa898},   {SourceClass::kString, 0xff226426, 0xffa2dca4},
    {SourceClass::kComment, 0xff4d5c4d, 0xffb0c0b0},
};

bool IsDark(const QPalette& palette) { return palette.color(QPalette::Base).lightness() < 128; }

// Parts of a hundred of the one colour in the other.
QColor Mixed(const QColor& ground, const QColor& over, int parts) {
    const auto mix = [parts](int a, int b) { return (a * (100 - parts) + b * parts) / 100; };
    return {mix(ground.red(), over.red()), mix(ground.green(), over.green()),
            mix(ground.blue(), over.blue())};
}

}  // namespace

QTextCharFormat SourceFormat(const QPalette& palette, SourceClass kind) {
    QTextCharFormat format;
    for (const Look& look : kLooks) {
        if (look.kind == kind) format.setForeground(QColor(IsDark(palette) ? look.onDark : look.onLight));
    }
    if (kind == SourceClass::kKeyword) format.setFontWeight(QFont::Bold);
    if (kind == SourceClass::kComment) format.setFontItalic(true);
    return format;
}

QColor LitGround(const QPalette& palette) {
    // Amber, as selected boxes are on the desk.
    const QColor amber(0xff, 0xae, 0x38);
    return Mixed(palette.color(QPalette::Base), amber, IsDark(palette) ? 22 : 26);
}

// Placeholders have a colour that some palettes make invisible.
QColor NumberColor(const QPalette& palette) {
    return Mixed(palette.color(QPalette::Base), palette.color(QPalette::Text), 62);
}

QColor CaretGround(const QPalette& palette) {
    return Mixed(palette.color(QPalette::Base), palette.color(QPalette::Text), 7);
}

}  // namespace tavrin
