// SPDX-License-Identifier: Apache-2.0
// The drop-down list of presets beside an edit box.
#pragma once

#include <deque>
#include <string>

namespace tavrin {

// The list is a menu and not a state: its first line is a caption, and whatever is chosen, the caption is
// shown again. Until the form gives a caption, an empty line stands in for it.
class PresetList {
  public:
    static constexpr int kNothing = -1;

    // Takes the first line away and adds the caption at the end, so that it stands first only if it comes
    // before the presets. If it comes later, it costs the first preset: the stand-in goes in any case.
    void SetCaption(std::string text);
    // Adding a preset selects the first line, which shows the caption.
    void AddPreset(std::string line);

    const std::deque<std::string>& Lines() const { return m_lines; }
    // The line that is shown, by its index; nothing is shown until there is a preset.
    int Selected() const { return m_selected; }
    const std::string& Caption() const { return m_lines.front(); }

    // The user chose a line: the first is shown again. The preset chosen; none for the first line and for
    // an index without a line.
    const std::string* Choose(int index);

  private:
    std::deque<std::string> m_lines = {std::string()};  // never empty
    bool m_standIn = true;
    int m_selected = kNothing;
};

}  // namespace tavrin
