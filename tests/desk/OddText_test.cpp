// SPDX-License-Identifier: Apache-2.0
// Texts of every script, and bytes that are no text, go through library and document as they stand.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using testing::IsEmpty;

const std::vector<std::string>& Names() {
    static const std::vector<std::string> names{
        "Gr\xC3\xB6\xC3\x9F"
        "e",                                                 // Latin with marks
        "\xD0\xA6\xD0\xB2\xD0\xB5\xD1\x82",                  // Cyrillic
        "\xE9\xA2\x9C\xE8\x89\xB2\xE6\xB7\xB7\xE5\x90\x88",  // Chinese
        "\xF0\x9F\x8E\xA8",                                  // outside the basic plane
        "e\xCC\x81\xCC\x81",                                 // marks upon a letter
        "a\x01\x1B[31mb\x7F",                                // control characters
        "\xFF\xFE\xC3\x28",                                  // no text at all
    };
    return names;
}

class OddText : public test::DocumentTest, public testing::WithParamInterface<std::string> {
  protected:
    OddText() { host.startsProcesses = false; }
};

TEST_P(OddText, ComesBackFromTheFile) {
    const std::string& name = GetParam();
    host.AddOperator(name, "boxhelp {\n" + name + "\n}\nicontext \"" + name + "\"\ninput " + name +
                               " {\nfloat { 0 0 1 0 %g }\nhelp {\n" + name +
                               "\n}\n}\noutput out { float out }\n");
    test::RecordingView view{document};
    test::SeenDesk desk(document, host, view);
    desk.AddOperator(name);
    desk.DropPending();
    EXPECT_THAT(Alerts(), IsEmpty());
    ASSERT_EQ(document.m_boxes.size(), 1U);
    COpButton& input = *test::BoxAt(document, 0).inputs.at(0);
    input.argname = name + " \"" + name + "\"";
    input.comments = name + "\t" + name;
    document.customshaderhelp = name;
    const std::string text = document.Store();

    document.DeleteContents();
    ASSERT_TRUE(Load(text)) << Alerts().back();
    ASSERT_EQ(document.m_boxes.size(), 1U);
    const COpBox& box = test::BoxAt(document, 0);
    EXPECT_EQ(box.filename, name);
    EXPECT_EQ(box.icontext, name);
    EXPECT_EQ(box.boxhelp, name);
    EXPECT_EQ(box.inputs.at(0)->name, name);
    EXPECT_EQ(box.inputs.at(0)->help, name);
    EXPECT_EQ(box.inputs.at(0)->argname, name + " \"" + name + "\"");
    EXPECT_EQ(box.inputs.at(0)->comments, name + "\t" + name);
    EXPECT_EQ(document.Store(), text);
}

INSTANTIATE_TEST_SUITE_P(Names, OddText, testing::ValuesIn(Names()),
                         [](const auto& test) { return std::to_string(test.index); });

}  // namespace
}  // namespace tavrin
