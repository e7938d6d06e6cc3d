// SPDX-License-Identifier: Apache-2.0
// What the user says of an input as an argument of the shader. Each is one edit of the document, which owns
// the button; what is so already is none.
#pragma once

#include <string>

namespace tavrin {

class COpButton;
class CTvDoc;

void SetArgument(CTvDoc& document, COpButton& button, bool isArgument);
void SetArgumentName(CTvDoc& document, COpButton& button, const std::string& name);
void SetComment(CTvDoc& document, COpButton& button, const std::string& comment);

}  // namespace tavrin
