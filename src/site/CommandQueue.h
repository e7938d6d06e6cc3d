// SPDX-License-Identifier: Apache-2.0
// Commands that run beside each other, several at a time, for one who asks for their results one by one.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

class Commands;

// Starts its commands in the order in which they were added, and one that is asked for before its
// turn next. Works while it is asked: between two questions what has been
// started runs on, and nothing is started. What still runs when the queue goes is ended. Main thread only.
class CommandQueue {
  public:
    static size_t CoreCount();
    explicit CommandQueue(Commands& commands, size_t mostAtATime = CoreCount());
    CommandQueue(const CommandQueue&) = delete;
    CommandQueue& operator=(const CommandQueue&) = delete;
    ~CommandQueue();

    // Starts nothing yet. The number by which the result is asked for, counted from 0.
    size_t Add(std::vector<std::string> words);
    // Starts what there is room for, and returns at once.
    void Continue();
    // Waits for the command to end. Its exit code; nothing, unreported, if it could not be started.
    std::optional<int> Result(size_t number);
    // Whether its result is there, so that nothing has to be waited for.
    bool HasEnded(size_t number);
    // Ends a command that takes too long; one that has not been started never will be. Its result is nothing,
    // unless it was there before.
    void End(size_t number);

  private:
    struct Job {
        enum class State { kWaiting, kRunning, kEnded };
        State state = State::kWaiting;
        std::vector<std::string> words;
        int process = -1;
        std::optional<int> exitCode;
    };

    bool HasRoom() const { return m_running.size() < m_limit; }
    void Start(size_t number);
    void CollectEnded();
    void StartNext();

    Commands& m_commands;
    const size_t m_limit;
    std::vector<Job> m_jobs;
    std::vector<size_t> m_running;
    size_t m_next = 0;  // those before it have been started
};

}  // namespace tavrin
