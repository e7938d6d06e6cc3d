// SPDX-License-Identifier: Apache-2.0
// Boxes and buttons that are made of what a document's file says of them, since the library has no more to
// say.
#pragma once

#include <memory>
#include <string>

#include "document/DocumentForm.h"

namespace tavrin {

class COpBox;
class COpButton;

// The box that stands for a whole block whose operator cannot be had, for the reason given: number, place and
// name of the file, and the buttons that the block has, in its order. The label, one word, stands in its
// middle.
std::unique_ptr<COpBox> MakePlaceholder(const BoxRecord& record, const DocumentForm& form,
                                        const std::string& reason, const std::string& label);

// A button as its whole record has it, with the casts that can be known: those of its values and the current
// one. Any kind but those of inputs makes an output.
std::unique_ptr<COpButton> MakeUnknownButton(COpBox& box, const ButtonRecord& record);

// The same, saved from now on as the block that the file has for it.
std::unique_ptr<COpButton> MakeStrayButton(COpBox& box, const ButtonRecord& record, const DocumentForm& form);

// Gives a placeholder's side so many buttons at least, for a wire that stands in the file while its button
// does not; null if those would be more than make sense. The button at that place.
COpButton* MakeUpButton(COpBox& placeholder, const ConnectionRecord::End& end, bool isOutput);

}  // namespace tavrin
