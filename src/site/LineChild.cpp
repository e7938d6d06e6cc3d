// SPDX-License-Identifier: Apache-2.0
#include "site/LineChild.h"

#include <unistd.h>

#include "base/Paths.h"
#include "base/ProcessTag.h"
#include "site/Commands.h"
#include "site/LineLife.h"
#include "text/Report.h"

namespace tavrin {

LineChild::LineChild(std::shared_ptr<LineLife> life) : m_life(std::move(life)) {}

LineChild::~LineChild() {
    m_life->StopHearing();
    m_life->SetWish(LineLife::Wish::kGo);
}

void LineChild::Send(std::string_view line) { m_life->Send(line); }

void LineChild::ExpectWithin(std::chrono::milliseconds time, std::string why) {
    m_life->SetDeadline(time, std::move(why));
}

void LineChild::ExpectNothing() { m_life->SetDeadline(std::nullopt, {}); }

void LineChild::EndNow() { m_life->SetWish(LineLife::Wish::kGoNow); }

std::unique_ptr<LineChild> Commands::StartLines(LineCall call, LineHands hands) {
    JoinFinishedLines();
    const std::string killFile = KillFile(++m_lastId);
    ::unlink(killFile.c_str());
    Environment environment = m_environment;
    for (const auto& [name, value] : call.environment) environment.Set(name, value);
    environment.Set("TAVRN_KILLFILE", killFile);
    const auto log = [this, alive = m_alive](const std::string& lines) {
        if (*alive) m_childLog.Note(lines);
    };
    auto life =
        std::make_shared<LineLife>(std::move(call), environment.ToList(),
                                   LineLife::Ground{m_queue, log, m_outputLimit, m_workDir,
                                                    PathFile(killFile), TagName(::getpid(), ++m_lastTag)});
    {
        const std::lock_guard lock(m_childMutex);
        if (m_ending) life->SetWish(LineLife::Wish::kGoNow);
    }
    m_lines.push_back(life);
    life->Begin(std::move(hands));
    return std::make_unique<LineChild>(std::move(life));
}

bool Commands::AnyLineChildLeft() const {
    for (const auto& life : m_lines) {
        if (!life->IsFinished()) return true;
    }
    return false;
}

void Commands::JoinFinishedLines() {
    std::erase_if(m_lines, [](const std::shared_ptr<LineLife>& life) {
        if (!life->IsFinished()) return false;
        life->Join();
        return true;
    });
}

// They are asked first: `atOnce` is for those that did not heed.
void Commands::EndLines(bool atOnce) {
    for (const auto& life : m_lines) {
        life->StopHearing();
        life->SetWish(atOnce ? LineLife::Wish::kGoNow : LineLife::Wish::kGo);
    }
    if (!atOnce) return;
    for (const auto& life : m_lines) life->Join();
    m_lines.clear();
}

}  // namespace tavrin
