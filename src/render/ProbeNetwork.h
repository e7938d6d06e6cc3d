// SPDX-License-Identifier: Apache-2.0
// A saved network that takes an output to the picture.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "document/TvDoc.h"
#include "library/DefinitionSource.h"

namespace tavrin {

// Owned by the probe. Its boxes stand in a document of their own that nobody sees.
class ProbeNetwork {
  public:
    // Reads the file. What is wrong with it is not reported: Problem tells.
    ProbeNetwork(const std::string& path, DocumentHost& host);
    ~ProbeNetwork();

    const std::string& Path() const { return m_stamp.path; }
    // Why it shows nothing, with the file and what to do; empty if it does.
    const std::string& Problem() const { return m_problem; }
    // The file looks as it did when it was read.
    bool IsCurrent() const;

    // Whether its open input has a cast of the type, and whether that is the cast that it was saved with.
    bool Takes(std::string_view type) const;
    bool Prefers(std::string_view type) const;

    // The boxes that the output goes through to the picture, with those that feed it, in the order of
    // generation, for as long as this stands, on the stack. The open input has the cast of the output's type,
    // which it takes, and the boxes have numbers that no box of `document` has. The output knows nothing of
    // it.
    class Wire {
      public:
        Wire(ProbeNetwork& network, COpButton& output, const CTvDoc& document);
        ~Wire();
        Wire(const Wire&) = delete;
        Wire& operator=(const Wire&) = delete;

        std::vector<COpBox*> boxes;

      private:
        COpButton& m_input;
        COpButton& m_output;
    };

  private:
    std::string Read(DocumentHost& host);
    std::string FindInput();
    void NumberBoxes(const CTvDoc& document);

    FileStamp m_stamp;
    std::unique_ptr<CTvDoc> m_document;
    COpButton* m_input = nullptr;
    size_t m_cast = 0;  // of the input, as it was saved
    std::string m_problem;
};

}  // namespace tavrin
