// SPDX-License-Identifier: Apache-2.0
// What Live makes a picture of, and where it lies on disk.
#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "render/RenderSession.h"

namespace tavrin {

// The directory of all states, below the work directory.
inline constexpr const char* kLiveDirectory = ".live";

// A plain value: one state of the network.
struct LiveState {
    uint64_t id = 0;        // grows; never again in a process
    std::string directory;  // its own, with the files of a render and `name`
    std::string name;       // of the shader
};

// Owned by LiveRender. Each state's directory stays until two further ones have been answered, and that of
// one of the last three that gave a picture until it is none of them. Main thread only.
class LiveStates {
  public:
    explicit LiveStates(Site& site) : m_site(site) {}
    ~LiveStates() { Clear(); }
    LiveStates(const LiveStates&) = delete;
    LiveStates& operator=(const LiveStates&) = delete;

    // Makes the next one. False with `error` if its files cannot be written.
    bool Write(const WorkFiles& files, const std::string& name, LiveState& state, std::string& error);
    void NotePicture(uint64_t id);
    void NoteAnswer(uint64_t id);
    // Removes all.
    void Clear();

  private:
    struct Known {
        uint64_t id = 0;
        bool isAnswered = false;
        bool hasPicture = false;
    };
    std::string DirectoryOf(uint64_t id) const;
    Known* Find(uint64_t id);
    void Prune();

    Site& m_site;
    uint64_t m_lastId = 0;
    std::deque<Known> m_known;  // in the order of their numbers
};

}  // namespace tavrin
