// SPDX-License-Identifier: Apache-2.0
// The program on displays that lack what the desk is drawn with.
#include "ui/base/Text.h"
#include "ui/support/RunningProgram.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::RunningProgram;
using testing::AllOf;
using testing::HasSubstr;

struct Lack {
    const char* name;
    const char* variable;  // that makes the platform so poor
    const char* value;
    const char* message;
};

class PoorDisplay : public test::FrameTest {};
class NoOpenGl : public test::FrameTest, public testing::WithParamInterface<Lack> {};

TEST_P(NoOpenGl, IsToldInABoxAndOnStandardErrorAndEndsTheProgram) {
    environment.Set(GetParam().variable, GetParam().value);
    RunningProgram run(environment, {});
    run.Answer("^Fatal Error$");
    EXPECT_EQ(run.Status(), 1);
    EXPECT_THAT(
        run.Errors(),
        AllOf(HasSubstr("tavrin: FATAL ERROR: the desk needs OpenGL 1.1 or later with the compatibility "
                        "profile, but this display has "),
              HasSubstr(GetParam().message), HasSubstr("OpenGL driver")));
}

INSTANTIATE_TEST_SUITE_P(Lacks, NoOpenGl,
                         testing::Values(Lack{"None", "QT_XCB_GL_INTEGRATION", "none", "no OpenGL. "},
                                         Lack{"OnlyCore", "MESA_GL_VERSION_OVERRIDE", "3.3FC",
                                              "only the core profile of 3.3. "},
                                         Lack{"TooOld", "MESA_GL_VERSION_OVERRIDE", "1.0", "only 1.0. "}),
                         [](const auto& lack) { return std::string(lack.param.name); });

TEST_F(PoorDisplay, WithoutAnyFontTheProgramSaysSoAndEnds) {
    environment.Set("FONTCONFIG_FILE",
                    directory.Write("none.conf", "<?xml version=\"1.0\"?><fontconfig></fontconfig>\n"));
    Make();
    const QString document = Shown(WriteDocument("one.tvn"));
    End();
    for (const QStringList& words : {QStringList{}, QStringList{document}}) {
        RunningProgram run(environment, words);
        run.Answer("^Fatal Error$");
        EXPECT_EQ(run.Status(), 255);
        const std::string errors = run.Errors();
        EXPECT_THAT(errors, HasSubstr("tavrin: FATAL ERROR: 3 point font unavailable\n"));
        EXPECT_EQ(errors.find("FATAL"), errors.rfind("FATAL")) << errors;  // told once
    }
}

}  // namespace
}  // namespace tavrin
