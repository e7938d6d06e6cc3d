// SPDX-License-Identifier: Apache-2.0
// What a network had is given to the document that it has become.
#pragma once

#include <functional>
#include <string>
#include <unordered_map>

#include "render/NetworkCompare.h"

namespace tavrin {

class COpBox;

// A difference of the kinds that can be given: values, casts, what is said of arguments, and options of the
// render, as far as the state that it is taken from has them.
bool CanBeGiven(const Difference& difference, const Difference::Place& from);

// Made for one act, within an edit scope of the document. Boxes are found by their titles, buttons by their
// display names, values by their types; what the document has not is passed over.
class TakeOver {
  public:
    using SetOption = std::function<void(const std::string& name, const std::string& value)>;

    // All outlive it. Options are the program's affair: `setOption` makes the edit.
    TakeOver(CTvDoc& document, const NetworkPicture& picture, SetOption setOption);

    // False if nothing could be given. `from` is where the difference stands in the picture, `title` what its
    // box is called in the document.
    bool Give(const Difference& difference, const Difference::Place& from, const std::string& title);

  private:
    bool GiveOption(const std::string& name);
    bool GiveToButton(const Difference& difference, const Difference::Place& from, COpButton& button);
    bool GiveValue(Difference::Property property, const Difference::Place& from, COpButton& button);

    CTvDoc& m_document;
    const NetworkPicture& m_picture;
    SetOption m_setOption;
    std::unordered_map<std::string, COpBox*> m_boxes;  // by title
};

}  // namespace tavrin
