// SPDX-License-Identifier: Apache-2.0
// What the form needs of the rest of the program.
#pragma once

#include <string>

namespace tavrin {

// Handed to every operation that reaches outside the form; nothing of the form keeps it.
class FormHost {
  public:
    virtual ~FormHost() = default;

    // Stores a render option without telling the form again: the widget that stores knows it already.
    virtual void SetVariable(const std::string& name, const std::string& value) = 0;
    // Keeps an option out of saved documents.
    virtual void AddUnsavedOption(const std::string& name) = 0;
    // The form's default for an option, the empty text if there is none.
    virtual std::string GetAppVariable(const std::string& name) = 0;

    // The rows of the toolbar's shader type box. Programs without a toolbar have none.
    virtual void AddShaderType(const std::string& /*line*/) {}
    virtual void ClearShaderTypes() {}
};

}  // namespace tavrin
