// SPDX-License-Identifier: Apache-2.0
// What the tests of whole runs build on: an installation in small, and the program as a process.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "base/FileDescriptor.h"
#include "base/Process.h"
#include "support/TestSite.h"

namespace tavrin::test {

inline constexpr const char* kDocument =
    "opdesk\n{\n    opbox\n    {\n        filename Link\n        wid 1\n    }\n}\n";
inline constexpr const char* kPerl = "#!/usr/bin/perl\n";

// An installation with the library "small": one operator, and scripts that a test may replace.
class BatchTest : public ::testing::Test {
  protected:
    BatchTest() {
        for (const char* directory : {"tmp", "site/bin", "site/small/bin"})
            std::filesystem::create_directories(In(directory));
        std::filesystem::copy(SourcePath("installation/bin/PerlExec"), In("site/bin"));
        std::filesystem::copy(SourcePath("installation/mray/bin/redirect.pl"), In("site/small/bin"));
        std::filesystem::copy(SourcePath("installation/mray/bin/spp"), In("site/small/bin"));
        Write("site/small/menu/0010.Link", "input in { float { 0 0 1 0 %g } }\noutput out { float out }\n");
        Script("codefilter", "");
        Script("renderit", "print \"rendered @ARGV\\n\";\n");
        Write("doc.tvn", kDocument);
        for (const char* name : {"TEMP", "homeDrive", "homePath", "XDG_STATE_HOME"}) environment.Unset(name);
        environment.Set("HOME", In("home"));
        environment.Set("TAVRN_DIR", In("site"));
        environment.Set("TAVRN_LIB", "/small");
        environment.Set("TAVRN_TMPDIR", In("tmp"));
        environment.Set("TEST_GONE", In("gone"));
    }

    std::string In(const std::string& name) const { return m_directory / name; }
    std::string Write(const std::string& name, const std::string& text) const {
        return m_directory.Write(name, text);
    }
    std::string Read(const std::string& name) const { return ReadFile(In(name)); }
    void Script(const std::string& name, const std::string& text) const {
        std::filesystem::permissions(Write("site/small/bin/" + name, kPerl + text),
                                     std::filesystem::perms::owner_all);
    }

    // Runs the program with its streams redirected by a shell; its status.
    int Run(const std::vector<std::string>& words, const std::string& redirections = {}) {
        return RunShell("exec \"$0\" \"$@\" " + redirections, words);
    }
    // Runs a command of the shell, to which "$0" "$@" are the program and its words; its status.
    int RunShell(const std::string& command, const std::vector<std::string>& words) {
        std::vector<std::string> all = {"/bin/sh", "-c", command, BuildPath("bin/tavrin-batch")};
        all.insert(all.end(), words.begin(), words.end());
        const auto open = [this](const char* name) {
            return FileDescriptor(::open(In(name).c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
        };
        const FileDescriptor output = open("data");
        const FileDescriptor errors = open("log");
        std::string error;
        const pid_t process = Spawn({all, environment.ToList(), -1, output.Get(), errors.Get()}, error);
        EXPECT_GE(process, 0) << error;
        const int status = WaitForEnd(process);
        data = Read("data");
        log = Read("log");
        return status;
    }
    bool NothingIsLeft() const { return std::filesystem::is_empty(In("tmp")); }

    Environment environment = Environment::FromProcess();
    std::string data;  // standard output of the last run
    std::string log;   // its standard error

  private:
    TempDir m_directory;
};

}  // namespace tavrin::test
