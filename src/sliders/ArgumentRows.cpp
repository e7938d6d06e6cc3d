// SPDX-License-Identifier: Apache-2.0
#include "sliders/ArgumentRows.h"

#include <algorithm>

namespace tavrin {

bool IsEditable(const COpButton& button, ArgumentField field) {
    return field == ArgumentField::kFlag ? button.disableargflag == 0 : button.arg != 0;
}

void ArgumentRows::SetButtons(const std::vector<COpButton*>& buttons) {
    m_buttons.clear();
    m_buttons.reserve(buttons.size());
    for (COpButton* button : buttons) m_buttons.emplace_back(*button);
    SetScrollTop(m_scrollTop);
}

void ArgumentRows::SetRowHeight(int height) {
    m_rowHeight = std::max(height, 1);
    SetScrollTop(m_scrollTop);
}

void ArgumentRows::SetClientHeight(int height) {
    m_clientHeight = std::max(height, 0);
    SetScrollTop(m_scrollTop);
}

int ArgumentRows::LastScrollTop() const {
    return std::max(TotalHeight() - std::max(m_clientHeight, m_rowHeight), 0);
}

void ArgumentRows::SetScrollTop(int offset) { m_scrollTop = std::clamp(offset, 0, LastScrollTop()); }

void ArgumentRows::BringIntoView(size_t row) {
    const int top = static_cast<int>(row) * m_rowHeight;
    const int lowest = top + m_rowHeight - std::max(m_clientHeight, m_rowHeight);
    SetScrollTop(std::clamp(m_scrollTop, lowest, top));
}

ArgumentRows::Span ArgumentRows::InView(size_t beside) const {
    const auto height = static_cast<size_t>(m_rowHeight);
    const size_t first = static_cast<size_t>(m_scrollTop) / height;
    const size_t end =
        (static_cast<size_t>(m_scrollTop) + static_cast<size_t>(m_clientHeight) + height - 1) / height;
    return {first - std::min(first, beside), std::min(end + beside, Count())};
}

std::optional<ArgumentPlace> ArgumentRows::Next(const std::optional<ArgumentPlace>& from,
                                                bool forward) const {
    const size_t fields = Count() * kArgumentFields;
    const auto indexOf = [](const ArgumentPlace& place) {
        return place.row * kArgumentFields + static_cast<size_t>(place.field);
    };
    // From nowhere: as if from the field before the first one in view, or from that one itself.
    size_t at = from ? indexOf(*from) : InView(0).begin * kArgumentFields + (forward ? fields - 1 : 0);
    for (size_t step = 0; step < fields; ++step) {
        at = (at + (forward ? 1 : fields - 1)) % fields;
        const ArgumentPlace place{at / kArgumentFields, static_cast<ArgumentField>(at % kArgumentFields)};
        if (IsEditableAt(place)) return place;
    }
    return std::nullopt;
}

std::optional<ArgumentPlace> ArgumentRows::Beyond(const ArgumentPlace& from, bool below) const {
    ArgumentPlace place = from;
    while (below ? place.row + 1 < Count() : place.row > 0) {
        place.row = below ? place.row + 1 : place.row - 1;
        if (IsEditableAt(place)) return place;
    }
    return std::nullopt;
}

bool ArgumentRows::IsEditableAt(const ArgumentPlace& place) const {
    const COpButton* button = ButtonAt(place.row);
    return button != nullptr && IsEditable(*button, place.field);
}

}  // namespace tavrin
