// The program's icons: drawings in one style, inked in the colour of the text around them.
#pragma once

#include <QIcon>
#include <QString>

namespace tavrin {

// The icon of that name, drawn anew for each size, device pixel ratio, palette (dark or light) and state
// (a disabled one is paler). Names are those of the files under `drawings/`, without extension. An unknown
// name gives a null icon.
QIcon Icon(const QString& name);

// The application's own, in colour.
QIcon ApplicationIcon();

}  // namespace tavrin
