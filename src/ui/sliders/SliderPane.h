// SPDX-License-Identifier: Apache-2.0
// The column of sliders at the left of the frame.
#pragma once

#include <QAbstractScrollArea>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "ui/sliders/SliderFrame.h"
#include "ui/windows/WheelNotches.h"

namespace tavrin {

// A child of the frame; the slider desk and what panels need outlive it. Windows are made only for the frames
// in view and those within a page of it, and kept while their frames stand. Its vertical bar is always there.
class SliderPane : public QAbstractScrollArea, private SliderView {
  public:
    SliderPane(QWidget* parent, CSliderDesk& desk, SliderNeeds needs);
    ~SliderPane() override;

    // Wide enough for a panel beside its scroll bar, in pixels.
    int ColumnWidth() const;
    QSize sizeHint() const override { return {ColumnWidth(), ColumnWidth()}; }

    // The window of a button's frame; null while it has none.
    CSliderFrame* FrameOf(const COpButton& button) const;
    // Scrolls until the frame of a button is in view; it has a window then, unless the column is hidden. Null
    // if it has no frame.
    CSliderFrame* BringIntoView(const COpButton& button);

  protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    void PlaceFrames() override;
    void RefreshFrame(COpButton& button) override;

    void Measure();
    void DropWindows();
    void ShowFrames();
    size_t PlaceAt(int y) const;
    CSliderFrame& MakeWindow(size_t place);
    QWidget* TabStopBefore(size_t place) const;
    void ScrollTo(int top, int bottom);
    void FollowFocus(QWidget* widget);
    void ShowHelpUnder(QPoint global);
    void UpdateScrollSizes();
    static void Drop(CSliderFrame& frame);

    CSliderDesk& m_desk;
    const SliderNeeds m_needs;
    QWidget* m_content;       // all frames, as high as they are together; moved to scroll
    std::vector<int> m_tops;  // of the frames, and the end of the last; pixels
    std::unordered_map<uint64_t, CSliderFrame*> m_windows;  // by the button's serial number
    QMetaObject::Connection m_focusChanges;
    WheelNotches m_wheel;
};

}  // namespace tavrin
