// SPDX-License-Identifier: Apache-2.0
// What a document's file says, as plain records in the order of its text. Who looks into a file needs no
// more: no box and no definition, no library and no process. DocumentReader.h makes it, DocumentBuilder.h
// makes boxes of it, and DocumentFormWriter.h writes it back.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "document/DocumentRecords.h"
#include "text/Archive.h"

namespace tavrin {

// Where the text leaves the format.
struct ReadingError {
    enum class Kind {
        kStop,        // what follows was not read
        kPassedOver,  // the rest of the section was not read as such, and reading went on
    };
    Kind kind = Kind::kStop;
    size_t place = 0;  // of the token at which it was met
    int line = 0;
    std::string message;  // empty where the format has no word for it
};

// Owns the text that its records look at. Can be moved; the records stay where they are.
class DocumentForm {
  public:
    const std::string& Path() const { return m_source->Path(); }
    std::string_view Text() const { return m_source->Text(); }
    std::string_view TextOf(const DocumentRecord& record) const {
        return Text().substr(record.begin, record.end - record.begin);
    }
    // The line of a place in the text, counted from 1. Who asks for one place after the other pays for one
    // count of the lines.
    int LineAt(size_t place) const { return m_source->LineAt(place); }
    int LineOf(const DocumentRecord& record) const { return LineAt(record.begin); }
    int LastLineOf(const DocumentRecord& record) const { return LineAt(record.end); }
    // Reading came to the end of the text, whatever it has passed over.
    bool IsReadToEnd() const { return errors.empty() || errors.back().kind != ReadingError::Kind::kStop; }

    // Something in it is a word of the format, or it says in comments alone that it holds nothing: a picture,
    // noise or an empty file does neither. For a form of all sections.
    bool IsDocument() const { return m_isComments || !sections.empty() || !errors.empty(); }

    // In the order of the text.
    std::vector<SectionRecord> sections;
    std::vector<ReadingError> errors;  // in the order in which they were met; a stop comes last

  private:
    friend class DocumentReader;
    explicit DocumentForm(CArchive source) : m_source(std::make_unique<CArchive>(std::move(source))) {}

    std::unique_ptr<CArchive> m_source;
    bool m_isComments = false;          // nothing else stands there
    std::deque<std::string> m_decoded;  // tokens that do not stand in the text as they are
};

}  // namespace tavrin
