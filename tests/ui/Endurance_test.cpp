// SPDX-License-Identifier: Apache-2.0
// What a long day at the program leaves behind: nothing.
#include <malloc.h>

#include <QApplication>
#include <QTextBlock>
#include <QTextDocument>
#include <QThreadPool>
#include <QTimer>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "ui/base/Text.h"
#include "ui/log/LogEdit.h"
#include "ui/log/LogWindow.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;

using test::WaitUntil;
using testing::EndsWith;

constexpr int kWarmUp = 20;
constexpr int kRounds = 200;
constexpr long kMayGrow = 5 * 1024;  // kilobytes

// The address sanitizer keeps what was freed for a while, so that resident memory tells nothing.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kMemoryTells = false;
#else
constexpr bool kMemoryTells = true;
#endif

// Kilobytes that the process holds, without what the allocator could give back at once.
long ResidentMemory() {
    ::malloc_trim(0);
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:")) return std::stol(line.substr(6));
    }
    return 0;
}

long Entries(const char* directory) {
    return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
}

long Descriptors() { return Entries("/proc/self/fd"); }
long Threads() { return Entries("/proc/self/task"); }

// The toolkit keeps threads that have nothing to do for half a minute, so that those of tests before this one
// would end while it counts. They end here at once; one that was waited for may still stand in the system's
// list for a moment.
void EndIdleThreads() {
    constexpr const char* kName = "Thread (pooled)";
    QThreadPool::globalInstance()->waitForDone();
    EXPECT_TRUE(WaitUntil([] {
        for (const auto& thread : fs::directory_iterator("/proc/self/task")) {
            std::ifstream file(thread.path() / "comm");
            std::string name;
            if (std::getline(file, name) && name == kName) return false;
        }
        return true;
    }));
}

class EnduranceTest : public test::FrameTest {
  protected:
    // Deferred destructions included.
    void SettleAll() {
        Settle();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        Settle();
    }
    qsizetype Widgets() {
        SettleAll();
        return QApplication::allWidgets().size();
    }
    void OpenChangeSaveClose(const std::string& path) {
        ASSERT_TRUE(Frame().OpenDocumentFile(path));
        Settle();
        Do(CommandId::kShowVarnames);
        Settle();
        Do(CommandId::kSave);
        ASSERT_FALSE(Document().IsModified());
        Do(CommandId::kNew);
        Settle();
    }
};

TEST_F(EnduranceTest, ManyDocumentsOneAfterAnotherLeaveNothingBehind) {
    Start();
    Frame().resize(Frame().minimumSizeHint());  // what is drawn counts, not how much of it
    const std::string path = WriteDocument("round", 2);
    for (int round = 0; round < kWarmUp; ++round) OpenChangeSaveClose(path);
    Do(CommandId::kClearLog);
    const qsizetype widgets = Widgets();
    EndIdleThreads();
    const long descriptors = Descriptors();
    const long threads = Threads();
    const long memory = ResidentMemory();
    for (int round = 0; round < kRounds; ++round) OpenChangeSaveClose(path);
    Do(CommandId::kClearLog);
    EXPECT_EQ(Widgets(), widgets);
    EndIdleThreads();
    EXPECT_EQ(Descriptors(), descriptors);
    EXPECT_EQ(Threads(), threads);
    const long grown = ResidentMemory() - memory;
    if (kMemoryTells) {
        EXPECT_LE(grown, kMayGrow) << "kilobytes";
    }
    RecordProperty("kilobytes", std::to_string(grown));
}

TEST_F(EnduranceTest, FramesThatComeAndGoLeaveNothingBehind) {
    Start();
    End();
    SettleAll();
    const qsizetype widgets = Widgets();
    EndIdleThreads();
    const long descriptors = Descriptors();
    const long threads = Threads();
    for (int round = 0; round < 20; ++round) {
        Make();
        Frame().show();
        Settle();
        EXPECT_GT(QApplication::allWidgets().size(), widgets);
        End();
    }
    EXPECT_EQ(Widgets(), widgets);
    EndIdleThreads();
    EXPECT_TRUE(WaitUntil([&] { return Threads() == threads; })) << Threads() << ", before " << threads;
    EXPECT_EQ(Descriptors(), descriptors);
}

TEST_F(EnduranceTest, AFloodOfOutputLeavesTheFrameResponsiveAndTheLogEndsRight) {
    fs::permissions(directory.Write("tavrin/tiny/bin/renderit",
                                    "#!/usr/bin/perl\n"
                                    "my $line = ('x' x 99) . \"\\n\";\n"
                                    "print $line x 1000 for 1 .. 100;\n"
                                    "print \"the last word\\n\";\n"),
                    fs::perms::owner_all);
    Start();
    AddBoxes(1);
    const auto lastLine = [this] {
        return Bytes(Frame().Windows().Get<LogWindow>().Edit().document()->lastBlock().previous().text());
    };
    int ticks = 0;
    QTimer timer;
    timer.setInterval(1);
    timer.callOnTimeout([&] { ++ticks; });
    timer.start();
    Do(CommandId::kRenderIt);
    ASSERT_TRUE(WaitUntil([&] { return lastLine() == "the last word"; }));
    EXPECT_GE(ticks, 5);  // it lived meanwhile
    Settle();
    EXPECT_THAT(Log(), EndsWith(std::string(99, 'x') + "\nthe last word\n"));
    EXPECT_LE(Log().size(), static_cast<size_t>(kLogTextLimit));
}

}  // namespace
}  // namespace tavrin
