// SPDX-License-Identifier: Apache-2.0
#include "site/LineLife.h"

#include <fcntl.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>

#include "base/Files.h"
#include "base/Paths.h"
#include "base/ProcessTag.h"
#include "text/Report.h"

namespace tavrin {

namespace {

constexpr int kCannotStart = 127;
constexpr int kSignalStatus = 128;
constexpr const char* kWasEnded = "it was ended";
// Than we are. It halves the number of answers of a dragged slider that come late on two cores.
constexpr int kNicer = 5;
constexpr int kSweeps = 20;  // for what was started while the others were being ended
constexpr std::chrono::milliseconds kSweepStep{1};
constexpr std::chrono::milliseconds kDeliveryStep{20};

bool OpenPipe(FileDescriptor& reads, FileDescriptor& writes) {
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0) return false;
    reads = FileDescriptor(ends[0]);
    writes = FileDescriptor(ends[1]);
    return true;
}

bool SetNonBlocking(const FileDescriptor& end) { return ::fcntl(end.Get(), F_SETFL, O_NONBLOCK) == 0; }

std::string WordsOnExit(int code) {
    if (code > kSignalStatus) return FormatText("it was ended by signal %d", code - kSignalStatus);
    return FormatText("it ended with status %d", code);
}

}  // namespace

LineLife::LineLife(LineCall call, std::vector<std::string> environment, Ground ground)
    : m_call(std::move(call)),
      m_environment(std::move(environment)),
      m_ground(std::move(ground)),
      m_wake(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_bound(m_ground.outputLimit),
      m_watch(m_call.call.name, m_ground.tag,
              ChildLimits{
                  std::chrono::seconds(0), m_call.call.limits.memory, {}, m_call.call.limits.memorySetBy}) {}

void LineLife::Begin(LineHands hands) {
    m_hands = std::make_shared<const LineHands>(std::move(hands));
    try {
        m_worker = std::thread([this] { Live(); });
    } catch (const std::system_error& error) {
        Tell({"there is no thread for it: " + error.code().message(), true, kCannotStart});
        m_isFinished = true;
    }
}

void LineLife::StopHearing() {
    m_isHeard = false;
    m_hands.reset();
}

void LineLife::Join() {
    if (m_worker.joinable()) m_worker.join();
}

void LineLife::WakeUp() const {
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(m_wake.Get(), &one, sizeof one);
}

void LineLife::Send(std::string_view line) {
    const std::lock_guard lock(m_mutex);
    m_toSend.append(line).append("\n");
    WakeUp();
}

void LineLife::SetDeadline(std::optional<std::chrono::milliseconds> time, std::string why) {
    const std::lock_guard lock(m_mutex);
    m_deadline = time ? std::optional(Clock::now() + *time) : std::nullopt;
    m_late = std::move(why);
    WakeUp();
}

void LineLife::SetWish(Wish wish) {
    const std::lock_guard lock(m_mutex);
    m_wish = std::max(m_wish, wish);
    WakeUp();
}

// What follows is the thread's.

void LineLife::Live() {
    // A child that does not read must not end us.
    sigset_t broken;
    sigemptyset(&broken);
    sigaddset(&broken, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &broken, nullptr);
    LineEnd end{{}, true, kCannotStart};
    if (Start(end.why)) {
        const std::optional<std::string> why = Attend();
        end.wasEnded = why.has_value();
        end.exitCode = Bury();
        end.why = why.value_or(WordsOnExit(end.exitCode));
        if (std::string rest = m_bound.Rest(); !rest.empty()) PostLog(std::move(rest));
    }
    Tell(std::move(end));
    m_isFinished = true;
}

bool LineLife::Start(std::string& why) {
    SpawnRequest request;
    request.words = m_call.call.words;
    request.environment = m_environment;
    std::vector<FileDescriptor> childEnds;
    const FileDescriptor tag = MakeTag(m_ground.tag);
    request.tag = tag.Get();
    if (!m_wake || !OpenStreams(request, childEnds)) {
        why = std::string("it cannot be started: ") + std::strerror(errno);
        return false;
    }
    {
        const std::lock_guard lock(m_mutex);
        if (m_wish != Wish::kStay) {  // nobody waits for it any more
            why = kWasEnded;
            return false;
        }
    }
    std::string error;
    m_process = Spawn(request, error);
    if (m_process < 0) {
        why = "it cannot be started: " + error;
        return false;
    }
    GiveWay();
    m_exit = FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, m_process, 0)));
    return true;
}

// The hand comes before what follows it, also where it costs a picture or two. What the child starts from now
// on takes after it.
void LineLife::GiveWay() const {
    const int own = ::getpriority(PRIO_PROCESS, 0);
    ::setpriority(PRIO_PGRP, static_cast<id_t>(m_process), own + kNicer);
}

// What the child gets is closed by the caller: what is left open here would keep its output from closing.
bool LineLife::OpenStreams(SpawnRequest& request, std::vector<FileDescriptor>& childEnds) {
    FileDescriptor input(m_call.hasInput ? -1 : ::open("/dev/null", O_RDONLY | O_CLOEXEC));
    FileDescriptor output;
    FileDescriptor errors;
    if (m_call.hasInput && !(OpenPipe(input, m_input) && SetNonBlocking(m_input))) return false;
    if (!input || !OpenPipe(m_output.pipe, output) || !SetNonBlocking(m_output.pipe)) return false;
    if (!m_call.errorsAreLines && !(OpenPipe(m_errors.pipe, errors) && SetNonBlocking(m_errors.pipe)))
        return false;
    request.standardInput = input.Get();
    request.standardOutput = output.Get();
    request.standardError = errors ? errors.Get() : output.Get();
    for (FileDescriptor* end : {&input, &output, &errors}) childEnds.push_back(std::move(*end));
    return true;
}

// Nothing if the child ended by itself.
std::optional<std::string> LineLife::Attend() {
    for (;;) {
        if (const auto why = HeedWishes()) return why;
        if (const auto why = Wait()) return why;
        if (HasExited(m_process)) {
            DrainStreams();
            return std::nullopt;
        }
    }
}

std::optional<std::string> LineLife::HeedWishes() {
    Wish wish;
    {
        const std::lock_guard lock(m_mutex);
        wish = m_wish;
        m_writing += m_toSend;
        m_toSend.clear();
        m_isWatched = m_deadline.has_value();
        m_until = m_deadline.value_or(Clock::time_point::max());
        if (IsLate()) return m_late;
    }
    if (wish == Wish::kGoNow) return kWasEnded;
    if (m_isWatched && m_watch.IsNeeded()) {
        if (auto told = m_watch.Look(m_process)) return told;
    }
    if (wish == Wish::kStay) return std::nullopt;
    const auto now = Clock::now();
    if (m_phase == Phase::kRuns) {
        m_input.Close();
        std::string ignored;
        WriteOwnFile(m_ground.workDir, m_ground.killFile, {}, ignored);
        m_phase = Phase::kAsked;
        m_nextPhase = now + kTimeToHeed;
    } else if (now >= m_nextPhase) {
        if (m_phase == Phase::kSignalled) return kWasEnded;
        SignalChild(m_process, m_ground.tag, SIGTERM);
        m_phase = Phase::kSignalled;
        m_nextPhase = now + kTimeToHeed;
    }
    return std::nullopt;
}

// What has been said in time may still be on its way to who would renew the deadline, or lift it: that is
// waited for, and not what comes after.
bool LineLife::IsLate() {
    if (Clock::now() < m_until) return false;
    if (m_lateFor != m_until) {
        m_lateFor = m_until;
        m_saidInTime = m_posted;
    }
    return m_delivered >= m_saidInTime;
}

// Milliseconds until there is something to do whatever happens; -1 for never.
int LineLife::TimeToWait() const {
    const auto now = Clock::now();
    auto until = std::min(m_until <= now ? now + kDeliveryStep : m_until, m_nextPhase);
    if (m_isWatched && m_watch.IsNeeded()) until = std::min(until, now + ChildWatch::kStep);
    // Where the system does not tell of an end, and nothing is read that would tell.
    if (!m_exit) until = std::min(until, now + ChildWatch::kStep);
    if (until == Clock::time_point::max()) return -1;
    return static_cast<int>(
        std::max<int64_t>(0, std::chrono::ceil<std::chrono::milliseconds>(until - now).count()));
}

// Ends what is left of the child and of what it has started. Its number is not given back before, so that it
// still is that of the group.
int LineLife::Bury() {
    SignalChild(m_process, m_ground.tag, SIGKILL);
    AwaitExit(m_process);
    for (int sweep = 0; sweep < kSweeps && SignalTagged(m_ground.tag, ::getsid(0), SIGKILL); ++sweep)
        std::this_thread::sleep_for(kSweepStep);
    for (FileDescriptor* end : {&m_input, &m_output.pipe, &m_errors.pipe, &m_exit}) end->Close();
    ::unlink(JoinPath(m_ground.workDir, m_ground.killFile).c_str());
    return WaitForEnd(m_process);
}

void LineLife::Tell(LineEnd end) {
    m_ground.queue.Post([life = shared_from_this(), end = std::move(end)] {
        if (const auto hands = life->m_hands) hands->ended(end);
    });
}

}  // namespace tavrin
