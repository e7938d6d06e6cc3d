// SPDX-License-Identifier: Apache-2.0
#include "base/Interruption.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "base/FileDescriptor.h"
#include "base/Process.h"
#include "support/NoRoom.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

// A process of its own that holds an Interruption until it is told to end. It reports by single letters:
// R when it is ready, T and K for the signals that are to be passed on.
class InterruptionTest : public testing::Test {
  protected:
    void Start(int ignored = 0) {
        int orders[2];
        int reports[2];
        ASSERT_EQ(::pipe(orders), 0);
        ASSERT_EQ(::pipe(reports), 0);
        m_orders = FileDescriptor(orders[1]);
        m_reports = FileDescriptor(reports[0]);
        m_process = ::fork();
        if (m_process == 0) {
            ::close(orders[1]);
            Live(orders[0], reports[1], ignored);
        }
        ::close(orders[0]);
        ::close(reports[1]);
        ASSERT_EQ(NextReport(), 'R');
    }
    // The next letter; '-' once the process has ended.
    char NextReport() const {
        char letter = '-';
        return ::read(m_reports.Get(), &letter, 1) == 1 ? letter : '-';
    }
    void Send(int signal) const { ASSERT_EQ(::kill(m_process, signal), 0); }
    // Waits until no signal that was sent is left to be taken.
    void WaitUntilTaken() const {
        const std::string status = "/proc/" + std::to_string(m_process) + "/status";
        while (test::ReadFile(status).find("\nShdPnd:\t0000000000000000\n") == std::string::npos) {
        }
    }
    // Lets the process end; the signal that it knew of.
    int End() {
        m_orders.Close();
        return WaitForEnd(m_process);
    }

  private:
    [[noreturn]] static void Live(int orders, int reports, int ignored) {
        for (const int signal : {SIGINT, SIGTERM, SIGHUP})
            ::signal(signal, signal == ignored ? SIG_IGN : SIG_DFL);
        const auto report = [reports](char letter) {
            [[maybe_unused]] const ssize_t written = ::write(reports, &letter, 1);
        };
        int status = 0;
        {
            Interruption interruption([&](int signal) { report(signal == SIGTERM ? 'T' : 'K'); });
            report('R');
            char order = 0;
            while (::read(orders, &order, 1) > 0) {
            }
            status = interruption.Signal();
        }
        ::_exit(status);
    }

    FileDescriptor m_orders;
    FileDescriptor m_reports;
    pid_t m_process = -1;
};

TEST_F(InterruptionTest, WithoutASignalNothingHappens) {
    Start();
    EXPECT_EQ(End(), 0);
    EXPECT_EQ(NextReport(), '-');
}

TEST_F(InterruptionTest, EachOfTheThreeSignalsIsPassedOnAsTerm) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        Start();
        Send(signal);
        EXPECT_EQ(NextReport(), 'T');
        EXPECT_EQ(End(), signal);
    }
}

TEST_F(InterruptionTest, ASecondSignalIsPassedOnAsKillAndTheFirstIsTheOneThatCounts) {
    Start();
    Send(SIGINT);
    EXPECT_EQ(NextReport(), 'T');
    Send(SIGTERM);
    EXPECT_EQ(NextReport(), 'K');
    EXPECT_EQ(End(), SIGINT);
}

TEST_F(InterruptionTest, AWhileAfterTheFirstSignalKillIsPassedOnByItself) {
    Start();
    Send(SIGTERM);
    EXPECT_EQ(NextReport(), 'T');
    EXPECT_EQ(NextReport(), 'K');
    EXPECT_EQ(End(), SIGTERM);
}

TEST_F(InterruptionTest, TheSignalOfItsOwnThreadIsNoInterruption) {
    Start();
    Send(SIGUSR1);
    WaitUntilTaken();
    Send(SIGINT);
    EXPECT_EQ(NextReport(), 'T');
    EXPECT_EQ(End(), SIGINT);
}

TEST_F(InterruptionTest, ASignalThatTheStarterWantsIgnoredStaysIgnored) {
    Start(SIGHUP);
    Send(SIGHUP);
    Send(SIGTERM);
    EXPECT_EQ(NextReport(), 'T');
    EXPECT_EQ(End(), SIGTERM);
}

TEST(Interruption, WithoutAThreadTheSignalEndsTheProgramAsEver) {
    EXPECT_EQ(test::WhereNothingCanBeStarted([] {
                  const Interruption interruption([](int) {});
                  ::raise(SIGTERM);
                  return 0;
              }),
              128 + SIGTERM);
    EXPECT_EQ(test::WhereNothingCanBeStarted([] {
                  {
                      const Interruption interruption([](int) {});
                  }
                  return 7;
              }),
              7);
}

}  // namespace
}  // namespace tavrin
