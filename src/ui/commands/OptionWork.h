// SPDX-License-Identifier: Apache-2.0
// The options of a session: which parts of the frame are shown, whether sliders stay, what scripts are told.
#pragma once

namespace tavrin {

class CStatusBox;
class CommandActions;
class DeskPane;
class Profile;
class SliderPane;
struct Site;

// Belongs to the frame.
class OptionWork {
  public:
    // All of it outlives this.
    struct Needs {
        Site& site;
        Profile& profile;
        DeskPane& desk;
        SliderPane& sliders;
        CStatusBox& statusBox;
    };
    // Brings the frame's parts in line with the site's settings and the profile.
    explicit OptionWork(const Needs& needs);

    void AddTo(CommandActions& commands);
    // What is kept from one run to the next.
    void Save() const;

  private:
    void AddParts(CommandActions& commands);
    void ShowParts();

    Needs m_needs;
    int m_sliderColumnWidth;  // pixels
    bool m_showStatus = true;
    bool m_showSliderDesk = true;
};

}  // namespace tavrin
