// SPDX-License-Identifier: Apache-2.0
// The program as its users run it, with the library of the installation.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "base/FileDescriptor.h"
#include "base/Process.h"
#include "batch/CommandLine.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

struct Outcome {
    int status = -1;
    std::string data;  // standard output
    std::string log;   // standard error
};

class BatchRunTest : public testing::Test {
  protected:
    BatchRunTest() {
        fs::create_directories(m_directory / "tmp");
        for (const char* name : {"TAVRN_DIR", "TAVRN_LIB", "TEMP", "homeDrive", "homePath",
                                 "SOURCE_DATE_EPOCH", "XDG_STATE_HOME"}) {
            environment.Unset(name);
        }
        environment.Set("HOME", m_directory / "home");
        environment.Set("TAVRN_TMPDIR", m_directory / "tmp");
        // What the platform's OpenGL driver does not free is none of our leaks, where they are looked for.
        environment.Set("LSAN_OPTIONS", "detect_leaks=0");
    }

    Outcome Run(std::vector<std::string> words) {
        words.insert(words.begin(), test::BuildPath("bin/tavrin-batch"));
        const auto open = [this](const char* name) {
            return FileDescriptor(
                ::open((m_directory / name).c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
        };
        const FileDescriptor data = open("data");
        const FileDescriptor log = open("log");
        std::string error;
        const pid_t process = Spawn({words, environment.ToList(), -1, data.Get(), log.Get()}, error);
        EXPECT_GE(process, 0) << error;
        const int status = WaitForEnd(process);
        EXPECT_TRUE(fs::is_empty(m_directory / "tmp")) << "the work directory is left";
        return {status, test::ReadFile(m_directory / "data"), test::ReadFile(m_directory / "log")};
    }
    static std::string Example(const std::string& name) {
        return test::SourcePath("examples/" + name + ".tvn");
    }
    static std::vector<std::string> Examples() {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(test::SourcePath("examples"))) {
            if (entry.path().extension() == ".tvn") names.push_back(entry.path().stem());
        }
        EXPECT_GE(names.size(), 3U);
        return names;
    }
    std::string In(const std::string& name) const { return m_directory / name; }
    std::string Read(const std::string& name) const { return test::ReadFile(In(name)); }

    Environment environment = Environment::FromProcess();

  private:
    test::TempDir m_directory;
};

// "WIDTHxHEIGHT" of a picture; what it begins with if it is no PNG.
std::string SizeOfPng(const std::string& picture) {
    constexpr std::string_view kSignature = "\x89PNG\r\n\x1a\n";
    constexpr size_t kWidthAt = 16;
    if (!picture.starts_with(kSignature) || picture.size() < kWidthAt + 8) return picture.substr(0, 8);
    const auto number = [&picture](size_t at) {
        unsigned value = 0;
        for (size_t i = 0; i < 4; ++i) value = value << 8U | static_cast<unsigned char>(picture[at + i]);
        return std::to_string(value);
    };
    return number(kWidthAt) + "x" + number(kWidthAt + 4);
}

TEST_F(BatchRunTest, SavingTheShaderOfEachExampleSucceeds) {
    for (const std::string& name : Examples()) {
        const Outcome run = Run({Example(name), "--save-shader", "--keep-work", In(name)});
        EXPECT_EQ(run.status, 0) << run.log;
        EXPECT_EQ(run.data, "");
        EXPECT_EQ(run.log, "");
        // The lava is a module, a function to be included; the others are whole shaders.
        EXPECT_THAT(Read(name + "/" + name),
                    StartsWith(name == "lava" ? "#ifndef TAVRN_MODULE_lava\n" : "#version 330 core\n"));
        EXPECT_THAT(Read(name + "/codegenfile"), AllOf(StartsWith("Help\n{\n"), HasSubstr("\nEndArginfo\n")));
    }
}

TEST_F(BatchRunTest, ARenderMakesThePictureThatTheDocumentAsksFor) {
    const Outcome run = Run({Example("brick"), "--render", "--keep-work", In("kept")});
    EXPECT_EQ(run.status, 0) << run.log;
    EXPECT_EQ(run.data, "");
    EXPECT_THAT(run.log, AllOf(StartsWith("rendering brick (render 1, 480x360, "), HasSubstr("\nwrote ")));
    EXPECT_EQ(SizeOfPng(Read("kept/1/brick.png")), "480x360");
    EXPECT_THAT(Read("kept/1/brick.tvn"), StartsWith("# Tavrn file written at "));
}

TEST_F(BatchRunTest, APictureThatIsAskedForIsKept) {
    const Outcome run =
        Run({Example("brick"), "--set", "MRAY_SIZE=64,48", "--render", "--picture", In("a brick.png")});
    EXPECT_EQ(run.status, 0) << run.log;
    EXPECT_THAT(run.log, testing::EndsWith("\nwrote " + In("a brick.png") + "\n"));
    EXPECT_EQ(SizeOfPng(Read("a brick.png")), "64x48");
}

TEST_F(BatchRunTest, ARenderNamesNoFileThatIsAboutToBeRemoved) {
    Outcome run = Run({Example("brick"), "--set", "MRAY_SIZE=64,48", "--render"});
    EXPECT_EQ(run.status, 0) << run.log;
    EXPECT_THAT(run.log,
                testing::EndsWith("\nrendered brick; its picture is not kept: --picture FILE keeps it\n"));
    EXPECT_THAT(run.log, Not(HasSubstr(In("tmp"))));
    run = Run({Example("brick"), "--set", "MRAY_SIZE=64,48", "--render", "--keep-work", In("kept")});
    EXPECT_THAT(run.log, testing::EndsWith("\nwrote " + In("kept/1/brick.png") + "\n"));
    EXPECT_EQ(SizeOfPng(Read("kept/1/brick.png")), "64x48");
}

TEST_F(BatchRunTest, ARenderOptionChangesThePictureOfTheRendersBehindIt) {
    const Outcome run =
        Run({Example("brick"), "--set", "MRAY_SAMPLES=1", "--set", "MRAY_SIZE=64,48", "--render", "--set",
             "MRAY_SIZE=32,40", "--render", "--keep-work", In("kept"), "--quiet"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.log, "");
    EXPECT_EQ(SizeOfPng(Read("kept/1/brick.png")), "64x48");
    EXPECT_EQ(SizeOfPng(Read("kept/2/brick.png")), "32x40");
}

TEST_F(BatchRunTest, ASavedDocumentIsTheSameWhenItIsSavedAgain) {
    environment.Set("SOURCE_DATE_EPOCH", "1000000000");
    for (const std::string& name : Examples()) {
        EXPECT_EQ(Run({Example(name), "--save", In("one.tvn")}).status, 0);
        EXPECT_EQ(Run({In("one.tvn"), "--save", In("two.tvn"), "--save", In("three.tvn")}).status, 0);
        EXPECT_THAT(Read("one.tvn"), AllOf(StartsWith("# Tavrn file written at Sun Sep 09 01:46:40 2001\r\n"),
                                           HasSubstr("\r\ntavrn-version 1.3.32\r\n"),
                                           HasSubstr("\r\ntavrn-renderer mray\r\n")));
        EXPECT_EQ(Read("two.tvn"), Read("one.tvn"));
        EXPECT_EQ(Read("three.tvn"), Read("one.tvn"));
    }
}

TEST_F(BatchRunTest, StepsAreDoneInTheirOrder) {
    EXPECT_EQ(Run({"--save", In("before.tvn"), "--set", "MRAY_SIZE=1,2", "--save", In("after.tvn")}).status,
              0);
    EXPECT_THAT(Read("before.tvn"), HasSubstr("    setenv MRAY_SIZE \"320,240\"\r\n"));
    EXPECT_THAT(Read("after.tvn"), HasSubstr("    setenv MRAY_SIZE \"1,2\"\r\n"));
}

TEST_F(BatchRunTest, AnOptionThatTheFormDoesNotHaveIsAnErrorWithTheNearestName) {
    const Outcome run = Run({"--set", "MARY_SIZE=1,2", "--save", In("new.tvn")});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.log,
                StartsWith("ALERT: --set MARY_SIZE: the library's form has no such render option; there "
                           "is MRAY_SIZE"));
    EXPECT_THAT(Read("new.tvn"), Not(HasSubstr("MARY_SIZE")));
}

TEST_F(BatchRunTest, TheOperatorsOfTheLibraryAreListed) {
    const Outcome run = Run({"--list-operators"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.log, "");
    const std::string menu = test::BuildPath("share/tavrin/mray/menu/");
    EXPECT_THAT(run.data, StartsWith("Noise\tPatterns\t" + menu + "0100.Patterns/0010.Noise\n"));
    EXPECT_THAT(run.data, HasSubstr("\nSurface\tOutputs\t" + menu + "0600.Outputs/0010.Surface\n"));
}

TEST_F(BatchRunTest, AnOperatorIsDescribedByItsNameInAnyCase) {
    const Outcome run = Run({"--describe", "surface"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.data, AllOf(StartsWith("Surface\n    Surface: "), HasSubstr("\ninput colour\n"),
                                HasSubstr("\n    rgb: 0.5 0.5 0.5\n")));
}

TEST_F(BatchRunTest, AnUnknownOperatorIsNotDescribed) {
    const Outcome run = Run({"--describe", "Nois", "--describe", "Surface"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.log, "ALERT: Nois: unknown operator name\n");
    EXPECT_THAT(run.data, StartsWith("Surface\n"));
}

TEST_F(BatchRunTest, ADocumentAloneIsOpenedAndChecked) {
    const Outcome run = Run({Example("paint")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.data + run.log, "");
}

TEST_F(BatchRunTest, TheInstallationOfTheEnvironmentIsUsed) {
    environment.Set("TAVRN_DIR", test::SourcePath("installation"));
    environment.Set("TAVRN_LIB", "/anywhere/mray");
    EXPECT_THAT(Run({"--list-operators"}).data,
                HasSubstr("\t" + test::SourcePath("installation/mray/menu/")));
}

TEST_F(BatchRunTest, HelpAndVersionReplaceEverythingElse) {
    environment.Set("TAVRN_DIR", In("nowhere"));
    const Outcome help = Run({In("missing.tvn"), "--render", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.data, CommandLine::HelpText());
    EXPECT_EQ(help.log, "");
    const Outcome version = Run({"--version", "--help"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.data, "tavrin-batch 1.3.32.0\n");
    EXPECT_EQ(Run({"--help", "--version"}).data, CommandLine::HelpText());
}

TEST_F(BatchRunTest, AWrongCommandLineDoesNothing) {
    for (const std::vector<std::string>& words : {std::vector<std::string>{},
                                                  {"--quiet"},
                                                  {"--save", In("new.tvn"), "--rendr"},
                                                  {"--help", "--rendr"},
                                                  {"a.tvn", "b.tvn"}}) {
        const Outcome run = Run(words);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.data, "");
        EXPECT_THAT(run.log,
                    AllOf(StartsWith("tavrin-batch: "), testing::EndsWith("; see tavrin-batch --help\n")));
    }
    EXPECT_FALSE(fs::exists(In("new.tvn")));
    EXPECT_EQ(Run({}).log, "tavrin-batch: nothing to do; see tavrin-batch --help\n");
}

}  // namespace
}  // namespace tavrin
