// SPDX-License-Identifier: Apache-2.0
#include "forms/FormFrame.h"

#include <utility>

namespace tavrin {

std::vector<FormPoint> CFormFrame::Place(const std::vector<FormSize>& sizes) {
    if (sizes.empty()) return {};
    FormGrid grid = LayoutGrid(orientation, count, margin, spacing, sizes);
    contentWidth = grid.contentWidth;
    contentHeight = grid.contentHeight;
    return std::move(grid.positions);
}

void CFormFrame::OptionChanged(const std::string& name, const std::string& value) {
    for (const auto& child : children) child->OptionChanged(name, value);
}

void CFormFrame::LoadDefaults(FormHost& host) {
    for (const auto& child : children) child->LoadDefaults(host);
}

void CFormFrame::Removed(FormHost& host) {
    for (const auto& child : children) child->Removed(host);
}

void CRenderOptionsEditor::ClearAll(FormHost& host) {
    Removed(host);
    children.clear();
    placed = 0;
}

}  // namespace tavrin
