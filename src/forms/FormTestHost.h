// SPDX-License-Identifier: Apache-2.0
// What the unit tests of the form share.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "forms/FormButtons.h"
#include "forms/FormFields.h"
#include "forms/FormFrame.h"
#include "forms/FormHost.h"
#include "forms/FormParser.h"
#include "support/TestSite.h"

namespace tavrin::test {

// Remembers every call; what was stored is the default from then on, as while no document is open.
class FormTestHost : public FormHost {
  public:
    void SetVariable(const std::string& name, const std::string& value) override {
        stored.emplace_back(name, value);
        variables[name] = value;
    }
    void AddUnsavedOption(const std::string& name) override { unsaved.push_back(name); }
    std::string GetAppVariable(const std::string& name) override {
        const auto found = variables.find(name);
        return found == variables.end() ? std::string() : found->second;
    }
    void AddShaderType(const std::string& line) override { shaderTypes.push_back(line); }
    void ClearShaderTypes() override {
        shaderTypes.clear();
        ++clears;
    }

    std::vector<std::pair<std::string, std::string>> stored;
    std::map<std::string, std::string> variables;
    std::vector<std::string> unsaved;
    std::vector<std::string> shaderTypes;
    int clears = 0;
};

using Stored = std::vector<std::pair<std::string, std::string>>;
using Lines = std::vector<std::string>;

// A form with something of everything that is common, from its keyword on.
inline const std::string kExampleForm =
    "roe {\nwinwidth 380\nframe {\n{\nvertical 2\n}\n"
    "xfield {\nenvname RENDER_DEPTH\noptionlabel Depth\nvalue 2\nforcefloat\n"
    "optioncontents {\n1 Fast\n4 Careful\n}\n}\n"
    "xyfield {\nenvname SIZE_X\nseparatorlabel x\nvalue 640,480\n}\n}\n"
    "okfield {\nok_actionto form\nok_actionmsg render\nok_actionarg render\n"
    "defaults_actionto roe\ndefaults_actionmsg use-defaults\n}\n}\n";

inline std::string WithCrLf(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '\n') result += '\r';
        result += c;
    }
    return result;
}

// Reads forms for tests, and tells what widgets have done.
class FormTest : public ::testing::Test {
  protected:
    FormTest() { report.SetSink(&sink); }

    // Reads a section from behind its keyword.
    bool Read(const std::string& text) {
        CArchive archive = ArchiveOf(text, "site.def");
        const bool read = ReadForm(archive, form, host, report);
        rest = std::string(archive.Rest());
        return read;
    }
    // Reads a section with one widget of this kind and returns it.
    template <typename Widget>
    Widget& ReadOne(const std::string& kind, const std::string& body) {
        EXPECT_TRUE(Read("{\n" + kind + " {\n" + body + "\n}\n}\n")) << sink.LastAlert();
        return Child<Widget>(form, form.children.size() - 1);
    }
    // A property line that is no property of the kind.
    void ExpectRefused(const std::string& kind, const std::string& line) {
        sink.alerts.clear();
        EXPECT_FALSE(Read("{\n" + kind + " {\n" + line + "\n}\n}\n")) << kind << ": " << line;
        EXPECT_EQ(sink.LastAlert(), "site.def near line 4: unexpected input") << kind << ": " << line;
    }
    template <typename Widget>
    static Widget& Child(const CFormFrame& frame, size_t index) {
        return dynamic_cast<Widget&>(*frame.children.at(index));
    }
    static Lines ListOf(const PresetList& presets) {
        return {presets.Lines().begin(), presets.Lines().end()};
    }

    CRenderOptionsEditor form;
    FormTestHost host;
    CollectingSink sink;
    Report report;
    std::string rest;  // what the last section left unread
};

// For what widgets do once they are built: what the form itself stored is out of the way.
class FormUse : public FormTest {
  protected:
    template <typename Widget>
    Widget& Make(const std::string& kind, const std::string& body) {
        Widget& widget = ReadOne<Widget>(kind, body);
        host.stored.clear();
        widget.refresh = [this] { ++refreshes; };
        return widget;
    }
    int refreshes = 0;
};

}  // namespace tavrin::test
