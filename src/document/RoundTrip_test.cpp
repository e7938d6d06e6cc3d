// SPDX-License-Identifier: Apache-2.0
// What is saved comes back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <locale>
#include <random>
#include <sstream>

#include "library/ValueVisitor.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::BoxAt;
using test::Wire;
using testing::IsEmpty;

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

// Names the first line that differs, where both texts in full would fill the screen.
void ExpectSameLines(const std::vector<std::string>& got, const std::vector<std::string>& expected) {
    const size_t least = std::min(got.size(), expected.size());
    for (size_t line = 0; line < least; ++line)
        ASSERT_EQ(got[line], expected[line]) << "in line " << line + 1;
    EXPECT_EQ(got.size(), expected.size());
}

class RoundTrip : public test::DocumentTest {
  protected:
    // Saves, reads into the emptied document, and saves again.
    void ThereAndBack() {
        const std::string text = document.Store();
        Reload(text);
        ExpectSameLines(LinesOf(document.Store()), LinesOf(text));
    }
    void Reload(const std::string& text) {
        document.DeleteContents();
        ASSERT_TRUE(Load(text)) << host.Sink().LastAlert();
        EXPECT_THAT(Alerts(), IsEmpty());
    }
    COpBox& AddDefined(const std::string& name, int wid) {
        auto box = std::make_unique<COpBox>();
        EXPECT_TRUE(host.DefineBox(*box, name)) << host.Sink().LastAlert();
        box->wid = wid;
        return Add(std::move(box));
    }
};

TEST_F(RoundTrip, AHelpTextComesBackAsItWas) {
    for (const char* help : {"", "x", "x\r\n", "x\r\n\r\n", "\r\nx", "\r\n\r\n\r\nx\r\n\r\n", "\r\n",
                             "    indented\r\n\ttab", "}", "a\r\n}\r\nb", "> quoted\r\n>>", "# no comment",
                             "\"open", "back\\slash", "toolbar {", "\xc3\xa9\xff"}) {
        document.customshaderhelp = help;
        ThereAndBack();
        EXPECT_EQ(document.customshaderhelp, help);
    }
}

TEST_F(RoundTrip, TheDefaultHelpComesBack) {
    const std::string help = document.customshaderhelp;
    ThereAndBack();
    EXPECT_EQ(document.customshaderhelp, help);
}

TEST_F(RoundTrip, AHelpTextLosesTheBlanksAtItsLineEndsAndGainsCarriageReturns) {
    document.customshaderhelp = "a  \nb\t";
    const std::string text = document.Store();
    ASSERT_TRUE(Load(text));
    EXPECT_EQ(document.customshaderhelp, "a\r\nb");
}

TEST_F(RoundTrip, QuotedTextsComeBackWhateverTheyHold) {
    host.AddOperator("op", "input i { string { value x } }");
    for (const char* text :
         {"", " ", "say \"x\"", "\\", "\\\\\"", "#", "a\r\nb\n", "}", "{", "\t", "\xff\x01"}) {
        document.m_boxes.clear();
        COpBox& box = AddDefined("op", 1);
        box.inputs.at(0)->argname = text;
        box.inputs.at(0)->comments = text;
        static_cast<COpValueString&>(*box.inputs.at(0)->values.at(0)).value = text;
        ThereAndBack();
        const COpButton& read = *BoxAt(document, 0).inputs.at(0);
        EXPECT_EQ(read.argname, text);
        EXPECT_EQ(read.comments, text);
        EXPECT_EQ(static_cast<COpValueString&>(*read.values.at(0)).value, text);
    }
}

TEST_F(RoundTrip, RenderOptionsComeBackWhateverTheyHold) {
    host.appVariables = {{"}", ""}, {"setenv", ""}, {"A.b-c", ""}, {"E", ""}};
    document.m_renderOptions = {{"}", "}"}, {"setenv", "a\r\nb"}, {"A.b-c", "\"\\\""}, {"E", ""}};
    const auto options = document.m_renderOptions;
    ThereAndBack();
    EXPECT_EQ(document.m_renderOptions, options);
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(RoundTrip, VinputsComeBackWithTheirCopies) {
    host.AddOperator(
        "op",
        "vinput layer { rgb { 0 0 0 %g } string { value x } vinstances 2 } "
        "input between { float { 0 0 1 0 %g } } vinput other { generic:m { value x } } output o { rgb out }");
    COpBox& box = AddDefined("op", 1);
    COpBox& feeder = AddDefined("op", 2);
    for (int copy = 0; copy < 2; ++copy) box.CopyButton(*box.inputs.at(1), copy == 0);
    box.CopyButton(*box.inputs.back(), false);
    for (size_t i = 0; i < box.inputs.size(); ++i) {
        box.inputs.at(i)->argname = std::to_string(i);
        box.inputs.at(i)->pin = static_cast<int>(i % 2);
    }
    box.inputs.at(2)->currentcast = 1;
    static_cast<COpValueString&>(*box.inputs.at(2)->values.at(1)).value = "third";
    Wire(feeder, 0, box, 3);
    Wire(feeder, 0, box, 6);
    ThereAndBack();
    const COpBox& read = BoxAt(document, 0);
    std::string names;
    for (const auto& input : read.inputs) names += input->DisplayName() + ":" + input->argname + " ";
    EXPECT_EQ(names, "layer1:0 layer2:1 layer3:2 layer4:3 between:4 other1:5 other2:6 ");
    EXPECT_EQ(static_cast<COpValueString&>(*read.inputs.at(2)->values.at(1)).value, "third");
    EXPECT_EQ(read.inputs.at(2)->CurrentType(), "string");
    EXPECT_EQ(read.inputs.at(3)->connections.First(), BoxAt(document, 1).outputs.at(0).get());
    EXPECT_EQ(read.inputs.at(6)->connections.First(), BoxAt(document, 1).outputs.at(0).get());
}

TEST_F(RoundTrip, ABoxWithoutItsVinputsComesBackWithoutThem) {
    host.AddOperator("op", "vinput v { rgb { 0 0 0 %g } vinstances 3 } input i { rgb { 0 0 0 %g } }");
    COpBox& box = AddDefined("op", 1);
    for (int i = 0; i < 3; ++i) box.DeleteButton(*box.inputs.at(0));
    ThereAndBack();
    EXPECT_EQ(BoxAt(document, 0).inputs.size(), 1U);
}

TEST_F(RoundTrip, AnOutputWithoutAnyTypeComesBackWithoutAMessage) {
    host.AddOperator("op", "output o { help {\nnone\n}\n }");
    AddDefined("op", 1);
    ThereAndBack();
}

// Networks at random: the same numbers give the same networks on every machine.
class RandomNetwork : public RoundTrip {
  protected:
    RandomNetwork() {
        host.startsProcesses = false;
        host.AddOperator(
            "everything",
            "input f { float { 0 0 0 0 %g } } input x { xyz { 0 0 0 0 0 0 %g } rgb { 0 0 0 %g } } "
            "vinput v { rgba { 0 0 0 0 %g } string { value x } generic { value x } vinstances 2 } "
            "input g { generic:m { value x } float { 0 0 0 0 %g } } output o { rgb out float out } "
            "output p { generic:m out }");
        host.AddOperator("sink", "vinput a { float { 0 0 0 0 %g } } vinput b { float { 0 0 0 0 %g } }");
    }

    size_t Below(size_t end) { return random() % end; }
    float Number() {
        const float mantissa = static_cast<float>(static_cast<int>(Below(2000001)) - 1000000) / 1000;
        return std::ldexp(mantissa, static_cast<int>(Below(40)) - 30);
    }
    std::string Word(bool anything) {
        static const std::string kLetters = "abcXYZ019 #{}>,:=";
        static const std::string kAll = kLetters + "\"\\\r\n\t\xfe";
        const std::string& letters = anything ? kAll : kLetters;
        std::string word;
        for (size_t i = Below(8); i > 0; --i) word += letters[Below(letters.size())];
        return word;
    }
    void Change(COpValueFloat& v) {
        for (float* number : {&v.value, &v.min, &v.max}) *number = Number();
        v.integer = static_cast<int>(Below(2));
    }
    void Change(COpValueXyz& v) {
        for (float* number : {&v.x, &v.y, &v.z, &v.min, &v.max}) *number = Number();
        v.integer = static_cast<int>(Below(2));
    }
    void Change(COpValueRgb& v) {
        for (float* number : {&v.r, &v.g, &v.b}) *number = Number();
    }
    void Change(COpValueRgba& v) {
        for (float* number : {&v.r, &v.g, &v.b, &v.a}) *number = Number();
    }
    void Change(COpValueString& v) { v.value = Word(true); }
    void Change(COpValueGeneric& v) { v.value = Word(false); }
    void Change(COpButton& button) {
        button.pin = static_cast<int>(Below(2));
        button.stow = static_cast<int>(Below(2));
        button.lock = static_cast<int>(Below(2));
        button.arg = static_cast<int>(Below(2));
        button.argname = Word(true);
        button.comments = Word(true);
        button.currentcast = Below(button.values.size());
        if (button.IsOutput()) return;
        for (const auto& value : button.values) VisitValue(*value, [this](auto& own) { Change(own); });
    }
    void MakeBox(int wid) {
        COpBox& box = AddDefined(Below(3) == 0 ? "sink" : "everything", wid);
        for (float& coordinate : box.xypos) coordinate = Number();
        box.maxinstances = static_cast<int>(Below(3));
        for (size_t times = Below(4); times > 0; --times) {
            COpButton& button = *box.inputs[Below(box.inputs.size())];
            if (button.kind != ButtonKind::kVinput) continue;
            if (Below(3) == 0) {
                box.DeleteButton(button);
            } else {
                box.CopyButton(button, Below(2) == 0);
            }
            if (box.inputs.empty()) break;
        }
        for (const auto& input : box.inputs) Change(*input);
        for (const auto& output : box.outputs) Change(*output);
    }
    void MakeNetwork() {
        document.DeleteContents();
        const int count = 1 + static_cast<int>(Below(8));
        for (int wid = count; wid > 0; --wid) MakeBox(wid * 3);
        for (const auto& from : document.m_boxes) {
            for (const auto& to : document.m_boxes) {
                if (from->outputs.empty() || to->inputs.empty() || Below(3) == 0) continue;
                Wire(*from, Below(from->outputs.size()), *to, Below(to->inputs.size()));
            }
        }
        document.linetype = static_cast<int>(Below(2));
        document.lock = static_cast<int>(Below(2));
        for (float* number :
             {&document.offset[0], &document.offset[1], &document.zoom[0], &document.zoomFactor}) {
            *number = Number();
        }
    }

    std::mt19937 random{1};
};

TEST_F(RandomNetwork, SavedReadAndSavedAgainIsTheSameText) {
    for (unsigned seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE(seed);
        random.seed(seed);
        MakeNetwork();
        // The connections of an output stand in the order in which their buttons were made, which reading
        // brings into that of the file once and for all.
        std::vector<std::string> made = LinesOf(document.Store());
        Reload(document.Store());
        std::vector<std::string> read = LinesOf(document.Store());
        ThereAndBack();
        std::sort(made.begin(), made.end());
        std::sort(read.begin(), read.end());
        ExpectSameLines(read, made);
        if (HasFailure()) break;
    }
}

// A decimal comma in both ways that a program can be told of one: the C library's and that of the C++
// streams.
class CommaLocale {
  public:
    CommaLocale() : m_streams(std::locale::global(std::locale(std::locale(), new Comma))) {
        const std::string command =
            "localedef -i de_DE -f UTF-8 '" + (m_directory / "de_DE.UTF-8") + "' 2>/dev/null";
        EXPECT_EQ(std::system(command.c_str()), 0)
            << "the package locales is missing; scripts/setup.sh installs it";
        ::setenv("LOCPATH", m_directory.Path().c_str(), 1);
        std::setlocale(LC_ALL, "de_DE.UTF-8");
        ::unsetenv("LOCPATH");
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale() {
        std::setlocale(LC_ALL, "C");
        std::locale::global(m_streams);
    }

  private:
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    test::TempDir m_directory;
    std::locale m_streams;
};

TEST_F(RandomNetwork, TheUsersLocaleChangesNothing) {
    random.seed(99);
    MakeNetwork();
    document.toolbar.assign(1200, "op");
    BoxAt(document, 0).wid = 1234567;
    Reload(document.Store());
    const std::string text = document.Store();
    const CommaLocale locale;
    ExpectSameLines(LinesOf(document.Store()), LinesOf(text));
    Reload(text);
    ExpectSameLines(LinesOf(document.Store()), LinesOf(text));
}

}  // namespace
}  // namespace tavrin
