// SPDX-License-Identifier: Apache-2.0
// An edit that nobody is told of is found, whatever it is.
#include "support/ChangeAuditor.h"

#include <gtest/gtest.h>

#include <functional>

#include "support/TestHost.h"

namespace tavrin {
namespace {

struct SilentEdit {
    const char* name;
    std::function<void(CTvDoc&, COpBox&)> edit;
};

void PrintTo(const SilentEdit& edit, std::ostream* out) { *out << edit.name; }

class SilentEdits : public test::DocumentTest, public testing::WithParamInterface<SilentEdit> {};

TEST_P(SilentEdits, AreFoundOutsideAScopeAndInOne) {
    COpDesk desk(document, host);
    COpBox& box = Add(desk, test::MakeLink("a", 0));
    Add(desk, test::MakeLink("b", 0));
    test::ChangeAuditor auditor(document, desk);
    EXPECT_EQ(auditor.Look(), "");
    GetParam().edit(document, box);
    EXPECT_NE(auditor.Look(), "");
    EXPECT_EQ(auditor.Look(), "");  // each is told once
    {
        const EditScope edit(document, "Other");
        const std::string name = GetParam().name;
        if (name != "options") document.edits.OptionsChanged();
        if (name == "options") document.edits.SettingsChanged();
        GetParam().edit(document, box);
    }
    EXPECT_NE(auditor.Look(), "");
}

INSTANTIATE_TEST_SUITE_P(
    Of, SilentEdits,
    testing::Values(SilentEdit{"place", [](CTvDoc&, COpBox& box) { box.xypos[0] += 1e-6F; }},
                    SilentEdit{"number", [](CTvDoc&, COpBox& box) { ++box.wid; }},
                    SilentEdit{"input", [](CTvDoc&, COpBox& box) { box.CopyButton(*box.inputs[0], true); }},
                    SilentEdit{"argument", [](CTvDoc&, COpBox& box) { box.inputs[0]->arg ^= 1; }},
                    SilentEdit{"comment", [](CTvDoc&, COpBox& box) { box.inputs[0]->comments += "x"; }},
                    SilentEdit{"value",
                               [](CTvDoc&, COpBox& box) {
                                   auto& value = dynamic_cast<COpValueFloat&>(*box.inputs[0]->values[0]);
                                   value.value += 1e-6F;
                               }},
                    SilentEdit{"wire",
                               [](CTvDoc& document, COpBox& box) {
                                   COpButton& input = *test::BoxAt(document, 1).inputs[0];
                                   if (input.connections.Empty()) {
                                       box.outputs[0]->Connect(input);
                                   } else {
                                       input.Disconnect();
                                   }
                               }},
                    SilentEdit{"box", [](CTvDoc& document,
                                         COpBox&) { document.m_boxes.push_back(test::MakeLink("c", 9)); }},
                    SilentEdit{"options",
                               [](CTvDoc& document, COpBox&) { document.m_renderOptions["x"] += "1"; }},
                    SilentEdit{"help", [](CTvDoc& document, COpBox&) { document.customshaderhelp += "1"; }},
                    SilentEdit{"lock", [](CTvDoc& document, COpBox&) { document.lock ^= 1; }}),
    [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace tavrin
