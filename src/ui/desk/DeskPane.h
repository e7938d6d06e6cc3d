// SPDX-License-Identifier: Apache-2.0
// The desk as a piece of the frame: its window with scroll bars round it.
#pragma once

#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "desk/DeskGestures.h"
#include "desk/DeskMenu.h"
#include "ui/desk/BatchedPen.h"
#include "ui/desk/DeskIcons.h"
#include "ui/desk/DeskPainter.h"
#include "ui/desk/DeskWidget.h"
#include "ui/desk/FrameEditor.h"
#include "ui/desk/PlainPen.h"
#include "ui/windows/WheelNotches.h"

class QScrollBar;

namespace tavrin {

class Minimap;
struct Site;

// Lives as long as the frame, its parent; document, desk and site outlive it.
// While the document is locked the frame disables it, so that no event reaches it; it is still painted.
class DeskPane : public QWidget, private DeskView {
  public:
    struct Needs {
        std::function<std::string()> highlightedBox;  // the Box Finder's current name; empty for none
        std::function<void(const std::string&)> showStatus;
        // The program must end with this message and this exit status.
        std::function<void(const std::string&, int)> fail;
        // Opens the file of an operator for editing.
        std::function<void(const std::string&)> editFile = {};
        // Which output stands for the picture, null for none, and lets one do so, or no more. Without them no
        // menu offers that.
        std::function<const COpButton*()> shownOutput = {};
        std::function<void(COpButton&)> toggleShown = {};
        // An operator is to be searched for by a text that begins so. False if nothing comes of it, and the
        // key is free for something else. Without it typing on the desk does nothing.
        std::function<bool(const QString& begun)> search = {};
        // As DeskGestures::Needs has it.
        std::function<bool(COpButton& button, DeskPoint at)> wireDropped = {};
        // What the last run says of boxes; outlives the pane. Null for nothing.
        const BoxMarks* marks = nullptr;
    };
    DeskPane(QWidget* parent, CTvDoc& document, COpDesk& desk, Site& site, Needs needs);
    ~DeskPane() override;

    // What COpDesk asks of its window. Layout needs no context: it can be asked for before the pane is shown.
    void LayoutBox(COpBox& box) override;
    void Repaint() override;
    void UpdateScrollBars() override;
    void LayoutAll();
    void SetScrollBarsShown(bool shown);
    bool ScrollBarsShown() const { return m_showScrollBars; }
    Minimap& Map() { return *m_minimap; }

    void ZoomIn() { ViewChanged(m_view.ZoomIn()); }
    void ZoomOut() { ViewChanged(m_view.ZoomOut()); }
    void ZoomReset() { ViewChanged(m_view.ZoomReset()); }
    void FitToWindow() { ViewChanged(m_view.FitToWindow()); }
    void CentreOnBox(const std::string& boxTitleWid) { ViewChanged(m_view.CentreOnBox(boxTitleWid)); }
    // Selects it alone, which a lock forbids, brings it into view, beside the window that has the keys, and
    // lights it for a while.
    void GoToBox(const std::string& boxTitleWid);
    // The box that is lit; empty for none.
    const std::string& LitBox() const { return m_litBox; }

    std::optional<DeskPoint> CursorOnDesk() const override;
    std::optional<DeskRect> Sight() const override;

    // Lets the text of a frame or note be typed where it stands; see FrameEditor.
    void EditFrame(int number);

    DeskGestures& Gestures() { return m_gestures; }
    const DeskViewport& View() const { return m_view; }
    DeskWidget& Desk() { return *m_widget; }

    // With pixels; takes the place of the one before.
    void SetWallpaper(std::unique_ptr<CSgiImage> image);
    bool m_showWallpaper = true;
    bool m_tileWallpaper = false;

    // Whether to draw shape by shape, which is slower and looks the same. Where the context can do no better
    // it is done in any case.
    void SetPlain(bool plain) { m_plain = plain; }

  protected:
    bool event(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    void OnChange(const Change& change);
    QScrollBar* MakeScrollBar(Qt::Orientation orientation);
    void Scroll(Qt::Orientation orientation, int sliderAction);
    void ViewChanged(bool changed);
    void OpenMenu(QPoint at);
    bool EditFrameAt(QPoint at);
    QRect FreePart() const;
    void ContextIsNew();
    void Paint();
    void Resized();
    void FollowPixelRatio();
    void LoadWallpaper();
    void LayOut(COpBox& box, const TextMeasure& measure);

    CTvDoc& m_document;
    COpDesk& m_desk;
    Site& m_site;
    Needs m_needs;
    DeskStyle m_style;
    DeskViewport m_view;
    DeskFonts m_fonts;
    DeskGestures m_gestures;
    DeskMenu m_menu;
    DeskIcons m_icons;
    TypeLooks m_types;
    DeskPainter::Parts m_parts;
    PlainPen m_plainPen{m_view, m_fonts};
    BatchedPen m_batchedPen{m_view, m_fonts};
    bool m_plain = false;
    bool m_canBatch = true;  // in the context as it is
    std::unique_ptr<CSgiImage> m_wallpaper;
    DeskWidget* m_widget;
    FrameEditor* m_frameEditor = nullptr;  // made when it is first wanted
    Minimap* m_minimap;
    QScrollBar* m_across;
    QScrollBar* m_down;
    Edits::Subscription m_changes;
    bool m_showScrollBars = true;
    std::string m_litBox;
    QTimer m_lit;
    Listeners<>::Subscription m_marks;
    bool m_layoutDirty = true;  // every box is laid out on the next paint
    float m_lastZoom = 0;       // of the last paint
    WheelNotches m_wheel;
};

}  // namespace tavrin
