// SPDX-License-Identifier: Apache-2.0
// What the tests of probes build on: a library with a network that shows numbers, and a small document.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "codegen/CodeGen.h"
#include "render/Probe.h"
#include "site/Site.h"
#include "support/NetworkPrint.h"
#include "support/TestHost.h"
#include "text/Tokens.h"

namespace tavrin::test {

class ProbeTest : public DocumentTest {
  protected:
    ProbeTest() {
        host.startsProcesses = false;
        site.settingsLibrary = site.directories.libName;
        AddOperators();
        AddNetwork("float.tvn", Show("float"));
    }
    void AddOperators() {
        const std::string number = " { float { 0.25 0 1 0 \"%g\" } }\n";
        const auto code = [](const std::string& line) {
            return "codegen.main-body append\n" + line + "\n<<EOT>>\n";
        };
        host.AddOperator(
            "Source", "input value" + number + "output out { float out rgb out }\n" + code("out = value;"));
        host.AddOperator("Pass", "input i" + number + "output o { float out }\noutput p { float out }\n" +
                                     code("o = i; p = -i;"));
        host.AddOperator("Relay", "input i" + number + "output tieback=i o { float out }\n");
        host.AddOperator(
            "Fixed", "input i" + number + "output fixedvalue=\"warp(i, TAVRN_BoxWid)\" o { float out }\n");
        host.AddOperator("Sum",
                         "vinput v { vargseparator \" + \" vinstances 2 float { 0.25 0 1 0 \"%g\" } }\n"
                         "output o { float out }\n" +
                             code("o = v;"));
        host.AddOperator("Sink", "input shade" + number + code("sink(shade);"));
        host.AddOperator("Show", "input other" + number +
                                     "input seen { float { 0 0 1 0 \"%g\" } rgb { 0 0 0 \"%g %g %g\" } "
                                     "generic:matrix { value \"m\" } string { value \"\" } }\n" +
                                     code("show(seen, other, TAVRN_Cast_seen, TAVRN_IsConnect_seen);"));
        host.AddOperator("Plain", "input seen" + number + code("plain(seen);"));
    }
    static std::string Button(const std::string& head, const std::string& cast, const std::string& values) {
        return "opbutton." + head + " { x { currentcast " + cast + " wwms { " + values + " } } }\n";
    }
    // A network whose open input has this cast.
    static std::string Show(const std::string& cast, const std::string& argument = "probe") {
        return "opdesk { opbox { filename Show wid 1\n" +
               Button("input other other", "float", "float 9 0 1 0") +
               Button("input seen seen", cast, "arg 1 argname \"" + argument + "\"") + "} }\n";
    }
    std::string NetworkPath(const std::string& name) const {
        return host.Directory() / ("installation/mini/probe/" + name);
    }
    // Names a network in the site's definitions.
    void AddNetwork(const std::string& name, const std::string& text) {
        host.Directory().Write("installation/mini/probe/" + name, text);
        site.probes.push_back("probe/" + name);
    }
    // Only this one.
    void SetNetwork(const std::string& name, const std::string& text) {
        site.probes.clear();
        AddNetwork(name, text);
    }
    void LoadDesk(const std::string& desk) {
        document.DeleteContents();
        document.customshaderhelp = "A plastic.";
        ASSERT_TRUE(Load("opdesk {\n" + desk + "\n}"));
        host.Sink().alerts.clear();
        host.Sink().log.clear();
    }
    // Source_1 feeds Pass_2, which feeds Sink_3.
    void LoadChain() {
        LoadDesk(
            "opbox { filename Source wid 1 } opbox { filename Pass wid 2 } opbox { filename Sink wid 3 }\n"
            "opconnects { opbox:S,1,out,0 -> opbox:P,2,i,0\nopbox:P,2,o,0 -> opbox:S,3,shade,0 }");
    }
    COpBox& Box(int wid) {
        for (const auto& box : document.m_boxes) {
            if (box->wid == wid) return *box;
        }
        throw std::out_of_range("no such box");
    }
    COpButton& Output(int wid, size_t place = 0) { return *Box(wid).outputs.at(place); }

    // A cast that definitions cannot give an output.
    static void MakeString(COpButton& output) {
        output.values.push_back(std::make_unique<COpValueString>());
        output.SetCast(output.values.size() - 1);
    }

    // The lines of the shader that say something; "nothing" where none is made.
    std::vector<std::string> Code() {
        const auto shader = probe.Generate("demo", codeGen);
        if (!shader) return {"nothing"};
        argInfo = shader->argInfo;
        std::vector<std::string> lines;
        for (const std::string& line : shader->text.code) {
            if (!Trim(line).empty()) lines.emplace_back(Trim(line));
        }
        return lines;
    }
    std::vector<std::string> CodeOf(COpButton& output) {
        EXPECT_TRUE(probe.Show(output)) << host.Sink().LastAlert();
        return Code();
    }
    // What is alerted instead of showing it.
    std::string RefusalOf(COpButton& output) {
        host.Sink().alerts.clear();
        EXPECT_FALSE(probe.Show(output));
        EXPECT_EQ(host.Sink().alerts.size(), 1U);
        return host.Sink().LastAlert();
    }
    // All of the document that anybody could see.
    std::string Everything() {
        return PrintNetwork(document) + document.Snapshot() + (document.IsModified() ? "modified" : "") +
               std::to_string(document.preparedVariables.Size()) + std::to_string(COpBox::LiveCount());
    }

    Site& site = host.GetSite();
    Probe probe{document, host};
    CCodeGen codeGen;
    std::string argInfo;  // of the code asked for last
};

}  // namespace tavrin::test
