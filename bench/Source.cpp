// SPDX-License-Identifier: Apache-2.0
// The window that shows the source of 5,000 boxes: what following the desk costs the hand, beside the
// generation itself, which is the floor. Wants a display.
#include <QApplication>
#include <QWindow>
#include <filesystem>

#include "bench/BenchNetwork.h"
#include "render/RenderSession.h"
#include "render/ShaderText.h"
#include "render/SourceMaker.h"
#include "ui/source/SourceColumn.h"
#include "ui/source/SourceWindow.h"

namespace {

using namespace tavrin;

constexpr int kBoxes = 5000;

constexpr const char* kWords = R"text(linecomment "//"
blockcomment "/*" "*/"
directive "#"
numbers 1
class type { float vec2 vec3 vec4 void }
class function { mr* }
)text";

void Print(const char* what, double milliseconds) {
    std::printf("source %-44s %9.3f ms\n", what, milliseconds);
}

void Tune(CTvDoc& document, float number) {
    COpButton& button = *document.m_boxes.front()->inputs[2];
    const EditScope edit(document, "Tune");
    document.edits.ButtonTuned(button);
    dynamic_cast<COpValueFloat&>(*button.values[0]).value = number;
}

SourceWords Words() {
    Report report;
    CArchive archive = CArchive::FromText("words", kWords);
    return SourceWords::Read(archive, report).value();
}

void BenchParts(bench::BenchHost& host, CTvDoc& document, RenderSession& session) {
    Print("floor: generating 5000 boxes", bench::MedianMilliseconds([&] {
              GenerateShader(document, "bench", host.GetSite(), host.CodeGen());
          }));
    const SourceKind kind{false, {}};
    SourceMaker maker({document, session, host.GetSite(), host.CodeGen(), [](const SourceKind&) {}});
    Print("generated, with what a script is given", bench::MedianMilliseconds([&] { maker.Make({kind}); }));
    const MadeSource& made = *maker.Find(kind);
    const SourceWords words = Words();
    std::printf("source %zu lines\n", SourceText(made.text, words).LineCount());
    SourceText coloured(made.text, words);
    Print("every line of it coloured", bench::MedianMilliseconds([&] {
              coloured = SourceText(made.text, words);
              for (size_t line = 0; line < coloured.LineCount(); ++line) coloured.SpansOf(line);
          }));
    std::unordered_set<std::string> all;
    for (const auto& box : document.m_boxes) all.insert(box->BoxTitleWid());
    Print("the lines of all boxes", bench::MedianMilliseconds([&] { made.lines.LinesOf(all); }));
}

void BenchWindow(bench::BenchHost& host, CTvDoc& document, RenderSession& session) {
    SourceWindow window(nullptr, {.document = document,
                                  .session = session,
                                  .site = host.GetSite(),
                                  .siteCodeGen = host.CodeGen(),
                                  .types = [] { return std::vector<std::string>(); },
                                  .goToBox = [](const std::string&) {}});
    const auto listener = document.edits.Observe([&](const Change& change) { window.Follow(change); });
    SourceColumn column({false, {}}, {});
    column.resize(800, 900);
    column.show();
    while (!column.windowHandle()->isExposed()) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    SourceMaker maker({document, session, host.GetSite(), host.CodeGen(), [](const SourceKind&) {}});
    const SourceWords words = Words();
    float number = 0;
    Print("shown, another one each time", bench::MedianMilliseconds(
                                              [&] {
                                                  column.Show(maker.Find({false, {}}), words);
                                              },
                                              [&] {
                                                  Tune(document, number += 0.001F);
                                                  maker.Make({{false, {}}});
                                              },
                                              bench::kRuns + 1));
    Print("painted, at its beginning",
          bench::MedianMilliseconds([&] { column.View().viewport()->repaint(); }));
    column.View().GoTo(column.View().LineCount());
    Print("painted, at its end", bench::MedianMilliseconds([&] { column.View().viewport()->repaint(); }));
    window.show();
    while (window.Refreshes() == 0) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    Print("an edit that is followed, unwaited",
          bench::MedianMilliseconds([&] { Tune(document, number += 0.001F); }));
    Print("all boxes selected", bench::MedianMilliseconds([&] {
              for (const auto& box : document.m_boxes) box->selected = 1 - box->selected;
              document.edits.SelectionChanged();
          }));
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const std::string work = std::filesystem::temp_directory_path() / "tavrin-bench-source";
    {
        bench::BenchHost host;
        CTvDoc document(host);
        bench::Fill(document, host, kBoxes, 50);
        std::filesystem::create_directories(work);
        host.GetSite().directories.workDir = work;
        RenderSession session(document, host.GetSite(), host.CodeGen());
        BenchParts(host, document, session);
        BenchWindow(host, document, session);
    }
    std::filesystem::remove_all(work);
    bench::PrintPeakMemory();
    return 0;
}
