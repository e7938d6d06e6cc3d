// SPDX-License-Identifier: Apache-2.0
#include "render/NetworkCompare.h"

#include <algorithm>
#include <utility>

#include "render/DifferenceTexts.h"
#include "render/HelpLines.h"
#include "render/NetworkMatch.h"
#include "text/StoredText.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

using Kind = Difference::Kind;
using Property = Difference::Property;
using Box = NetworkPicture::Box;
using Button = NetworkPicture::Button;
constexpr uint32_t kNone = NetworkPicture::kNone;

bool IsSameText(const std::string& one, const std::string& other) {
    return one == other || OneLine(one) == OneLine(other);
}

const std::string& TypeOf(const NetworkPicture& picture, const Button& button, uint32_t cast) {
    static const std::string kNoType;
    const std::vector<std::string>& types = picture.ShapeOf(button).types;
    return cast < types.size() ? types[cast] : kNoType;
}

class Comparing {
  public:
    Comparing(const NetworkPicture& older, const NetworkPicture& newer)
        : m_older(older), m_newer(newer), m_match(MatchNetworks(older, newer)) {}

    std::vector<Difference> Run(size_t* looks) {
        CompareBoxes();
        CompareOptions();
        CompareHelp();
        if (looks != nullptr) *looks = m_match.looks + m_older.buttons.size() + m_newer.buttons.size();
        return std::move(m_found);
    }

  private:
    // What stands now in the order of its numbers, with what went among it where its number would be.
    void CompareBoxes() {
        std::vector<bool> isReplaced(m_older.boxes.size());
        for (const uint32_t before : m_match.replacedByNewer) {
            if (before != kNone) isReplaced[before] = true;
        }
        uint32_t before = 0;
        const auto tellWentUpTo = [&](int wid) {
            for (; before < m_older.boxes.size() && m_older.boxes[before].wid < wid; ++before) {
                if (m_match.boxInNewer[before] == kNone && !isReplaced[before]) TellWent(before);
            }
        };
        for (uint32_t now = 0; now < m_newer.boxes.size(); ++now) {
            tellWentUpTo(m_newer.boxes[now].wid);
            if (m_match.boxInOlder[now] == kNone) {
                TellCame(now);
            } else {
                CompareButtons(m_match.boxInOlder[now], now);
            }
        }
        for (; before < m_older.boxes.size(); ++before) {
            if (m_match.boxInNewer[before] == kNone && !isReplaced[before]) TellWent(before);
        }
    }

    Difference& Add(Kind kind, std::string_view what, std::string_view older, std::string_view newer) {
        return m_found.emplace_back(MakeDifference(kind, what, older, newer));
    }

    void TellWent(uint32_t before) {
        const std::string title = m_older.TitleOf(m_older.boxes[before]);
        Difference& difference = Add(Kind::kBox, title, title, {});
        difference.box = title;
        difference.inOlder.box = before;
    }

    void TellCame(uint32_t now) {
        const std::string title = m_newer.TitleOf(m_newer.boxes[now]);
        const uint32_t former = m_match.replacedByNewer[now];
        const bool isNew = former == kNone;
        const std::string was = isNew ? std::string() : m_older.TitleOf(m_older.boxes[former]);
        const std::string number = std::to_string(m_newer.boxes[now].wid);
        Difference& difference = Add(Kind::kBox, isNew ? title : "box " + number, was, title);
        difference.box = title;
        difference.inOlder.box = former;
        difference.inNewer.box = now;
    }

    void CompareButtons(uint32_t before, uint32_t now) {
        const Box& older = m_older.boxes[before];
        const Box& newer = m_newer.boxes[now];
        m_title = m_newer.TitleOf(newer);
        m_inOlder = {before, kNone, kNone};
        m_inNewer = {now, kNone, kNone};
        // The buttons of a placeholder are those that a file happens to name.
        const bool tellsButtons = !older.isPlaceholder && !newer.isPlaceholder;
        for (uint32_t i = 0; i < newer.buttonCount; ++i) {
            const uint32_t place = newer.firstButton + i;
            const uint32_t partner = m_match.buttonInOlder[place];
            m_inNewer.button = place;
            m_inOlder.button = partner;
            if (partner != kNone) {
                CompareButton(m_older.buttons[partner], m_newer.buttons[place]);
            } else if (tellsButtons) {
                TellInput(m_newer, place, {}, m_newer.DisplayNameOf(m_newer.buttons[place]));
            }
        }
        for (uint32_t i = 0; i < older.buttonCount && tellsButtons; ++i) {
            const uint32_t place = older.firstButton + i;
            if (m_match.buttonInNewer[place] != kNone) continue;
            m_inOlder.button = place;
            m_inNewer.button = kNone;
            TellInput(m_older, place, m_older.DisplayNameOf(m_older.buttons[place]), {});
        }
    }

    void TellInput(const NetworkPicture& picture, uint32_t place, std::string_view older,
                   std::string_view newer) {
        m_button = &picture.buttons[place];
        m_picture = &picture;
        AddOfButton(Kind::kInput, Property::kNone, {}, older, newer);
    }

    void CompareButton(const Button& older, const Button& newer) {
        m_button = &newer;
        m_picture = &m_newer;
        const std::string& typeBefore = TypeOf(m_older, older, older.currentCast);
        const std::string& typeNow = TypeOf(m_newer, newer, newer.currentCast);
        if (typeBefore != typeNow) AddOfButton(Kind::kValue, Property::kCast, " cast", typeBefore, typeNow);
        if (m_newer.ShapeOf(newer).isOutput) return;
        CompareValues(older, newer);
        if (older.arg != newer.arg) {
            const auto word = [](int flag) { return flag != 0 ? "yes" : "no"; };
            AddOfButton(Kind::kArgument, Property::kArg, " argument", word(older.arg), word(newer.arg));
        }
        CompareText(Property::kArgname, " argument name", older.argname, newer.argname);
        CompareText(Property::kComments, " comment", older.comments, newer.comments);
        CompareWires(older, newer);
    }

    void CompareText(Property property, const char* name, const std::string& older,
                     const std::string& newer) {
        if (IsSameText(older, newer)) return;
        const auto [before, now] = ShortTexts(older, newer);
        AddOfButton(Kind::kArgument, property, name, before, now);
    }

    // A cast that only one of them has is the library's affair.
    void CompareValues(const Button& older, const Button& newer) {
        const std::vector<std::string>& types = m_newer.ShapeOf(newer).types;
        const std::vector<std::string>& former = m_older.ShapeOf(older).types;
        for (uint32_t i = 0; i < types.size(); ++i) {
            uint32_t before = i;
            if (before >= former.size() || former[before] != types[i]) {
                const auto found = std::find(former.begin(), former.end(), types[i]);
                if (found == former.end()) continue;
                before = static_cast<uint32_t>(found - former.begin());
            }
            m_inOlder.value = older.firstValue + before;
            m_inNewer.value = newer.firstValue + i;
            const std::string cast = types.size() > 1 && i != newer.currentCast ? " (" + types[i] + ")" : "";
            CompareValue(types[i], cast);
        }
        m_inOlder.value = m_inNewer.value = kNone;
    }

    void CompareValue(const std::string& type, const std::string& cast) {
        const ValueState& older = m_older.values[m_inOlder.value];
        const ValueState& newer = m_newer.values[m_inNewer.value];
        if (older == newer) return;
        if (const auto texts = DifferingValues(type, older, newer))
            AddOfButton(Kind::kValue, Property::kValue, cast, texts->first, texts->second);
        if (const auto texts = DifferingRanges(type, older, newer))
            AddOfButton(Kind::kArgument, Property::kRange, cast + " range", texts->first, texts->second);
    }

    void CompareWires(const Button& older, const Button& newer) {
        const uint32_t expected = older.feeder == kNone ? kNone : m_match.buttonInNewer[older.feeder];
        if (older.feeder == kNone ? newer.feeder == kNone : expected == newer.feeder && expected != kNone)
            return;
        const std::string before = EndOf(m_older, older.feeder);
        const std::string now = EndOf(m_newer, newer.feeder);
        const std::string input = m_title + " " + m_newer.DisplayNameOf(newer);
        Difference& difference =
            Add(Kind::kWire, "wire " + (before.empty() ? now : before) + " -> " + input, before, now);
        Place(difference);
    }

    static std::string EndOf(const NetworkPicture& picture, uint32_t output) {
        if (output == kNone) return {};
        const Button& button = picture.buttons[output];
        return picture.TitleOf(picture.boxes[button.box]) + " " + picture.DisplayNameOf(button);
    }

    void AddOfButton(Kind kind, Property property, const std::string& name, std::string_view older,
                     std::string_view newer) {
        const std::string what = m_title + " " + m_picture->DisplayNameOf(*m_button) + name;
        Difference& difference = Add(kind, what, older, newer);
        difference.property = property;
        Place(difference);
    }

    void Place(Difference& difference) const {
        difference.box = m_title;
        difference.button = m_picture->DisplayNameOf(*m_button);
        difference.inOlder = m_inOlder;
        difference.inNewer = m_inNewer;
    }

    void CompareOptions() {
        auto before = m_older.options.begin();
        auto now = m_newer.options.begin();
        while (before != m_older.options.end() || now != m_newer.options.end()) {
            const bool isGone = now == m_newer.options.end() ||
                                (before != m_older.options.end() && before->first < now->first);
            const bool isNew = before == m_older.options.end() ||
                               (now != m_newer.options.end() && now->first < before->first);
            const std::string& name = isGone ? before->first : now->first;
            if (isGone || isNew || before->second != now->second) {
                const std::string none;
                const auto [was, is] = ShortTexts(isNew ? none : before->second, isGone ? none : now->second);
                Add(Kind::kOption, "option " + name, was, is).button = name;
            }
            if (!isNew) ++before;
            if (!isGone) ++now;
        }
    }

    // The first line that differs stands for all.
    void CompareHelp() {
        if (m_older.help == m_newer.help) return;
        const std::vector<std::string> before = HelpLines(m_older.help);
        const std::vector<std::string> now = HelpLines(m_newer.help);
        const std::string none;
        for (size_t i = 0; i < std::max(before.size(), now.size()); ++i) {
            const std::string_view was = TrimRight(i < before.size() ? before[i] : none);
            const std::string_view is = TrimRight(i < now.size() ? now[i] : none);
            if (was == is) continue;
            const auto [older, newer] = ShortTexts(was, is);
            Add(Kind::kHelp, "shader help", older, newer);
            return;
        }
    }

    const NetworkPicture& m_older;
    const NetworkPicture& m_newer;
    const NetworkMatch m_match;
    std::vector<Difference> m_found;
    // What is being compared.
    std::string m_title;
    const NetworkPicture* m_picture = nullptr;
    const Button* m_button = nullptr;
    Difference::Place m_inOlder;
    Difference::Place m_inNewer;
};

}  // namespace

std::vector<Difference> CompareNetworks(const NetworkPicture& older, const NetworkPicture& newer,
                                        size_t* looks) {
    return Comparing(older, newer).Run(looks);
}

}  // namespace tavrin
