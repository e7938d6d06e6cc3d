// SPDX-License-Identifier: Apache-2.0
// What the tests of documents and of the desk build on: an application in small, with a library of its own.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "desk/OpDesk.h"
#include "document/TvDoc.h"
#include "library/OpRegistry.h"
#include "support/TestSite.h"

namespace tavrin::test {

// The library "mini" is selected and holds no operator. A definition goes through a real process, which
// hands it on as it stands, unless a test wants none. The clock stands still at kTestTime.
class TestHost : public DocumentHost {
  public:
    TestHost();

    Site& GetSite() override { return m_test.site; }
    const COpRegistry& Registry() const override { return m_registry; }
    const std::map<std::string, std::string>& AppVariables() const override { return appVariables; }
    const CExportOptions& ExportDefaults() const override { return exportDefaults; }
    bool IsUnsavedOption(const std::string& name) const override { return unsavedOptions.contains(name); }
    // Refuses a name with a separator in it.
    bool UseLibrary(const std::string& name) override;
    std::string DocumentVersion() const override { return "1.3.32"; }
    void NoteOwnText(std::string_view text) override { ownTexts.emplace_back(text); }

    // Puts an operator's file into a library and scans the selected one again; the file's path.
    std::string AddOperator(const std::string& name, const std::string& text,
                            const std::string& library = "mini");

    CollectingSink& Sink() { return m_test.sink; }
    // What other threads have posted to the main one.
    void RunPending() {
        while (m_test.queue.RunPending()) {
        }
    }
    const TempDir& Directory() const { return m_test.directory; }

    std::map<std::string, std::string> appVariables;
    CExportOptions exportDefaults;
    std::set<std::string> unsavedOptions;
    std::vector<std::string> usedLibraries;  // every name that UseLibrary got
    std::vector<std::string> ownTexts;       // that NoteOwnText got
    bool startsProcesses = true;             // false: definitions are read directly, for tests that read many

  protected:
    bool LoadDefinition(COpBox& box, const std::string& operatorName, DefinitionTexts* texts) override;

  private:
    void MakeLibrary(const std::string& name);

    TestSite m_test;
    COpRegistry m_registry{m_test.report};
    std::map<std::string, int> m_operatorCounts;  // by library
};

inline const std::string kTestTime = "Sun Sep 09 01:46:40 2001";

// A view that remembers each call, and each change of the document that it is told of, as a line of text.
class RecordingView : public DeskView {
  public:
    explicit RecordingView(CTvDoc& document);
    void LayoutBox(COpBox& box) override { calls.push_back("layout " + box.BoxTitleWid()); }
    void Repaint() override { calls.emplace_back("repaint"); }
    void UpdateScrollBars() override { calls.emplace_back("scrollbars"); }

    std::vector<std::string> calls;   // a change as TextOf says it
    std::vector<std::string> finder;  // what the Box Finder shows, in the order of coming

  private:
    void OnChange(const Change& change);

    Edits::Subscription m_changes;
};

// "Wire: wires", "Paste: came a_2 b_3", "selection", "replaced": what was done, and all that it changed.
std::string TextOf(const Change& change);

// A desk with a view from the start.
class SeenDesk : public COpDesk {
  public:
    SeenDesk(CTvDoc& document, DocumentHost& host, DeskView& view) : COpDesk(document, host) {
        SetView(&view);
    }
};

// A box that reads a definition from the text, without any process.
std::unique_ptr<COpBox> MakeBox(const std::string& filename, const std::string& definition, int wid = 0);
// A box with one float input "in" and one float output "out".
std::unique_ptr<COpBox> MakeLink(const std::string& filename, int wid);

// Connects two boxes by the positions of their buttons.
void Wire(COpBox& from, size_t output, COpBox& to, size_t input);

COpBox& BoxAt(const CTvDoc& document, size_t place);
std::vector<int> WidsOf(const CTvDoc& document);

std::string CrLfText(std::string_view text);  // each line feed as CR LF

class DocumentTest : public ::testing::Test {
  protected:
    // Reads a text as the file "doc.tvn".
    bool Load(std::string_view text);
    bool LoadDeskOnly(std::string_view text);
    // Puts a box into the network, below the others.
    COpBox& Add(std::unique_ptr<COpBox> box) { return *document.m_boxes.emplace_back(std::move(box)); }
    // Takes a box onto the desk and puts it there; the document counts as unmodified.
    COpBox& Add(COpDesk& desk, std::unique_ptr<COpBox> box);
    const std::vector<std::string>& Alerts() { return host.Sink().alerts; }

    TestHost host;
    CTvDoc document{host};
};

}  // namespace tavrin::test
