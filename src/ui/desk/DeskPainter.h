// SPDX-License-Identifier: Apache-2.0
// What is seen of the desk, in its order: wallpaper, lines, boxes, the gesture that runs, the veil.
#pragma once

#include <string>
#include <unordered_set>

#include "desk/DeskGestures.h"
#include "desk/TypeLook.h"
#include "library/TiebackEnds.h"
#include "ui/desk/DeskIcons.h"
#include "ui/desk/DeskPen.h"

namespace tavrin {

class BoxMarks;

// Made for one paint by the desk's pane, which has laid out the boxes and made the context current. Looks at
// the network and changes nothing. What is out of view costs a comparison of rectangles.
// Boxes are painted in DeskPainterBoxes.cpp, what tells types apart in DeskPainterTypes.cpp, the mark of what
// stands for the picture in DeskPainterProbe.cpp.
class DeskPainter {
  public:
    // All outlive it.
    struct Parts {
        const CTvDoc& document;
        const COpDesk& desk;
        const DeskGestures& gestures;
        const DeskStyle& style;
        DeskIcons& icons;
        TypeLooks* types = nullptr;  // none, and types are not told apart
    };
    DeskPainter(const Parts& parts, DeskPen& pen) : m_parts(parts), m_pen(pen) {}

    // What is shown beside the network.
    struct Extras {
        std::string highlightedBox;            // title and number; empty for none
        const CSgiImage* wallpaper = nullptr;  // none if it is not shown
        bool tileWallpaper = false;
        const COpButton* shownOutput = nullptr;  // stands for the picture; none otherwise
        const BoxMarks* marks = nullptr;         // of the last run
    };
    void Paint(const Extras& extras);

  private:
    void PaintFrames();
    void PaintAllLines();
    void PaintAllBoxes(const std::string& highlightedBox);
    void PaintGesture();
    void PaintVeil();

    template <typename Boxes>
    void PaintLines(const Boxes& boxes);
    void FindLitLines();
    LineLook LookOf(const COpButton& output, const COpButton& input, bool isLit) const;
    const Rgb& LineColor(const COpButton& output) const;
    void PaintLine(const ButtonPlace& from, const ButtonPlace& to, const LineLook& look);
    void PaintVariableName(const COpButton& output, DeskPoint start, const Rgb& color);

    void PaintBox(const COpBox& box, bool isHighlighted);
    void PaintFace(const DeskRect& rect, const Rgb& color, bool isUnknown);
    void PaintDashes(const DeskRect& rect);
    Rgb Veiled(const Rgb& color) const;
    void PaintPanel(const COpBox& box, const Rgb& color, bool isHighlighted);
    void PaintButtons(const COpBox& box, bool outputs, const Rgb& color);
    void PaintMarks(const COpButton& button, const DeskRect& row);
    void PaintTypeMarks(const COpBox& box);
    void PaintTypeMark(const COpButton& button, const DeskRect& row, bool isOutput);
    void PaintPass(const COpBox& box);
    void PaintSelection(const DeskRect& rect);
    void PaintHover(const COpBox& box);
    void PaintFrame(const DeskRect& rect, float width, const Rgb& color);
    void PaintErrorMarks(const BoxMarks& marks);
    void PaintErrorBadge(DeskPoint middle, float radius);
    void PaintProbe(const COpButton& output);
    void PaintEye(DeskPoint middle, float scale);
    void PaintDeskFrame(const DeskFrame& frame);
    void PaintFrameTitle(const DeskFrame& frame, const DeskRect& bar);
    void PaintNoteText(const DeskFrame& frame);
    void PaintGrip(const DeskFrame& frame, const Rgb& color);
    void PaintGrowArrows(const COpBox& box, const Rgb& color);
    bool IsButtonLit(const COpButton& button) const;
    Rgb FaceOf(const COpButton& button, const Rgb& box) const;

    const Parts& m_parts;
    DeskPen& m_pen;
    std::unordered_set<const COpButton*> m_selectedLines;
    const COpButton* m_insertionLine = nullptr;       // the box in hand would go between its ends
    std::unordered_set<const COpButton*> m_litLines;  // both, and the one under the pointer
    TiebackEnds m_tiebackEnds;
};

}  // namespace tavrin
