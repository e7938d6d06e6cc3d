// SPDX-License-Identifier: Apache-2.0
// What tests of Live stand on: a library whose scripts they write, and ears for all that is told.
#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "codegen/CodeGen.h"
#include "render/LiveRender.h"
#include "support/Patience.h"
#include "support/Processes.h"
#include "support/TestHost.h"

namespace tavrin::test {

// Behind this stands each script; it knows: Next, the next state's directory; Paint, which leaves a file that
// passes for a picture; Answer, which does so and says it; Wait, for a file of the work directory; Note,
// which writes a line to "noted" there, and Own, which notes a process that must not be left.
inline constexpr const char* kPrologue = R"(use strict; use warnings;
$| = 1;
my $work = $ENV{TEST_WORK};
sub Next { my $dir = <STDIN>; exit 0 if !defined $dir; chomp $dir; return $dir; }
sub Paint { my ($dir, $name) = @_; open my $out, '>', "$dir/$name" or die; print $out 'x'; close $out; return "$dir/$name"; }
sub Answer { my $dir = shift // Next(); print 'picture ', Paint($dir, 'p.png'), "\n"; }
sub Wait { select undef, undef, undef, 0.005 until -e "$work/$_[0]"; }
sub Add { my ($file, $line) = @_; open my $out, '>>', "$work/$file" or die; print $out "$line\n"; close $out; }
sub Note { Add('noted', $_[0]); }
sub Own { Add('own', $$); }
)";

// A live command that does what it should.
inline constexpr const char* kPaints = "Answer() while 1;\n";

class LiveTest : public DocumentTest {
  protected:
    LiveTest() {
        site.settingsLibrary = site.directories.libName;
        site.environment.Set("TEST_WORK", site.directories.workDir);
        document.SetPath("/documents/plastic.tvn");
        Add(MakeLink("Link", 1));
    }
    ~LiveTest() override {
        live.SwitchOff();
        site.commands.EndChildren(std::chrono::milliseconds(0), std::chrono::milliseconds(0));
        Pump();
    }

    // A script of the library's bin.
    void Script(const std::string& name, const std::string& text) const {
        const std::string path = host.Directory().Write("installation/mini/bin/" + name, kPrologue + text);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    }
    // Another state of the network, by its render options.
    void Change() {
        document.m_renderOptions["STEP"] = std::to_string(++m_steps);
        live.Update();
    }

    void Pump() {
        host.RunPending();
        if (std::exchange(m_isReady, false)) live.Update();
    }
    bool PumpUntil(const std::function<bool()>& condition) {
        const auto limit = std::chrono::steady_clock::now() + kPatience;
        while (!condition()) {
            if (std::chrono::steady_clock::now() > limit) return false;
            Pump();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }
    bool PumpToPictures(size_t count) {
        return PumpUntil([&] { return pictures.size() >= count; });
    }
    bool PumpToTroubles(size_t count) {
        return PumpUntil([&] { return troubles.size() >= count; });
    }
    bool PumpUntilNothingIsLeft() {
        return PumpUntil([this] { return !site.commands.AnyLineChildLeft(); });
    }

    std::vector<std::string> LinesOf(const std::string& file) const {
        std::vector<std::string> lines;
        std::istringstream text(ReadFile(site.WorkPath(file)));
        for (std::string line; std::getline(text, line);) lines.push_back(line);
        return lines;
    }
    std::vector<std::string> Noted() const { return LinesOf("noted"); }
    size_t OwnCount() const { return LinesOf("own").size(); }
    // Of the processes that scripts have noted. False if there is none.
    bool OwnAreGone() const {
        const std::vector<std::string> all = LinesOf("own");
        return !all.empty() && SleepUntil([&] {
            return std::all_of(all.begin(), all.end(),
                               [](const std::string& id) { return IsGone(std::stoi(id)); });
        });
    }
    std::vector<std::string> LiveDirectories() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(site.WorkPath(".live")))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }
    const std::string& Log() { return host.Sink().log; }

    Site& site = host.GetSite();
    CCodeGen siteCodeGen;
    RenderSession session{document, site, siteCodeGen};
    std::vector<LivePicture> pictures;
    std::vector<std::string> troubles;
    int switchedOff = 0;
    LiveRender live{session,
                    document,
                    site,
                    {[this](const LivePicture& picture) { pictures.push_back(picture); },
                     [this](const std::string& text) { troubles.push_back(text); },
                     [this] { m_isReady = true; }, [this] { ++switchedOff; }}};

  private:
    int m_steps = 0;
    bool m_isReady = false;
};

}  // namespace tavrin::test
