// SPDX-License-Identifier: Apache-2.0
#include "render/NetworkMatch.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <unordered_map>

#include "text/Numbers.h"

namespace tavrin {

namespace {

using Box = NetworkPicture::Box;
using Button = NetworkPicture::Button;
constexpr uint32_t kNone = NetworkPicture::kNone;

uint32_t Count(size_t size) { return static_cast<uint32_t>(size); }

// Pairs what has the same key in two rows of places, in their order.
using KeyOf = std::function<std::string(uint32_t place)>;
using Pair = std::function<void(uint32_t before, uint32_t now)>;
void PairByKey(const std::vector<uint32_t>& older, const KeyOf& olderKey, const std::vector<uint32_t>& newer,
               const KeyOf& newerKey, const Pair& pair) {
    struct Waiting {
        std::vector<uint32_t> places;
        size_t next = 0;
    };
    if (older.empty() || newer.empty()) return;
    std::unordered_map<std::string, Waiting> waiting;
    for (const uint32_t place : older) waiting[olderKey(place)].places.push_back(place);
    for (const uint32_t place : newer) {
        const auto found = waiting.find(newerKey(place));
        if (found == waiting.end() || found->second.next == found->second.places.size()) continue;
        pair(found->second.places[found->second.next++], place);
    }
}

std::vector<uint32_t> LeftOf(const std::vector<uint32_t>& partners) {
    std::vector<uint32_t> places;
    for (uint32_t place = 0; place < Count(partners.size()); ++place) {
        if (partners[place] == kNone) places.push_back(place);
    }
    return places;
}

// What a box holds, as a file would keep it, and the operators that feed it.
std::string ContentOf(const NetworkPicture& picture, const Box& box) {
    std::string text = box.operatorName;
    for (const Button& button : picture.ButtonsOf(box)) {
        text.append("\n").append(picture.DisplayNameOf(button));
        text.append(" ").append(std::to_string(button.arg)).append(" ");
        text.append(std::to_string(button.currentCast)).append(button.argname).append(button.comments);
        if (button.feeder != kNone)
            text.append("<").append(picture.boxes[picture.buttons[button.feeder].box].operatorName);
        for (const ValueState& value : picture.ValuesOf(button)) {
            for (const float number : value.numbers) AppendG(text.append(" "), static_cast<double>(number));
            text.append(" ").append(value.text);
        }
    }
    return text;
}

// The place of a box in whole desk units, which a file keeps.
std::string PlaceKey(const Box& box) {
    std::string text = box.operatorName;
    for (const float number : box.place)
        AppendG(text.append(" "), std::nearbyint(static_cast<double>(number)));
    return text;
}

class Matching {
  public:
    Matching(const NetworkPicture& older, const NetworkPicture& newer) : m_older(older), m_newer(newer) {
        m_match.boxInNewer.assign(older.boxes.size(), kNone);
        m_match.boxInOlder.assign(newer.boxes.size(), kNone);
        m_match.buttonInNewer.assign(older.buttons.size(), kNone);
        m_match.buttonInOlder.assign(newer.buttons.size(), kNone);
        m_match.replacedByNewer.assign(newer.boxes.size(), kNone);
        FindSameShapes();
    }

    NetworkMatch Run() {
        MatchInOrder();
        MatchBoxesBy([](const NetworkPicture& picture, const Box& box) { return picture.TitleOf(box); });
        MatchBoxesBy(ContentOf);
        MatchBoxesBy([](const NetworkPicture&, const Box& box) { return PlaceKey(box); });
        FindReplaced();
        for (uint32_t place = 0; place < Count(m_older.boxes.size()); ++place) {
            if (m_match.boxInNewer[place] != kNone) MatchButtons(place, m_match.boxInNewer[place]);
        }
        return std::move(m_match);
    }

  private:
    void FindSameShapes() {
        std::unordered_map<std::string, uint32_t> places;
        for (uint32_t place = 0; place < Count(m_newer.shapes.size()); ++place)
            places[m_newer.shapes[place].Key()] = place;
        for (const NetworkPicture::Shape& shape : m_older.shapes) {
            const auto found = places.find(shape.Key());
            m_shapeInNewer.push_back(found == places.end() ? kNone : found->second);
        }
    }

    // Almost always almost all: both rows are in the order of the numbers.
    void MatchInOrder() {
        uint32_t before = 0;
        uint32_t now = 0;
        while (before < m_older.boxes.size() && now < m_newer.boxes.size()) {
            ++m_match.looks;
            const Box& older = m_older.boxes[before];
            const Box& newer = m_newer.boxes[now];
            if (older.wid == newer.wid && older.operatorName == newer.operatorName) PairBoxes(before, now);
            if (older.wid <= newer.wid) ++before;
            if (newer.wid <= older.wid) ++now;
        }
    }

    using BoxKey = std::function<std::string(const NetworkPicture& picture, const Box& box)>;
    void MatchBoxesBy(const BoxKey& key) {
        const auto keyIn = [&](const NetworkPicture& picture) {
            return [this, &key, &picture](uint32_t place) {
                m_match.looks += 1 + picture.boxes[place].buttonCount;
                return key(picture, picture.boxes[place]);
            };
        };
        PairByKey(LeftOf(m_match.boxInNewer), keyIn(m_older), LeftOf(m_match.boxInOlder), keyIn(m_newer),
                  [this](uint32_t before, uint32_t now) { PairBoxes(before, now); });
    }

    void PairBoxes(uint32_t before, uint32_t now) {
        m_match.boxInNewer[before] = now;
        m_match.boxInOlder[now] = before;
    }

    void FindReplaced() {
        std::unordered_map<int, uint32_t> gone;
        for (uint32_t place = 0; place < Count(m_older.boxes.size()); ++place) {
            if (m_match.boxInNewer[place] == kNone) gone.try_emplace(m_older.boxes[place].wid, place);
        }
        for (uint32_t place = 0; place < Count(m_newer.boxes.size()); ++place) {
            if (m_match.boxInOlder[place] != kNone) continue;
            const auto found = gone.find(m_newer.boxes[place].wid);
            if (found == gone.end()) continue;
            m_match.replacedByNewer[place] = found->second;
            gone.erase(found);
        }
    }

    void PairButtons(uint32_t before, uint32_t now) {
        m_match.buttonInNewer[before] = now;
        m_match.buttonInOlder[now] = before;
    }

    // Mostly one for one.
    void MatchButtons(uint32_t boxBefore, uint32_t boxNow) {
        const Box& older = m_older.boxes[boxBefore];
        const Box& newer = m_newer.boxes[boxNow];
        const uint32_t most = std::min(older.buttonCount, newer.buttonCount);
        m_match.looks += most;
        uint32_t same = 0;
        while (same < most && IsSame(older.firstButton + same, newer.firstButton + same)) {
            PairButtons(older.firstButton + same, newer.firstButton + same);
            ++same;
        }
        if (same == older.buttonCount || same == newer.buttonCount) return;
        MatchButtonsByName(older, newer, same);
    }

    bool IsSame(uint32_t before, uint32_t now) const {
        const Button& older = m_older.buttons[before];
        const Button& newer = m_newer.buttons[now];
        return m_shapeInNewer[older.shape] == newer.shape && older.instance == newer.instance;
    }

    void MatchButtonsByName(const Box& older, const Box& newer, uint32_t from) {
        const auto places = [from](const Box& box) {
            std::vector<uint32_t> all;
            for (uint32_t i = from; i < box.buttonCount; ++i) all.push_back(box.firstButton + i);
            return all;
        };
        const auto keyIn = [this](const NetworkPicture& picture) {
            return [this, &picture](uint32_t place) {
                ++m_match.looks;
                const Button& button = picture.buttons[place];
                return (picture.ShapeOf(button).isOutput ? "o" : "i") + picture.DisplayNameOf(button);
            };
        };
        PairByKey(places(older), keyIn(m_older), places(newer), keyIn(m_newer),
                  [this](uint32_t before, uint32_t now) { PairButtons(before, now); });
    }

    const NetworkPicture& m_older;
    const NetworkPicture& m_newer;
    std::vector<uint32_t> m_shapeInNewer;
    NetworkMatch m_match;
};

}  // namespace

NetworkMatch MatchNetworks(const NetworkPicture& older, const NetworkPicture& newer) {
    return Matching(older, newer).Run();
}

}  // namespace tavrin
