// SPDX-License-Identifier: Apache-2.0
// The icons of boxes, each read once and laid over the colour of its box.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "desk/DeskStyle.h"
#include "images/SgiImage.h"
#include "library/OpBox.h"

namespace tavrin {

class Report;

// Owned by the desk's pane. A file that cannot be read is logged once and then counts as no icon. Boxes of
// one operator share an icon: it keeps the colour that the first of them had.
class DeskIcons {
  public:
    // `directory` is where icon files are named from. All outlive it.
    DeskIcons(const std::string& directory, const DeskStyle& style, Report& report)
        : m_directory(directory), m_style(style), m_report(report) {}

    // Nothing if the box has no icon that can be read.
    const CSgiImage* IconOf(const COpBox& box, bool isHighlighted);

  private:
    const std::string& m_directory;
    const DeskStyle& m_style;
    Report& m_report;
    std::map<std::string, std::unique_ptr<CSgiImage>>
        m_icons;  // by operator, "!" behind the highlighted ones
};

}  // namespace tavrin
