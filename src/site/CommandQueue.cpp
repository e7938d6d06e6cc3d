// SPDX-License-Identifier: Apache-2.0
#include "site/CommandQueue.h"

#include <algorithm>
#include <thread>

#include "base/Process.h"
#include "site/Commands.h"

namespace tavrin {

size_t CommandQueue::CoreCount() { return std::max(1U, std::thread::hardware_concurrency()); }

CommandQueue::CommandQueue(Commands& commands, size_t mostAtATime)
    : m_commands(commands), m_limit(mostAtATime) {}

CommandQueue::~CommandQueue() {
    for (const size_t number : m_running) m_commands.EndCommand(m_jobs[number].process);
}

size_t CommandQueue::Add(std::vector<std::string> words) {
    m_jobs.emplace_back().words = std::move(words);
    return m_jobs.size() - 1;
}

void CommandQueue::Continue() {
    CollectEnded();
    StartNext();
}

std::optional<int> CommandQueue::Result(size_t number) {
    for (;;) {
        CollectEnded();
        if (m_jobs[number].state == Job::State::kWaiting && HasRoom()) Start(number);
        StartNext();
        if (m_jobs[number].state == Job::State::kEnded) return m_jobs[number].exitCode;
        std::vector<int> processes;
        for (const size_t running : m_running) processes.push_back(m_jobs[running].process);
        m_commands.WaitForOne(processes);
    }
}

bool CommandQueue::HasEnded(size_t number) {
    CollectEnded();
    return m_jobs[number].state == Job::State::kEnded;
}

void CommandQueue::End(size_t number) {
    if (HasEnded(number)) return;
    Job& job = m_jobs[number];
    if (job.state == Job::State::kRunning) {
        std::erase(m_running, number);
        m_commands.EndCommand(job.process);
    }
    job.state = Job::State::kEnded;
}

void CommandQueue::Start(size_t number) {
    Job& job = m_jobs[number];
    job.process = m_commands.StartCommand(job.words);
    job.state = job.process < 0 ? Job::State::kEnded : Job::State::kRunning;
    if (job.state == Job::State::kRunning) m_running.push_back(number);
}

void CommandQueue::CollectEnded() {
    std::erase_if(m_running, [this](size_t number) {
        Job& job = m_jobs[number];
        if (!HasExited(job.process)) return false;
        job.exitCode = m_commands.CollectCommand(job.process);
        job.state = Job::State::kEnded;
        return true;
    });
}

void CommandQueue::StartNext() {
    for (; m_next < m_jobs.size() && HasRoom(); ++m_next) {
        if (m_jobs[m_next].state == Job::State::kWaiting) Start(m_next);
    }
}

}  // namespace tavrin
