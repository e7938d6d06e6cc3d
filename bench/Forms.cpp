// SPDX-License-Identifier: Apache-2.0
// The form's window: a form of 1,000 widgets of all kinds read, its controls built and laid out, shown and
// painted; an option that changes elsewhere; a chooser of 100,000 lines. Wants a display; each time goes to
// the end of painting. The floor is a repaint of what is seen, with nothing changed.
#include <QAbstractScrollArea>
#include <QApplication>
#include <map>

#include "bench/BenchNetwork.h"
#include "forms/FormFrame.h"
#include "forms/FormHost.h"
#include "forms/FormParser.h"
#include "text/Archive.h"
#include "ui/forms/RenderOptionsWindow.h"

namespace {

using namespace tavrin;

constexpr int kGroups = 100;  // of ten widgets each, one of each kind
constexpr int kLines = 100000;

class Options : public FormHost {
  public:
    void SetVariable(const std::string& name, const std::string& value) override { m_values[name] = value; }
    void AddUnsavedOption(const std::string&) override {}
    std::string GetAppVariable(const std::string& name) override { return m_values[name]; }

  private:
    std::map<std::string, std::string> m_values;
};

// A frame and nine widgets in two columns.
std::string Group(int number) {
    const std::string n = std::to_string(number);
    const std::string presets = "optioncontents {\n1 Fast\n4 Careful\n16 Final\n}\n";
    const std::string help = "help {\nWhat this is good for, in a line or two\nas a form has it.\n}\n";
    return "frame {\n{\nvertical 2\n}\nlabel {\nlabel \"Group " + n + "\"\n}\nxfield {\nenvname X" + n +
           "\noptionlabel Depth\nvalue 2\nforcefloat\n" + presets + help + "}\nxyfield {\nenvname XY" + n +
           "\noptionlabel Size\nvalue 640,480\noptioncontents {\n320,240 Small\n640,480 Usual\n}\n" + help +
           "}\nxyzfield {\nheadinglabel Light\nxenvname LX" + n + "\nyenvname LY" + n + "\nzenvname LZ" + n +
           "\nxvalue 1\nyvalue 2\nzvalue 3\nx" + presets + "y" + presets + "z" + presets + help +
           "}\nbutton {\nbuttonlabel Render\nactionto form\nactionmsg render\nactionarg render\n}\n"
           "ledbutton {\nbuttonlabel Shadows\nstate 1\nenvname LED" +
           n + "\n}\nchooser {\nenvname C" + n +
           "\nvalue plane\nchoosercontents {\nsphere\nplane\nteapot\n}\n}\n"
           "stringinput {\nlabel Background\nfile true\nenvname S" +
           n + "\n" + help + "}\nokfield {\nok_actionto form\nok_actionmsg roe\nok_actionarg hide\n}\n}\n";
}

std::string ManyWidgets() {
    std::string text = "{\nwinwidth 900\nwinheight 700\n";
    for (int i = 0; i < kGroups; ++i) text += Group(i);
    return text + "}\n";
}

std::string LongChooser() {
    std::string text = "{\nchooser {\nenvname C\nvalue \"line 99999\"\nchoosercontents {\n";
    for (int i = 0; i < kLines; ++i) text += "line " + std::to_string(i) + "\n";
    return text + "}\n}\n}\n";
}

void Print(const char* what, double milliseconds) {
    std::printf("forms %-36s %9.3f ms\n", what, milliseconds);
}

// A form with its window, as often as it is asked for.
class Bench {
  public:
    explicit Bench(std::string text) : m_text(std::move(text)) {}

    void Read() {
        m_form.ClearAll(m_options);
        CArchive archive = CArchive::FromText("bench.def", m_text);
        if (!ReadForm(archive, m_form, m_options, m_report)) std::exit(EXIT_FAILURE);
    }
    void MakeWindow() {
        m_window = std::make_unique<RenderOptionsWindow>(nullptr, m_form,
                                                         FormNeeds{m_options, [](const FormAction&) {}});
    }
    void Show() {
        m_window->show();
        QApplication::processEvents();
    }
    void DropWindow() { m_window.reset(); }
    void ChangeOption(const std::string& name) {
        m_form.BroadcastOption(name, std::to_string(++m_changes));
        QApplication::processEvents();
    }
    void Repaint() {
        m_window->findChild<QAbstractScrollArea*>()->viewport()->update();
        QApplication::processEvents();
    }

  private:
    const std::string m_text;
    Report m_report;
    Options m_options;
    CRenderOptionsEditor m_form;
    std::unique_ptr<RenderOptionsWindow> m_window;
    int m_changes = 0;
};

// All of the way from the text to the painted window.
void TimeForm(const std::string& what, Bench& bench) {
    const auto read = [&] { bench.Read(); };
    const auto drop = [&] { bench.DropWindow(); };
    Print((what + " read").c_str(), bench::MedianMilliseconds(read, drop));
    Print((what + " built and laid out").c_str(),
          bench::MedianMilliseconds([&] { bench.MakeWindow(); }, drop));
    bench.MakeWindow();
    Print((what + " shown first").c_str(), bench::MedianMilliseconds([&] { bench.Show(); },
                                                                     [&] {
                                                                         bench.DropWindow();
                                                                         bench.MakeWindow();
                                                                     }));
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    Bench many(ManyWidgets());
    TimeForm("1000 widgets", many);
    many.Show();
    Print("an option changed elsewhere", bench::MedianMilliseconds([&] { many.ChangeOption("X0"); }, [] {}));
    Print("floor: a repaint", bench::MedianMilliseconds([&] { many.Repaint(); }, [] {}));
    Bench longList(LongChooser());
    TimeForm("100000 lines", longList);
    return 0;
}
