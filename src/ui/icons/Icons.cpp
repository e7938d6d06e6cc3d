#include "ui/icons/Icons.h"

namespace tavrin {

QIcon Icon(const QString&) { return {}; }
QIcon ApplicationIcon() { return {}; }

}  // namespace tavrin
