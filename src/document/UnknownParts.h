// SPDX-License-Identifier: Apache-2.0
// Tells what a document's file has and the library does not.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "text/Report.h"

namespace tavrin {

class DocumentForm;
struct Site;

// For one reading of a document. Each operator and each button is told once, in the words that the library
// has for it: the first by an alert, what follows by a line of the log, with the line of the file.
class UnknownParts {
  public:
    // Both outlive it.
    UnknownParts(const DocumentForm& form, Site& site) : m_form(form), m_site(site) {}

    // Why the operator could not be had when that was tried; null if it was not.
    const std::string* ReasonOf(std::string_view operatorName) const;
    // It cannot be had, as the held alerts say; the reason.
    const std::string& TellOperator(const std::string& name, size_t place, HeldAlerts& held);
    void TellButton(const std::string& operatorName, size_t place, const std::string& message);
    // Another library is in use.
    void ForgetOperators() { m_reasons.clear(); }

    void CountPlaceholder() { ++m_placeholders; }
    // At the end: how much stands in the document that the library does not know, if anything does.
    void TellCount();

  private:
    void Log(size_t place, const std::string& message);
    void KeepFileOf(const Report::Pending& alert);

    const DocumentForm& m_form;
    Site& m_site;
    std::unordered_map<std::string, std::string> m_reasons;  // by the operator's name in lower case
    std::unordered_set<std::string> m_told;
    size_t m_placeholders = 0;
    size_t m_strayButtons = 0;
    std::string m_alertFile;  // that the alert names, with what it held then
    std::string m_alertFileText;
};

}  // namespace tavrin
