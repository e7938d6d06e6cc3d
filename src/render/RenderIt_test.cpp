// SPDX-License-Identifier: Apache-2.0
// Renders: what must hold before one starts, its history entry, its command, and stopping it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <thread>

#include "render/RenderSession.h"
#include "site/Site.h"
#include "support/Patience.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

// Stands for the launcher: notes its words, then runs until it is let go or told to stop.
constexpr const char* kPerlExec =
    "#!/bin/sh\n"
    "printf '<%s>' \"$@\" >> \"$TAVRN_WORKDIR/render.words\"\n"
    "until [ -e \"$TAVRN_WORKDIR/go\" ] || [ -e \"$TAVRN_KILLFILE\" ]; do sleep 0.005; done\n"
    "exit 5\n";

class RenderItTest : public test::DocumentTest {
  protected:
    RenderItTest() {
        const std::string bin = host.Directory() / "bin";
        host.Directory().Write("bin/PerlExec", kPerlExec);
        fs::permissions(bin + "/PerlExec", fs::perms::owner_all);
        site.environment.Set("PATH", bin + ":/usr/bin:/bin");
        Filter("");
        document.SetPath("/documents/plastic.tvn");
        Add(test::MakeLink("Link", 1));
    }
    ~RenderItTest() override {
        LetGo();
        WaitForEnd();
    }

    // What runs in the place of the filter script.
    void Filter(const std::string& text) const {
        host.Directory().Write("installation/mini/bin/redirect.pl", text);
    }
    std::string InWork(const std::string& name) const { return site.WorkPath(name); }
    void LetGo() const { host.Directory().Write("work/go", ""); }
    static bool WaitUntil(const std::function<bool()>& condition) {
        const auto limit = std::chrono::steady_clock::now() + test::kPatience;
        while (!condition()) {
            if (std::chrono::steady_clock::now() > limit) return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return true;
    }
    bool WaitForEnd() const {
        return WaitUntil([this] { return !site.commands.AnyProcessLeft(); });
    }
    // What children have posted.
    void RunPending() { host.RunPending(); }
    std::string Words() const { return test::ReadFile(InWork("render.words")); }
    std::string WordsOf(const std::string& name, int number) const {
        return "<" + site.directories.libDir + "/bin/renderit><" + name + "><" + std::to_string(number) + ">";
    }

    Site& site = host.GetSite();
    CCodeGen siteCodeGen;
    RenderSession session{document, site, siteCodeGen};
};

TEST_F(RenderItTest, AnEmptyDeskIsNotRendered) {
    document.m_boxes.clear();
    EXPECT_FALSE(session.RenderIt());
    EXPECT_THAT(Alerts(), ElementsAre("desk is empty"));
    EXPECT_EQ(session.m_nextRender, 1);
    EXPECT_TRUE(fs::is_empty(site.directories.workDir));
}

TEST_F(RenderItTest, TheScriptIsToldTheNameAndTheNumberAndIsNotWaitedFor) {
    EXPECT_TRUE(session.RenderIt());
    EXPECT_TRUE(site.commands.AnyChildRunning());
    LetGo();
    EXPECT_TRUE(WaitForEnd());
    EXPECT_EQ(Words(), WordsOf("plastic", 1));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(RenderItTest, TheShaderIsSavedFirst) {
    Filter("open my $out, '>', \"$ENV{TAVRN_WORKDIR}/saved\";\n");
    EXPECT_TRUE(session.RenderIt());
    EXPECT_TRUE(fs::exists(InWork("saved")));
    EXPECT_TRUE(fs::exists(InWork("codegenfile")));
}

TEST_F(RenderItTest, AShaderThatCannotBeSavedIsNotRendered) {
    Filter("exit 1;\n");
    EXPECT_FALSE(session.RenderIt());
    EXPECT_EQ(session.m_nextRender, 1);
    EXPECT_FALSE(fs::exists(InWork("1")));
    EXPECT_FALSE(site.commands.AnyProcessLeft());
}

TEST_F(RenderItTest, TheHistoryKeepsTheDocumentAsItWouldBeSaved) {
    document.SetModified();
    EXPECT_TRUE(session.RenderIt());
    EXPECT_EQ(test::ReadFile(InWork("1/plastic.tvn")), document.Store());
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(document.Path(), "/documents/plastic.tvn");
}

TEST_F(RenderItTest, NumbersGrowWithEveryRender) {
    LetGo();
    EXPECT_TRUE(session.RenderIt());
    EXPECT_TRUE(WaitForEnd());
    document.SetPath("");
    EXPECT_TRUE(session.RenderIt());
    EXPECT_TRUE(WaitForEnd());
    EXPECT_EQ(Words(), WordsOf("plastic", 1) + WordsOf("Untitled", 2));
    EXPECT_EQ(session.m_nextRender, 3);
    EXPECT_TRUE(fs::exists(InWork("1/plastic.tvn")));
    EXPECT_TRUE(fs::exists(InWork("2/Untitled.tvn")));
}

TEST_F(RenderItTest, ARenderWithoutHistoryTakesANumberAllTheSame) {
    LetGo();
    session.m_keepHistory = false;
    EXPECT_TRUE(session.RenderIt());
    EXPECT_FALSE(fs::exists(InWork("1")));
    session.m_keepHistory = true;
    EXPECT_TRUE(session.RenderIt());
    EXPECT_TRUE(fs::exists(InWork("2/plastic.tvn")));
}

TEST_F(RenderItTest, AHistoryFileThatCannotBeMadeStopsTheRenderAndKeepsTheNumber) {
    host.Directory().Write("work/1", "in the way");
    EXPECT_FALSE(session.RenderIt());
    EXPECT_THAT(Alerts(), ElementsAre("unable to create history file " + InWork("1/plastic.tvn")));
    EXPECT_EQ(session.m_nextRender, 1);
    EXPECT_FALSE(site.commands.AnyProcessLeft());
    fs::remove(InWork("1"));
    EXPECT_TRUE(session.RenderIt());
    EXPECT_TRUE(fs::exists(InWork("1/plastic.tvn")));
}

TEST_F(RenderItTest, AHistoryDirectoryThatIsThereAlreadyIsUsed) {
    host.Directory().Write("work/1/picture", "");
    EXPECT_TRUE(session.RenderIt());
    EXPECT_TRUE(fs::exists(InWork("1/plastic.tvn")));
}

TEST_F(RenderItTest, OneRenderAtATimeWhereSeveralAreNotAllowed) {
    session.m_multipleRenders = false;
    EXPECT_TRUE(session.RenderIt());
    fs::remove(InWork("codegenfile"));
    EXPECT_FALSE(session.RenderIt());
    EXPECT_THAT(Alerts(), ElementsAre("script is running"));
    EXPECT_EQ(session.m_nextRender, 2);
    EXPECT_FALSE(fs::exists(InWork("codegenfile")));
    LetGo();
    EXPECT_TRUE(WaitForEnd());
    EXPECT_TRUE(session.RenderIt());
}

TEST_F(RenderItTest, SeveralRendersRunAtATimeUnlessToldOtherwise) {
    EXPECT_TRUE(session.RenderIt());
    EXPECT_TRUE(session.RenderIt());
    EXPECT_TRUE(WaitUntil([this] { return Words().size() == WordsOf("plastic", 1).size() * 2; }));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(RenderItTest, StoppingLeavesAKillFileForEachRenderThatRuns) {
    EXPECT_TRUE(session.RenderIt());
    EXPECT_TRUE(session.RenderIt());
    session.StopRender();
    EXPECT_TRUE(fs::exists(InWork("kill.1")));
    EXPECT_TRUE(fs::exists(InWork("kill.2")));
    EXPECT_FALSE(fs::exists(InWork("kill.3")));
    EXPECT_TRUE(WaitForEnd());
}

TEST_F(RenderItTest, AfterStoppingTheNextRenderMayStartAtOnce) {
    session.m_multipleRenders = false;
    EXPECT_TRUE(session.RenderIt());
    session.StopRender();
    EXPECT_FALSE(site.commands.AnyChildRunning());
    EXPECT_TRUE(session.RenderIt());
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(RenderItTest, StoppingWithNothingRunningLeavesNoFile) {
    session.StopRender();
    EXPECT_TRUE(fs::is_empty(site.directories.workDir));
}

long Entries(const char* directory) {
    return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
}

TEST_F(RenderItTest, ThreeHundredRendersInOneProcessLeaveNothingBehind) {
    constexpr int kWarmUp = 20;
    constexpr int kRenders = 300;
    LetGo();
    session.m_keepHistory = false;  // what the user wants kept is no growth
    const auto render = [this](int count) {
        for (int i = 0; i < count; ++i) {
            ASSERT_TRUE(session.RenderIt());
            ASSERT_TRUE(WaitForEnd());
            RunPending();
        }
    };
    render(kWarmUp);
    const long descriptors = Entries("/proc/self/fd");
    const long threads = Entries("/proc/self/task");
    const long files = Entries(InWork("").c_str());
    [[maybe_unused]] const size_t memory = ::mallinfo2().uordblks;
    render(kRenders);
    EXPECT_EQ(Entries("/proc/self/fd"), descriptors);
    EXPECT_LE(Entries("/proc/self/task"), threads + 1) << "one that has ended may still be listed";
    EXPECT_EQ(Entries(InWork("").c_str()), files);
    EXPECT_EQ(session.m_nextRender, kWarmUp + kRenders + 1);
    EXPECT_THAT(Alerts(), IsEmpty());
#ifndef __SANITIZE_ADDRESS__  // which keeps what was freed for a while
    EXPECT_LT(::mallinfo2().uordblks, memory + kRenders * 64);
#endif
}

}  // namespace
}  // namespace tavrin
