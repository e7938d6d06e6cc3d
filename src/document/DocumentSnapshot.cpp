// SPDX-License-Identifier: Apache-2.0
#include "document/DocumentSnapshot.h"

#include <algorithm>

#include "document/DocumentWriter.h"
#include "document/TvDoc.h"

namespace tavrin {

namespace {

using Clock = std::chrono::steady_clock;

std::shared_ptr<const std::string> Share(std::string text) {
    return std::make_shared<const std::string>(std::move(text));
}

}  // namespace

DocumentSnapshot::DocumentSnapshot(CTvDoc& document, DocumentHost& host)
    : m_document(document),
      m_host(host),
      m_changes(document.edits.Observe([this](const Change& change) { OnChange(change); })) {}

void DocumentSnapshot::OnChange(const Change& change) {
    if (change.replaced) m_texts.clear();
    for (const GoneBox& box : change.went) m_texts.erase(box.serial);
    for (const auto* boxes : {&change.came, &change.dropped, &change.touched}) {
        for (const COpBox* box : *boxes) ForgetWithWires(*box);
    }
    for (const auto* buttons : {&change.buttons, &change.tuned}) {
        for (const COpButton* button : *buttons) {
            const auto texts = m_texts.find(button->owner->Serial());
            if (texts != m_texts.end()) texts->second.box.reset();
        }
    }
    if (change.wires) {
        for (auto& [serial, texts] : m_texts) texts.wires.reset();
    }
    Change edit = change;
    edit.selection = false;
    if (edit.IsEmpty()) return;
    m_anyLeft = true;
    m_edited = true;
}

// A wire's line tells numbers, names and places of both its ends.
void DocumentSnapshot::ForgetWithWires(const COpBox& box) {
    m_texts.erase(box.Serial());
    for (const auto& input : box.inputs) {
        for (const COpButton* source : input->connections) {
            const auto texts = m_texts.find(source->owner->Serial());
            if (texts != m_texts.end()) texts->second.wires.reset();
        }
    }
}

void DocumentSnapshot::Refresh(const COpBox& box, Texts& texts) {
    if (texts.box == nullptr) texts.box = Share(WriteBox(box));
    if (texts.wires == nullptr) texts.wires = Share(WriteWires(box));
}

bool DocumentSnapshot::Advance(std::chrono::microseconds time) {
    if (!m_anyLeft) return true;
    const auto end = Clock::now() + time;
    for (const auto& box : m_document.m_boxes) {
        Texts& texts = m_texts[box->Serial()];
        if (texts.box != nullptr && texts.wires != nullptr) continue;
        Refresh(*box, texts);
        if (Clock::now() >= end) return false;
    }
    m_anyLeft = false;
    return true;
}

DocumentSnapshot::View DocumentSnapshot::PresentView() const {
    return {{m_document.offset[0], m_document.offset[1]}, m_document.zoomFactor};
}

bool DocumentSnapshot::IsUpToDate() const {
    return !m_edited && m_document.edits.Pending().IsEmpty() && m_view == PresentView();
}

DocumentSnapshot::Pieces DocumentSnapshot::Take() {
    // An act that goes on, such as a drag, was told to nobody yet.
    OnChange(m_document.edits.Pending());
    std::vector<std::pair<int, const COpBox*>> boxes;
    boxes.reserve(m_document.m_boxes.size());
    for (const auto& box : m_document.m_boxes) boxes.emplace_back(box->wid, box.get());
    std::stable_sort(boxes.begin(), boxes.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });

    DocumentFrame frame = WriteDocumentFrame(m_document, m_host);
    Pieces pieces;
    Pieces wires;
    pieces.reserve(2 * boxes.size() + 3);
    wires.reserve(boxes.size());
    pieces.push_back(Share(std::move(frame.beforeBoxes)));
    for (const auto& [wid, box] : boxes) {
        Texts& texts = m_texts[box->Serial()];
        Refresh(*box, texts);
        pieces.push_back(texts.box);
        if (!texts.wires->empty()) wires.push_back(texts.wires);
    }
    pieces.push_back(Share(std::move(frame.beforeWires)));
    pieces.insert(pieces.end(), wires.begin(), wires.end());
    pieces.push_back(Share(std::move(frame.behindWires)));
    m_anyLeft = false;
    m_edited = false;
    m_view = PresentView();
    return pieces;
}

std::string TextOf(const DocumentSnapshot::Pieces& pieces) {
    size_t size = 0;
    for (const auto& piece : pieces) size += piece->size();
    std::string text;
    text.reserve(size);
    for (const auto& piece : pieces) text += *piece;
    return text;
}

}  // namespace tavrin
