// SPDX-License-Identifier: Apache-2.0
// What tests of renders stand on: a session whose filter does nothing and whose launcher does as a test says.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "document/EditHistory.h"
#include "render/RenderSession.h"
#include "site/Site.h"
#include "support/Patience.h"
#include "support/TestHost.h"

namespace tavrin::test {

class RendersTest : public DocumentTest {
  protected:
    RendersTest() {
        Launcher("");
        site.environment.Set("PATH", host.Directory() / "bin" + ":/usr/bin:/bin");
        host.Directory().Write("installation/mini/bin/redirect.pl", "exit 0;\n");
        document.SetPath("/documents/plastic.tvn");
        document.KeepHistory();
        Add(MakeLink("Link", 1));
        NewSession();
    }
    ~RendersTest() override {
        host.Directory().Write("work/go", "");
        WaitForEnd();
    }
    void NewSession() { session = std::make_unique<RenderSession>(document, site, siteCodeGen); }

    // The shell text that stands for "renderit $2 $3". It begins in the directory of the render.
    void Launcher(const std::string& text) const {
        namespace fs = std::filesystem;
        const std::string path = host.Directory().Write(
            "bin/PerlExec", "#!/bin/sh\nmkdir -p \"$TAVRN_WORKDIR/$3\" && cd \"$TAVRN_WORKDIR/$3\"\n" + text);
        fs::permissions(path, fs::perms::owner_all);
    }
    static constexpr const char* kPicture = "printf picture > $2.png\n";
    static constexpr const char* kUntilStopped =
        "until [ -e \"$TAVRN_WORKDIR/go\" ] || [ -e \"$TAVRN_KILLFILE\" ]; do sleep 0.005; done\n";

    // Until no child is left and what they have posted is done.
    bool WaitForEnd() {
        const auto limit = std::chrono::steady_clock::now() + kPatience;
        while (site.commands.AnyProcessLeft()) {
            if (std::chrono::steady_clock::now() > limit) return false;
            host.RunPending();
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        host.RunPending();
        return true;
    }
    // Whether it was started and has ended.
    bool Render() { return session->RenderIt() && WaitForEnd(); }
    static RenderRecord RecordOf(int number, const std::string& name = "plastic") {
        RenderRecord record;
        record.number = number;
        record.name = name;
        return record;
    }
    void SetOption(const std::string& name, const std::string& value) {
        EditScope edit(document, "Option");
        document.edits.OptionsChanged();
        document.m_renderOptions[name] = value;
    }

    Site& site = host.GetSite();
    CCodeGen siteCodeGen;
    std::unique_ptr<RenderSession> session;
};

}  // namespace tavrin::test
