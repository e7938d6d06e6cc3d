// SPDX-License-Identifier: Apache-2.0
// Writes the plain form of a document back.
#pragma once

#include <string>

namespace tavrin {

class DocumentForm;

// The form's sections, in its order and in the layout of documents: the same bytes where the text that was
// read was written in it. Of a form that is not read to its end, what is whole of it.
std::string WriteForm(const DocumentForm& form);

}  // namespace tavrin
