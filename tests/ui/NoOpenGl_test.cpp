// The program on displays without the OpenGL that the desk is drawn with.
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

class NoOpenGl : public test::FrameTest, public testing::WithParamInterface<Lack> {};

TEST_P(NoOpenGl, IsToldInABoxAndOnStandardErrorAndEndsTheProgram) {
    environment.Set(GetParam().variable, GetParam().value);
    RunningProgram run(environment, {});
    run.Press("^Fatal Error$", "Return");
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

}  // namespace
}  // namespace tavrin
