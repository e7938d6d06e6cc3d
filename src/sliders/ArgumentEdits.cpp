// SPDX-License-Identifier: Apache-2.0
#include "sliders/ArgumentEdits.h"

#include "document/TvDoc.h"

namespace tavrin {

namespace {

void SetText(CTvDoc& document, COpButton& button, std::string COpButton::*which, const std::string& text,
             const char* act) {
    if (button.*which == text) return;
    const EditScope edit(document, act);
    document.edits.ButtonTuned(button);
    document.edits.JoinRun();
    button.*which = text;
}

}  // namespace

void SetArgument(CTvDoc& document, COpButton& button, bool isArgument) {
    if ((button.arg != 0) == isArgument) return;
    const EditScope edit(document, "Argument");
    document.edits.ButtonTouched(button);
    button.arg = isArgument ? 1 : 0;
}

void SetArgumentName(CTvDoc& document, COpButton& button, const std::string& name) {
    SetText(document, button, &COpButton::argname, name, "Argument Name");
}

void SetComment(CTvDoc& document, COpButton& button, const std::string& comment) {
    SetText(document, button, &COpButton::comments, comment, "Comment");
}

}  // namespace tavrin
