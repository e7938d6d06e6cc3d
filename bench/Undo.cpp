// SPDX-License-Identifier: Apache-2.0
// Undo among 5,000 boxes: what the end of an act costs for the history, and what an undo costs. The floor of
// each is the same act in a document that keeps no history.
#include "bench/BenchNetwork.h"
#include "desk/OpDesk.h"

namespace {

using namespace tavrin;

constexpr int kBoxes = 5000;

void Print(const char* what, double milliseconds) {
    std::printf("undo %-36s %9.3f ms\n", what, milliseconds);
}

class Bench {
  public:
    explicit Bench(bool keepsHistory) {
        bench::Fill(m_document, m_host, kBoxes, kBoxes);
        if (keepsHistory) m_document.KeepHistory();
        m_desk.OnInitialUpdate();
        for (const auto& box : m_document.m_boxes) m_boxes.push_back(box.get());
    }

    void Select(size_t count) {
        m_desk.ClearBoxSelection();
        for (size_t i = 0; i < count; ++i) m_boxes[i]->selected = 1;
    }
    void Move() { m_desk.MoveSelectedBoxes(1, 1); }
    void Wire() {
        COpButton& input = *m_boxes[1]->inputs[0];
        if (input.connections.Empty()) {
            m_desk.Connect(input, *m_boxes[0]->outputs[0]);
        } else {
            m_desk.m_mouseButton = &input;
            m_desk.DeleteConnections();
        }
    }
    void Tune() {
        COpButton& button = *m_boxes[0]->inputs[0];
        const EditScope edit(m_document, "Value");
        m_document.edits.ButtonTuned(button);
        button.comments = std::to_string(++m_tuned);
    }
    void Delete() {
        Select(1);
        m_desk.DeleteSelection();
    }
    void Undo() { m_desk.Undo(); }

  private:
    bench::BenchHost m_host;
    CTvDoc m_document{m_host};
    COpDesk m_desk{m_document, m_host};
    std::vector<COpBox*> m_boxes;
    int m_tuned = 0;
};

}  // namespace

int main() {
    for (const bool keepsHistory : {false, true}) {
        Bench bench(keepsHistory);
        const std::string kind = keepsHistory ? "" : "floor: ";
        const auto time = [&](const char* what, auto act) {
            Print((kind + what).c_str(), bench::MedianMilliseconds(act));
            if (keepsHistory) {
                Print((std::string(what) + ", undone").c_str(),
                      bench::MedianMilliseconds([&] { bench.Undo(); }));
            }
        };
        bench.Select(1);
        time("one box moved", [&] { bench.Move(); });
        time("one value tuned", [&] { bench.Tune(); });
        time("one wire", [&] { bench.Wire(); });
        bench.Select(kBoxes);
        time("5000 boxes moved", [&] { bench.Move(); });
        if (!keepsHistory) continue;
        Print("one box deleted", bench::MedianMilliseconds([&] { bench.Delete(); }, [&] { bench.Undo(); }));
        bench::PrintPeakMemory();
    }
    return 0;
}
