// SPDX-License-Identifier: Apache-2.0
// What a whole repaint of the desk costs, the clearing and the swap left out. The floor is both of these
// alone, in the same widget and the same run.
#include <GL/gl.h>

#include <QApplication>

#include "bench/BenchNetwork.h"
#include "desk/DeskGestures.h"
#include "ui/desk/BatchedPen.h"
#include "ui/desk/DeskContext.h"
#include "ui/desk/DeskIcons.h"
#include "ui/desk/DeskPainter.h"
#include "ui/desk/DeskWidget.h"
#include "ui/desk/PlainPen.h"

namespace {

using namespace tavrin;
using namespace tavrin::bench;

constexpr int kWidth = 1600;
constexpr int kHeight = 1000;
constexpr int kBoxes = 5000;
constexpr int kWires = 8000;

// Boxes in rows, each wired to boxes of the column before it, as many times as it takes. Every fourth of the
// second wires joins two casts, every second box has an argument, every eighth is selected.
void Place(CTvDoc& document, BenchHost& host, int count, int columns, float cellWidth, float cellHeight) {
    std::vector<COpBox*> boxes;
    int wires = count * kWires / kBoxes;
    for (int i = 0; i < count; ++i) {
        auto box = std::make_unique<COpBox>();
        if (!host.DefineBox(*box, "Mix")) std::exit(EXIT_FAILURE);
        box->wid = i + 1;
        box->iconimg = TAVRIN_SOURCE_DIR "/installation/mray/icons/Mix.sgi";
        box->xypos[0] = static_cast<float>(i % columns) * cellWidth;
        box->xypos[1] = static_cast<float>(i / columns) * cellHeight;
        box->inputs[2]->arg = i % 2;
        box->selected = i % 8 == 0 ? 1 : 0;
        boxes.push_back(box.get());
        document.m_boxes.push_back(std::move(box));
    }
    for (int row = 0; row < 2; ++row) {
        for (int i = 0; i < count; ++i) {
            const int source = i - 1 - row * columns;
            if (i % columns == 0 || source < 0 || wires-- <= 0) continue;
            COpButton& input = *boxes[static_cast<size_t>(i)]->inputs[static_cast<size_t>(row)];
            input.Connect(*boxes[static_cast<size_t>(source)]->outputs[0]);
            if (row == 1 && i % 4 == 0) input.SetCast(1);
        }
    }
}

// A desk that is drawn in a window of its own.
class Desk {
  public:
    // With all looks that a library may want, or none.
    Desk(BenchHost& host, bool looks)
        : document(host),
          desk(document, host),
          m_style(StyleOf(host, looks)),
          m_viewport(document, m_style.zoom),
          m_fonts("DejaVu Sans", [](const std::string&) { std::exit(EXIT_FAILURE); },
                  {m_style.smoothText, m_style.leastLetters}),
          m_gestures(
              {document, desk, m_viewport, m_view, host.GetSite().report, 3, [](const std::string&) {}}),
          m_icons(m_directory, m_style, host.GetSite().report),
          m_types(host.GetSite().types),
          m_parts{document, desk, m_gestures, m_style, m_icons, &m_types},
          m_plainPen(m_viewport, m_fonts),
          m_batchedPen(m_viewport, m_fonts),
          m_widget(nullptr, m_gestures,
                   {[this] {
                        m_plainPen.ContextIsNew();
                        m_batchedPen.ContextIsNew();
                    },
                    [this] { paint(); },
                    [] {},
                    [](const std::string&) { std::exit(EXIT_FAILURE); },
                    [](QPoint) {},
                    {}}) {
        document.showiconimages = 1;
        document.linetype = 1;
        m_viewport.SetSize(kWidth, kHeight);
        m_widget.setFixedSize(kWidth, kHeight);
        m_widget.move(0, 0);
    }
    void Show() {
        m_widget.show();
        Repaint();
    }
    // Until the frame is on the screen.
    void Repaint() {
        bool swapped = false;
        const auto connection =
            QObject::connect(&m_widget, &QOpenGLWidget::frameSwapped, [&swapped] { swapped = true; });
        m_widget.update();
        while (!swapped) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QObject::disconnect(connection);
    }
    void See(float left, float bottom, float zoom) {
        document.zoomFactor = zoom;
        document.offset[0] = -left * zoom;
        document.offset[1] = -bottom * zoom;
        const DeskTextMeasure measure(m_fonts, zoom);
        for (const auto& box : document.m_boxes) {
            const CSgiImage* icon = m_icons.IconOf(*box, false);
            LayoutBox(*box, zoom, measure,
                      icon == nullptr ? IconSize{} : IconSize{icon->width, icon->height});
        }
    }
    double Frame() {
        Repaint();
        return MedianMilliseconds([this] { Repaint(); });
    }
    void Measure(const char* what) {
        paint = [] {
            glClear(GL_COLOR_BUFFER_BIT);
            glFinish();
        };
        const double floor = Frame();
        paint = [this] { DeskPainter(m_parts, m_batchedPen).Paint({}); };
        const double batched = Frame();
        paint = [this] { DeskPainter(m_parts, m_plainPen).Paint({}); };
        const double plain = Frame();
        const DeskRect visible = m_viewport.Visible();
        size_t seen = 0;
        for (const auto& box : document.m_boxes) seen += visible.Contains(BoxRect(*box).Middle()) ? 1 : 0;
        std::printf(
            "paint %s, %zu of %zu boxes in view: %.1f ms (shape by shape %.1f; clear and swap %.1f)\n", what,
            seen, document.m_boxes.size(), batched - floor, plain - floor, floor);
    }

    CTvDoc document;
    COpDesk desk;
    std::function<void()> paint = [] {};

  private:
    static DeskStyle StyleOf(BenchHost& host, bool looks) {
        DeskStyle style = DeskStyle::Read(host.GetSite().settings);
        style.smoothText = style.smoothLines = style.typeMarks = style.typeLines = looks;
        style.leastLetters = looks ? 7 : 0;
        return style;
    }

    DeskView m_view;
    DeskStyle m_style;
    DeskViewport m_viewport;
    DeskFonts m_fonts;
    DeskGestures m_gestures;
    std::string m_directory;
    DeskIcons m_icons;
    TypeLooks m_types;
    DeskPainter::Parts m_parts;
    PlainPen m_plainPen;
    BatchedPen m_batchedPen;
    DeskWidget m_widget;
};

}  // namespace

int main(int argc, char** argv) {
    QSurfaceFormat::setDefaultFormat(DeskFormat());
    QApplication application(argc, argv);
    BenchHost host;
    struct Scene {
        const char* what;
        int boxes, columns;
        float cellWidth, cellHeight;
        DeskPoint corner;
        float zoom;
        bool names;
        bool looks = false;
    };
    for (const Scene& scene : {
             Scene{"a part of a large desk", kBoxes, 80, 123, 100, {2000, 2000}, 1, false},
             Scene{"a part of a large desk with names of variables",
                   kBoxes,
                   80,
                   123,
                   100,
                   {2000, 2000},
                   1,
                   true},
             Scene{"1,000 boxes side by side", 1000, 40, 123, 100, {-60, -50}, 0.325F, false},
             Scene{"1,000 boxes on one another", 1000, 40, 80, 80, {-60, -50}, 0.5F, false},
             Scene{"5,000 boxes side by side", kBoxes, 80, 123, 100, {-60, -50}, 0.16F, false},
             Scene{
                 "a part of a large desk with all looks", kBoxes, 80, 123, 100, {2000, 2000}, 1, false, true},
             Scene{"1,000 boxes side by side with all looks",
                   1000,
                   40,
                   123,
                   100,
                   {-60, -50},
                   0.325F,
                   false,
                   true},
             Scene{"5,000 boxes side by side with all looks",
                   kBoxes,
                   80,
                   123,
                   100,
                   {-60, -50},
                   0.16F,
                   false,
                   true},
         }) {
        Desk desk(host, scene.looks);
        Place(desk.document, host, scene.boxes, scene.columns, scene.cellWidth, scene.cellHeight);
        desk.document.showvarnames = scene.names ? 1 : 0;
        desk.See(scene.corner.x, scene.corner.y, scene.zoom);
        desk.Show();
        desk.Measure(scene.what);
    }
    return EXIT_SUCCESS;
}
