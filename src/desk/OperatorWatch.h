// SPDX-License-Identifier: Apache-2.0
// Tells of which operators the definitions are not any more what boxes of the network were read from.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "document/TvDoc.h"
#include "library/DefinitionSource.h"

namespace tavrin {

// An operator of which boxes stand that were read from something else than its definition is now.
struct StaleOperator {
    std::string name;
    size_t boxes = 0;
    bool operator==(const StaleOperator&) const = default;
};

// What a look has found. A plain value.
struct WatchFindings {
    std::vector<StaleOperator> stale;   // in the order of their names
    std::vector<std::string> problems;  // operators that boxes could not be made of now, and why
    std::vector<std::string> notes;     // of operators that the library has no more
};

// Belongs to who shows the document, which outlives it. It remembers how files looked when it last knew what
// is in them, and what the user was asked. Nothing of the document changes, and nothing is reported.
// Definitions are compared by what the preprocessor makes of them, so a file that was only written anew is no
// change; a run is made only for an operator of which a file looks different, or of which that cannot be
// told. Main thread only.
class OperatorWatch {
  public:
    OperatorWatch(const CTvDoc& document, DocumentHost& host) : m_document(document), m_host(host) {}

    // Operators of which a file has changed, their own or another that the preprocessor names, but for
    // changes that were answered, and problems that were told before.
    WatchFindings LookAtFiles() { return Look(false); }
    // All operators, whatever was answered: the user asks for it.
    WatchFindings LookAtAll() { return Look(true); }

    // The user was asked about these and lets their boxes be: until their definitions are others again, only
    // LookAtAll finds them.
    void Declined(const std::vector<StaleOperator>& operators);
    // Their boxes were brought up to date, with what was there by then: should the user undo that, it is the
    // same.
    void Updated(const std::vector<StaleOperator>& operators);

  private:
    // What is known of a definition while its files look like this.
    struct Known {
        DefinitionSource source;  // only where there is no problem
        std::string problem;      // empty for a definition that can be read
    };
    using Boxes = std::vector<const COpBox*>;

    WatchFindings Look(bool looksAtAll);
    std::map<std::string, Boxes> BoxesByOperator() const;
    bool HasChanged(const Boxes& boxes);
    bool IsCurrent(const DefinitionSource& source);
    const FileStamp& Stamp(const std::string& path);
    bool IsKnown(const COpEntry& entry);
    void Read(const std::vector<const COpEntry*>& entries);
    std::string ProblemOfFile(const COpEntry& entry);
    Known ReadDefinition(const COpEntry& entry, DefinitionTexts& texts);
    void Judge(const COpEntry& entry, const Boxes& boxes, bool looksAtAll, WatchFindings& findings);

    const CTvDoc& m_document;
    DocumentHost& m_host;
    // By the operator's file.
    std::map<std::string, Known> m_known;
    std::map<std::string, size_t> m_answered;   // hashes
    std::map<std::string, std::string> m_told;  // problems
    std::map<std::string, FileStamp> m_stamps;  // of the look that goes on
};

}  // namespace tavrin
