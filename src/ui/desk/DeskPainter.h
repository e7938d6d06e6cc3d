// Draws the desk whole, with OpenGL 1.1, in desk units.
#pragma once

#include <string>
#include <unordered_set>

#include "desk/DeskGestures.h"
#include "ui/desk/DeskFonts.h"

namespace tavrin {

class CSgiImage;

// Owned by the desk's window, which has laid out the boxes and made its context current. Looks at everything
// and changes nothing but the state of the context.
class DeskPainter {
  public:
    // All outlive it.
    struct Parts {
        const CTvDoc& document;
        const COpDesk& desk;
        const DeskGestures& gestures;
        const DeskViewport& view;
        const DeskStyle& style;
        DeskFonts& fonts;
        Report& report;
    };
    explicit DeskPainter(Parts parts) : m_parts(parts) {}

    // What stands behind the network, fixed to the window.
    struct Wallpaper {
        const CSgiImage* image = nullptr;  // with pixels; nothing for none
        bool isTiled = false;              // repeated from the lower left corner, else once in the middle
    };

    // `highlightedBox` is the title and number of the box chosen in the Box Finder; empty for none.
    void Paint(const std::string& highlightedBox, const Wallpaper& wallpaper);

  private:
    void SetUp() const;
    void PaintBackground() const;
    void PaintWallpaper(const Wallpaper& wallpaper) const;
    void PaintAllLines();
    void PaintAllBoxes(const std::string& highlightedBox);
    void PaintGesture() const;
    void PaintVeil() const;

    void PaintBox(const COpBox& box, bool isHighlighted);
    void PaintPanel(const COpBox& box, const Rgb& color);
    void PaintButtons(const COpBox& box, bool outputs, const Rgb& color);
    void PaintMarks(const COpButton& button, const DeskRect& row) const;
    void PaintSelection(const DeskRect& rect) const;
    void PaintGrowArrows(const COpBox& box, const Rgb& color) const;
    bool IsButtonLit(const COpButton& button) const;

    template <typename Boxes>
    void PaintLines(const Boxes& boxes);
    void PaintLine(const ButtonPlace& from, const ButtonPlace& to, const Rgb& color);

    void Bevel(const DeskRect& rect, const Rgb& color) const;
    void TextAt(int font, const Rgb& color, const std::string& text, DeskPoint at);
    void CentredText(int font, const std::string& text, const DeskRect& rect);

    Parts m_parts;
    std::unordered_set<const COpButton*> m_selectedLines;
    float m_zoom = 1;
    DeskRect m_visible;
    int m_labelFont = DeskFonts::kNone;
    int m_titleFont = DeskFonts::kNone;
};

}  // namespace tavrin
