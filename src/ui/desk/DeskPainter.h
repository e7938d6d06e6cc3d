// SPDX-License-Identifier: Apache-2.0
// What is seen of the desk, in its order: wallpaper, lines, boxes, the gesture that runs, the veil.
#pragma once

#include <string>
#include <unordered_set>

#include "desk/DeskGestures.h"
#include "library/TiebackEnds.h"
#include "ui/desk/DeskIcons.h"
#include "ui/desk/DeskPen.h"

namespace tavrin {

// Made for one paint by the desk's pane, which has laid out the boxes and made the context current. Looks at
// the network and changes nothing. What is out of view costs a comparison of rectangles.
// Boxes are painted in DeskPainterBoxes.cpp, the mark of what stands for the picture in DeskPainterProbe.cpp.
class DeskPainter {
  public:
    // All outlive it.
    struct Parts {
        const CTvDoc& document;
        const COpDesk& desk;
        const DeskGestures& gestures;
        const DeskStyle& style;
        DeskIcons& icons;
    };
    DeskPainter(const Parts& parts, DeskPen& pen) : m_parts(parts), m_pen(pen) {}

    // What is shown beside the network.
    struct Extras {
        std::string highlightedBox;            // title and number; empty for none
        const CSgiImage* wallpaper = nullptr;  // none if it is not shown
        bool tileWallpaper = false;
        const COpButton* shownOutput = nullptr;  // stands for the picture; none otherwise
    };
    void Paint(const Extras& extras);

  private:
    void PaintAllLines();
    void PaintAllBoxes(const std::string& highlightedBox);
    void PaintGesture();
    void PaintVeil();

    template <typename Boxes>
    void PaintLines(const Boxes& boxes);
    void PaintLine(const ButtonPlace& from, const ButtonPlace& to, const LineLook& look);
    void PaintVariableName(const COpButton& output, DeskPoint start, const Rgb& color);

    void PaintBox(const COpBox& box, bool isHighlighted);
    void PaintFace(const DeskRect& rect, const Rgb& color, bool isUnknown);
    void PaintDashes(const DeskRect& rect);
    Rgb Veiled(const Rgb& color) const;
    void PaintPanel(const COpBox& box, const Rgb& color, bool isHighlighted);
    void PaintButtons(const COpBox& box, bool outputs, const Rgb& color);
    void PaintMarks(const COpButton& button, const DeskRect& row);
    void PaintSelection(const DeskRect& rect);
    void PaintFrame(const DeskRect& rect, float width, const Rgb& color);
    void PaintProbe(const COpButton& output);
    void PaintEye(DeskPoint middle, float scale);
    void PaintGrowArrows(const COpBox& box, const Rgb& color);
    bool IsButtonLit(const COpButton& button) const;

    const Parts& m_parts;
    DeskPen& m_pen;
    std::unordered_set<const COpButton*> m_selectedLines;
    TiebackEnds m_tiebackEnds;
};

}  // namespace tavrin
