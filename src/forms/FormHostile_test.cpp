// SPDX-License-Identifier: Apache-2.0
// Forms that are damaged, cut off, or larger than anybody would write.
#include "forms/FormReader.h"
#include "forms/FormTestHost.h"

namespace tavrin::test {

class FormHostile : public FormTest {};

TEST_F(FormHostile, FramesNestUpToALimit) {
    const auto nested = [](int depth) {
        std::string text = "{\n";
        for (int i = 0; i < depth; ++i) text += "frame {\n";
        for (int i = 0; i < depth; ++i) text += "}\n";
        return text + "}\n";
    };
    EXPECT_TRUE(Read(nested(FormReader::kMostNestedFrames)));
    EXPECT_TRUE(Read(nested(FormReader::kMostNestedFrames))) << "depth is not kept between sections";
    for (const int depth : {FormReader::kMostNestedFrames + 1, 100000}) {
        sink.alerts.clear();
        EXPECT_FALSE(Read(nested(depth)));
        EXPECT_EQ(sink.LastAlert(), "site.def near line 203: frames nested too deeply");
    }
    EXPECT_EQ(form.children.size(), 2U);
    EXPECT_TRUE(Read("{\nframe {\n" +
                     [] {
                         std::string siblings;
                         for (int i = 0; i < 1000; ++i) siblings += "frame {\n}\n";
                         return siblings;
                     }() +
                     "}\n}\n"))
        << "frames side by side are not nested";
}

TEST_F(FormHostile, AnyCutOfAFormIsReadOrRefused) {
    for (const std::string& text : {kExampleForm, WithCrLf(kExampleForm)}) {
        for (size_t length = 3; length <= text.size(); ++length) {
            form.ClearAll(host);
            sink.alerts.clear();
            const bool read = Read(text.substr(3, length - 3));
            EXPECT_LE(form.children.size(), 2U);
            EXPECT_LE(sink.alerts.size(), read ? 0U : 1U) << length;
            form.BroadcastOption("RENDER_DEPTH", "1");
            form.LoadDefaults(host);
        }
    }
}

TEST_F(FormHostile, NoiseIsReadOrRefused) {
    unsigned state = 12345;
    const auto next = [&] { return state = state * 1664525U + 1013904223U, state >> 8; };
    for (int round = 0; round < 300; ++round) {
        std::string noise = "{\n";
        for (int i = 0; i < 2000; ++i) noise += static_cast<char>(next() & 0xff);
        Read(noise);
        std::string damaged = kExampleForm.substr(3);
        for (int i = 0; i < 5; ++i) damaged[next() % damaged.size()] = "{}\n\"#\\\0 \xff"[next() % 9];
        Read(damaged);
        form.LoadDefaults(host);
        form.ClearAll(host);
    }
}

TEST_F(FormHostile, UnbalancedBracesEndTheSectionOrAreRefused) {
    EXPECT_TRUE(Read("{\n}\n}\n}\n"));
    EXPECT_EQ(rest, "}\n}\n");
    EXPECT_FALSE(Read("{{{{{{"));
    EXPECT_FALSE(Read("{\n{\n{\n{\n"));
    EXPECT_EQ(sink.LastAlert(), "site.def near line 3: unexpected input");
    EXPECT_FALSE(Read("{\n{\nx\n"));
    EXPECT_EQ(sink.LastAlert(), "site.def near line 3: expected opening brace");
}

TEST_F(FormHostile, LongLinesAreRead) {
    const std::string text(10 << 20, 'x');
    EXPECT_EQ(ReadOne<CFormLabel>("label", "label " + text).label.size(), text.size());
    EXPECT_EQ(ReadOne<CFormXField>("xfield", "optioncontents {\n" + text + "\n}").presets.Lines()[1].size(),
              text.size());
    EXPECT_FALSE(Read("{\n" + text));
    EXPECT_FALSE(Read(text));
    EXPECT_FALSE(Read("{ " + std::string(10 << 20, '{')));
}

TEST_F(FormHostile, ManyWidgetsAndLinesAreReadInLinearTime) {
    std::string text = "{\n";
    for (int i = 0; i < 50000; ++i) text += "chooser {\nchoosercontents {\na\nb\n}\n}\n";
    text += "chooser {\nchoosercontents {\n";
    for (int i = 0; i < 500000; ++i) text += "line\n";
    EXPECT_TRUE(Read(text));
    EXPECT_EQ(form.children.size(), 50001U);
    EXPECT_EQ(Child<CFormChooser>(form, 50000).lines.size(), 500000U);
}

TEST_F(FormHostile, ADirectoryIsNoForm) {
    std::string error;
    EXPECT_FALSE(CArchive::Open("/tmp", error).has_value());
    EXPECT_FALSE(error.empty());
}

TEST_F(FormHostile, TheEndOfTheFileClosesWhatIsOpen) {
    for (const char* text :
         {"{", "{\nframe {", "{\nframe {\n{\nvertical 2", "{\nframe {\nlabel {\nlabel a",
          "{\nframe {\nxfield {\noptioncontents {\n1", "{\nxfield {\nhelp {\na", "{\nlabel\n{"}) {
        EXPECT_TRUE(Read(text)) << text;
    }
    EXPECT_TRUE(sink.alerts.empty());
    ASSERT_EQ(form.children.size(), 6U);
    EXPECT_EQ(Child<CFormFrame>(form, 1).count, 2);
    EXPECT_EQ(ListOf(Child<CFormXField>(Child<CFormFrame>(form, 3), 0).presets), (Lines{"", "1"}));
    EXPECT_EQ(Child<CFormXField>(form, 4).help, "a");
    EXPECT_EQ(form.placed, 6U);
}

TEST_F(FormHostile, TheEndOfTheFileIsNoOpeningBrace) {
    for (const char* text : {"", " \n", "{\nlabel", "{\nframe {\nlabel", "{\nxfield {\nhelp",
                             "{\nchooser {\nchoosercontents x"}) {
        EXPECT_FALSE(Read(text)) << text;
    }
    EXPECT_TRUE(form.children.empty());
    EXPECT_TRUE(sink.alerts.empty());
}

}  // namespace tavrin::test
