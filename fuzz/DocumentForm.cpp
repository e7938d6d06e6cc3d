// SPDX-License-Identifier: Apache-2.0
// The plain form of documents: records lie in the text and in its order, and what is written of them reads as
// what was written.
#include <cstdlib>

#include "document/DocumentFormWriter.h"
#include "document/DocumentReader.h"
#include "fuzz/FuzzHost.h"

namespace {

using namespace tavrin;

void Require(bool holds) {
    if (!holds) std::abort();
}

// Each behind the one before; one that is not whole has no end.
class Places {
  public:
    explicit Places(const DocumentForm& form) : m_form(form) {}
    void Check(const DocumentRecord& record) {
        Require(record.begin >= m_before && record.end >= record.begin && record.end <= m_form.Text().size());
        Require(m_form.LineOf(record) <= m_form.LastLineOf(record));
        m_before = record.IsWhole() ? record.end : record.begin;
    }

  private:
    const DocumentForm& m_form;
    size_t m_before = 0;
};

void Check(const DocumentForm& form) {
    Places sections(form);
    for (const SectionRecord& section : form.sections) {
        sections.Check(PlaceOf(section));
        const auto* desk = std::get_if<DeskRecord>(&section);
        if (desk == nullptr) continue;
        Places items(form);
        for (const auto& item : desk->items) {
            std::visit([&](const auto& record) { items.Check(record); }, item);
            const auto* box = std::get_if<BoxRecord>(&item);
            if (box == nullptr) continue;
            Places buttons(form);
            for (const ButtonRecord& button : box->buttons) {
                buttons.Check(button);
                Places values(form);
                for (const ValueRecord& value : button.values) values.Check(value);
            }
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const DocumentForm form = ReadDocument(fuzz::ArchiveOf(data, size));
    Check(form);
    Check(ReadDesk(fuzz::ArchiveOf(data, size)));
    const std::string written = WriteForm(form);
    const DocumentForm again = ReadDocument(CArchive::FromText("again", written));
    Require(again.errors.empty());
    Require(WriteForm(again) == written);
    return 0;
}
