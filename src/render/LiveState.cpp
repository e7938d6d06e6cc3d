// SPDX-License-Identifier: Apache-2.0
#include "render/LiveState.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "base/Files.h"
#include "base/Paths.h"
#include "site/Site.h"

namespace tavrin {

namespace {

constexpr int kPicturesKept = 3;
constexpr int kAnswersKept = 2;

bool Make(const std::string& directory, std::string& error) {
    const int number = MakeDirectory(directory);
    if (number == 0 || number == EEXIST) return true;
    error = directory + ": " + std::strerror(number);
    return false;
}

}  // namespace

std::string LiveStates::DirectoryOf(uint64_t id) const {
    return JoinPath(m_site.WorkPath(kLiveDirectory), std::to_string(id));
}

bool LiveStates::Write(const WorkFiles& files, const std::string& name, LiveState& state,
                       std::string& error) {
    state = {++m_lastId, DirectoryOf(m_lastId), name};
    if (!Make(m_site.WorkPath(kLiveDirectory), error) || !Make(state.directory, error)) return false;
    m_known.push_back({state.id});
    const std::string below = JoinPath(kLiveDirectory, std::to_string(state.id));
    const std::string nameLine = name + "\n";
    const std::pair<const char*, std::string_view> all[] = {{"codegenfile", files.code},
                                                            {"linemap", files.lines},
                                                            {"hintfile", files.hints},
                                                            {"render_options", files.options},
                                                            {"name", nameLine}};
    for (const auto& [file, text] : all) {
        if (m_site.WriteWorkFile(JoinPath(below, file), text, error)) continue;
        error = JoinPath(state.directory, file) + ": " + error;
        NoteAnswer(state.id);
        return false;
    }
    return true;
}

LiveStates::Known* LiveStates::Find(uint64_t id) {
    const auto found =
        std::find_if(m_known.begin(), m_known.end(), [&](const Known& known) { return known.id == id; });
    return found == m_known.end() ? nullptr : &*found;
}

void LiveStates::NotePicture(uint64_t id) {
    if (Known* known = Find(id)) known->hasPicture = true;
}

void LiveStates::NoteAnswer(uint64_t id) {
    if (Known* known = Find(id)) known->isAnswered = true;
    Prune();
}

void LiveStates::Prune() {
    int answers = 0;
    int pictures = 0;
    std::deque<Known> kept;
    for (auto known = m_known.rbegin(); known != m_known.rend(); ++known) {
        const bool isNew = !known->isAnswered || answers < kAnswersKept;
        const bool isShown = known->hasPicture && pictures < kPicturesKept;
        if (known->isAnswered) ++answers;
        if (known->hasPicture) ++pictures;
        if (isNew || isShown) {
            kept.push_front(*known);
        } else {
            RemoveTree(DirectoryOf(known->id), [](const std::string&) {});
        }
    }
    m_known = std::move(kept);
}

void LiveStates::Clear() {
    for (const Known& known : std::exchange(m_known, {}))
        RemoveTree(DirectoryOf(known.id), [](const std::string&) {});
}

}  // namespace tavrin
