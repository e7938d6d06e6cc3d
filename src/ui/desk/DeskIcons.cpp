// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/DeskIcons.h"

#include "base/Paths.h"
#include "text/Report.h"

namespace tavrin {

const CSgiImage* DeskIcons::IconOf(const COpBox& box, bool isHighlighted) {
    if (box.iconimg.empty()) return nullptr;
    auto& icon = m_icons[isHighlighted ? box.filename + "!" : box.filename];
    if (!icon) {
        icon = std::make_unique<CSgiImage>(
            ResolvePath(box.iconimg, m_directory),
            [this](const std::string& warning) { m_report.LogLine("%s", warning.c_str()); });
        const Rgb color = isHighlighted ? m_style.highlightedBox : m_style.ColorOf(box.color);
        icon->FlattenOver(color.r, color.g, color.b);
    }
    return icon->pixels == nullptr ? nullptr : icon.get();
}

}  // namespace tavrin
