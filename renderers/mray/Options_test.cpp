// SPDX-License-Identifier: Apache-2.0
#include "Options.h"

#include <gtest/gtest.h>

namespace tavrin::mray {
namespace {

TEST(Options, DefaultsAndFiles) {
    const Options options = parseOptions({"a.frag", "b.png"});
    EXPECT_EQ(options.shader, "a.frag");
    EXPECT_EQ(options.output, "b.png");
    EXPECT_EQ(options.width, 320);
    EXPECT_EQ(options.height, 240);
    EXPECT_EQ(options.samples, 4);
}

TEST(Options, ReadsValuesInBothForms) {
    const Options options =
        parseOptions({"--size", "64x48", "--object=vase", "--light", "rim", "--background=white",
                      "--exposure", "0.5", "--samples=16", "--quiet", "--", "-a", "b"});
    EXPECT_EQ(options.width, 64);
    EXPECT_EQ(options.height, 48);
    EXPECT_EQ(options.object, ObjectKind::Vase);
    EXPECT_EQ(options.light, LightKind::Rim);
    EXPECT_EQ(options.backdrop, BackdropKind::White);
    EXPECT_FLOAT_EQ(options.exposure, 0.5f);
    EXPECT_EQ(options.samples, 16);
    EXPECT_TRUE(options.quiet);
    EXPECT_EQ(options.shader, "-a");
}

TEST(Options, RefusesWhatMakesNoSense) {
    const std::vector<std::vector<std::string>> bad{
        {}, {"a"}, {"a", "b", "c"}, {"--size"}, {"--nope", "a", "b"}, {"--quiet=1", "a", "b"}};
    for (const auto& arguments : bad) {
        EXPECT_THROW(parseOptions(arguments), UsageError);
    }
    for (const char* size :
         {"", "1", "1,", ",1", "0,1", "1,-1", "8193,1", "8192,8192", "1,1,1", "99999999999,1"}) {
        EXPECT_THROW(parseOptions({"--size", size, "a", "b"}), UsageError) << size;
    }
    for (const char* exposure : {"", "0", "-1", "nan", "inf", "1001", "1x"}) {
        EXPECT_THROW(parseOptions({"--exposure", exposure, "a", "b"}), UsageError) << exposure;
    }
    EXPECT_THROW(parseOptions({"--samples", "3", "a", "b"}), UsageError);
    EXPECT_THROW(parseOptions({"--object", "pot", "a", "b"}), UsageError);
}

TEST(Options, FilesHaveNames) {
    const Options options = parseOptions({"--part", "p", "--values=v", "--coarse", "c", "a.frag", "b.png"});
    EXPECT_EQ(options.part, "p");
    EXPECT_EQ(options.values, "v");
    EXPECT_EQ(options.coarse, "c");
    for (const char* name : {"--part=", "--values=", "--coarse="}) {
        EXPECT_THROW(parseOptions({name, "a", "b"}), UsageError) << name;
    }
}

TEST(Options, OneThatStaysIsToldItsFilesLater) {
    EXPECT_TRUE(parseOptions({"--live"}).live);
    EXPECT_THROW(parseOptions({"--live", "a", "b"}), UsageError);
}

TEST(Options, HelpNeedsNoFiles) {
    EXPECT_TRUE(parseOptions({"--help"}).help);
    EXPECT_TRUE(parseOptions({"--version"}).version);
}

}  // namespace
}  // namespace tavrin::mray
