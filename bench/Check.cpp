// SPDX-License-Identifier: Apache-2.0
// Checking networks of 5,000 boxes, and the window that follows the desk: how long a change is behind it, and
// how long the longest step is in which the hand waits. Wants a display. The floor is putting the boxes into
// the order of generation, which each check begins with.
#include <QApplication>
#include <QTimer>
#include <QWindow>

#include "bench/BenchNetwork.h"
#include "desk/OpDesk.h"
#include "render/NetworkCheck.h"
#include "ui/render/CheckWindow.h"

namespace {

using namespace tavrin;
using Clock = std::chrono::steady_clock;

constexpr int kBoxes = 5000;

double Since(Clock::time_point begin) {
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

void Print(const char* what, double milliseconds) {
    std::printf("check %-38s %9.3f ms\n", what, milliseconds);
}

// Each button as an argument while a wire silences it, or none.
void SilenceAll(CTvDoc& document, bool silenced) {
    for (const auto& box : document.m_boxes) {
        for (const auto& input : box->inputs) input->arg = silenced && input->Feeder() != nullptr ? 1 : 0;
    }
}

void BenchNetworks(bench::BenchHost& host, CTvDoc& document) {
    size_t found = 0;
    Print("floor: the order of generation",
          bench::MedianMilliseconds([&] { found += document.OrderBoxes().size() > kBoxes ? 1 : 0; }));
    const auto check = [&] {
        return bench::MedianMilliseconds([&] { found += CheckNetwork(document, host.GetSite()).size(); });
    };
    Print("5000 boxes", check());
    SilenceAll(document, true);
    Print("5000 boxes full of findings", check());
    SilenceAll(document, false);
    std::printf("check %zu findings in all\n", found);
}

class Follower {
  public:
    Follower(bench::BenchHost& host, CTvDoc& document, COpDesk& desk)
        : m_document(document),
          m_window(nullptr, {document, desk, host.Registry(), host.GetSite(), [](const std::string&) {},
                             [](const std::string&) {}}),
          m_changes(document.edits.Observe([this](const Change& change) { m_window.Follow(change); })) {
        m_window.show();
        while (!m_window.windowHandle()->isExposed())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    void Measure(const char* what) {
        double longest = 0;
        std::string name = what;
        Print(what, bench::MedianMilliseconds([&] { longest = std::max(longest, Follow()); }));
        Print((name + ", longest step").c_str(), longest);
    }

  private:
    // One more finding, or one less. Gives the longest time between two beats of a timer, as a hand feels it.
    double Follow() {
        const size_t before = m_window.Findings().size();
        double longest = 0;
        auto last = Clock::now();
        QTimer beat;
        beat.callOnTimeout([&] {
            longest = std::max(longest, Since(last));
            last = Clock::now();
        });
        beat.start(1);
        NameTwoAlike();
        while (m_window.Findings().size() == before)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return longest;
    }

    void NameTwoAlike() {
        const EditScope edit(m_document, "Argument");
        for (COpBox* box : {m_document.m_boxes.front().get(), m_document.m_boxes.back().get()}) {
            COpButton& input = *box->inputs[2];
            m_document.edits.ButtonTouched(input);
            input.arg = input.arg == 0 ? 1 : 0;
            input.argname = "same";
        }
    }

    CTvDoc& m_document;
    CheckWindow m_window;
    Edits::Subscription m_changes;
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    bench::BenchHost host;
    CTvDoc document(host);
    bench::Fill(document, host, kBoxes, 50);
    COpDesk desk(document, host);
    BenchNetworks(host, document);
    Follower follower(host, document, desk);
    follower.Measure("a change followed, with its pause");
    SilenceAll(document, true);
    follower.Measure("the same, full of findings");
    bench::PrintPeakMemory();
    return 0;
}
