// SPDX-License-Identifier: Apache-2.0
// The widgets that hold widgets.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "forms/FormWidget.h"

namespace tavrin {

// "frame": a grid of widgets inside a group box.
class CFormFrame : public CFormWidget {
  public:
    static constexpr FormSize kTemplateSize = {356, 272};  // dialog units; kept while there are no children

    FormOrientation orientation = FormOrientation::kVertical;
    int count = 1;    // columns of a vertical frame, rows of a horizontal one
    int margin = 6;   // pixels from the left and top edge to the first cell
    int spacing = 6;  // pixels added to the largest child of a row or column
    int contentWidth = 0;
    int contentHeight = 0;
    std::vector<std::unique_ptr<CFormWidget>> children;  // in the order of the text

    // The places of the first children, as many as there are sizes; takes over the extent of the grid.
    // Without sizes nothing changes.
    std::vector<FormPoint> Place(const std::vector<FormSize>& sizes);

    void Accept(FormVisitor& visitor) override { visitor.Visit(*this); }
    void OptionChanged(const std::string& name, const std::string& value) override;
    void LoadDefaults(FormHost& host) override;
    void Removed(FormHost& host) override;
};

// The root of the form, owned by the application. Every form section of the site adds to it.
class CRenderOptionsEditor : public CFormFrame {
  public:
    static constexpr FormSize kTemplateSize = {187, 98};  // dialog units

    CRenderOptionsEditor() {
        margin = 5;
        spacing = 8;
    }

    // Shows an option that was changed elsewhere in every widget that is bound to it.
    void BroadcastOption(const std::string& name, const std::string& value) { OptionChanged(name, value); }

    // Destroys every widget. Option defaults that they stored stay.
    void ClearAll(FormHost& host);

    // Size of the window in pixels as the form asked for it last; 0 keeps the present size.
    int winWidth = 0;
    int winHeight = 0;
    // How many of the children the last complete section has placed. Those behind them were read by a
    // section that failed later: they stand where they were made, at the top left.
    size_t placed = 0;
};

}  // namespace tavrin
