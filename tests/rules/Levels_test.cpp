// SPDX-License-Identifier: Apache-2.0
// The rooms of the source tree stand on levels. An include goes to a lower level or stays in its own room.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::TempDir;
using testing::ElementsAre;
using testing::IsEmpty;

const std::map<std::string, int>& Levels() {
    static const std::map<std::string, int> levels = {
        {"base", 0},    {"text", 1},  {"images", 1},   {"icons", 1}, {"codegen", 2}, {"site", 2},
        {"library", 3}, {"forms", 3}, {"document", 4}, {"desk", 5},  {"sliders", 5}, {"render", 6},
        {"app", 7},     {"batch", 8}, {"ui", 8},       {"view", 8},
    };
    return levels;
}

std::optional<int> LevelOf(const std::string& room) {
    const auto found = Levels().find(room);
    if (found == Levels().end()) return std::nullopt;
    return found->second;
}

// The rooms that may know the toolkit of the windows.
constexpr std::string_view kWindowRooms[] = {"icons", "ui", "view"};
// What tests of every room build on; it lies outside the source tree.
constexpr std::string_view kTestSupport = "support";
// The same for tests of windows.
constexpr std::string_view kWindowTestSupport = "ui/support/";

struct Include {
    std::string name;
    bool angular = false;  // <name> and not "name"
};

struct SourceFile {
    std::string path;  // below the source folder, such as "text/Tokens.h"
    std::vector<Include> includes;
    bool isTest = false;  // a test, or a header that only tests include

    std::string Room() const { return path.substr(0, path.find('/')); }
};

std::vector<Include> IncludesOf(const fs::path& path) {
    std::vector<Include> includes;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        line.erase(std::remove_if(line.begin(), line.end(),
                                  [](char c) { return c == ' ' || c == '\t' || c == '\r'; }),
                   line.end());
        constexpr std::string_view kDirective = "#include";
        if (!line.starts_with(kDirective) || line.size() == kDirective.size()) continue;
        const bool angular = line[kDirective.size()] == '<';
        const size_t begin = kDirective.size() + 1;
        includes.push_back({line.substr(begin, line.find(angular ? '>' : '"', begin) - begin), angular});
    }
    return includes;
}

// Tests, and the headers that only these include.
void MarkTests(std::vector<SourceFile>& files) {
    for (SourceFile& file : files) file.isTest = file.path.ends_with("_test.cpp");
    for (bool changed = true; changed;) {
        std::set<std::string> byTests;
        std::set<std::string> byOthers;
        for (const SourceFile& file : files) {
            for (const Include& include : file.includes)
                (file.isTest ? byTests : byOthers).insert(include.name);
        }
        changed = false;
        for (SourceFile& file : files) {
            if (file.isTest || !byTests.contains(file.path) || byOthers.contains(file.path)) continue;
            file.isTest = true;
            changed = true;
        }
    }
}

// Every header and source below the folder, in the order of paths.
std::vector<SourceFile> SourcesIn(const fs::path& folder) {
    std::vector<SourceFile> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const fs::path& path = entry.path();
        if (path.extension() != ".h" && path.extension() != ".cpp") continue;
        files.push_back({fs::relative(path, folder).generic_string(), IncludesOf(path)});
    }
    std::sort(files.begin(), files.end(), [](const auto& a, const auto& b) { return a.path < b.path; });
    MarkTests(files);
    return files;
}

// Why this include is not allowed; empty if it is.
std::string FaultOf(const SourceFile& file, const Include& include) {
    if (include.angular) {
        const bool toolkit = include.name.starts_with('Q');
        const bool mayKnow = std::ranges::find(kWindowRooms, file.Room()) != std::end(kWindowRooms);
        return toolkit && !mayKnow ? "knows the windows' toolkit" : "";
    }
    const std::string room = include.name.substr(0, include.name.find('/'));
    if (room == file.Room() || (room == kTestSupport && file.isTest)) return "";
    if (file.isTest && include.name.starts_with(kWindowTestSupport)) return "";
    const std::optional<int> from = LevelOf(file.Room());
    const std::optional<int> to = LevelOf(room);
    if (!from) return "lies in a room without a level";
    if (!to) return "includes from a room without a level";
    if (*to > *from) return "goes up";
    return *to == *from ? "goes to another room of its level" : "";
}

// Each fault as "FILE: INCLUDE REASON".
std::vector<std::string> FaultsIn(const fs::path& folder) {
    std::vector<std::string> faults;
    for (const SourceFile& file : SourcesIn(folder)) {
        for (const Include& include : file.includes) {
            const std::string fault = FaultOf(file, include);
            if (!fault.empty()) faults.push_back(file.path + ": " + include.name + " " + fault);
        }
    }
    return faults;
}

// Folders that the table of levels does not know, and files that lie in none.
std::vector<std::string> UnknownRoomsIn(const fs::path& folder) {
    std::vector<std::string> unknown;
    for (const auto& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (!entry.is_directory() || !LevelOf(name)) unknown.push_back(name);
    }
    return unknown;
}

// Walks the headers' includes; each circle is told as "a.h > b.h > a.h".
class CircleFinder {
  public:
    explicit CircleFinder(const std::vector<SourceFile>& files) {
        for (const SourceFile& file : files) {
            if (!file.path.ends_with(".h")) continue;
            for (const Include& include : file.includes) {
                if (!include.angular) m_includes[file.path].push_back(include.name);
            }
        }
        for (const auto& [header, ignored] : m_includes) Visit(header);
    }
    const std::vector<std::string>& Circles() const { return m_circles; }

  private:
    void Visit(const std::string& header) {
        const auto begin = std::find(m_road.begin(), m_road.end(), header);
        if (begin != m_road.end()) {
            std::string circle;
            for (auto step = begin; step != m_road.end(); ++step) circle += *step + " > ";
            m_circles.push_back(circle + header);
            return;
        }
        if (!m_done.insert(header).second) return;
        const auto found = m_includes.find(header);
        if (found == m_includes.end()) return;
        m_road.push_back(header);
        for (const std::string& next : found->second) Visit(next);
        m_road.pop_back();
    }

    std::map<std::string, std::vector<std::string>> m_includes;
    std::set<std::string> m_done;
    std::vector<std::string> m_road;
    std::vector<std::string> m_circles;
};

// The source tree

const fs::path& SourceFolder() {
    static const fs::path folder = test::SourcePath("src");
    return folder;
}

TEST(Levels, EveryFolderHasALevel) { EXPECT_THAT(UnknownRoomsIn(SourceFolder()), IsEmpty()); }

TEST(Levels, IncludesGoDownOrStayInTheirRoom) { EXPECT_THAT(FaultsIn(SourceFolder()), IsEmpty()); }

TEST(Levels, HeadersIncludeEachOtherInNoCircle) {
    const auto files = SourcesIn(SourceFolder());
    EXPECT_GT(files.size(), 20U);
    EXPECT_THAT(CircleFinder(files).Circles(), IsEmpty());
}

TEST(Levels, AnIncludeOfOurOwnNamesAFileByItsRoom) {
    std::vector<std::string> missing;
    for (const SourceFile& file : SourcesIn(SourceFolder())) {
        for (const Include& include : file.includes) {
            if (include.angular || include.name.starts_with(kTestSupport)) continue;
            if (file.isTest && include.name.starts_with(kWindowTestSupport)) continue;
            if (!fs::exists(SourceFolder() / include.name))
                missing.push_back(file.path + ": " + include.name);
        }
    }
    EXPECT_THAT(missing, IsEmpty());
}

// The check itself

TEST(LevelCheck, TellsEachKindOfFault) {
    const TempDir tree;
    tree.Write("base/Low.h", "#include <string>\n  #  include \"text/High.h\"\r\n#include <QString>\n");
    tree.Write("text/High.h", "#include \"base/Low.h\"\n#include \"text/Own.h\"\n");
    tree.Write("text/Own.cpp", "#include \"images/SgiImage.h\"\n// #include \"ui/Frame.h\"\n");
    tree.Write("attic/Old.cpp", "#include \"base/Low.h\"\n");
    tree.Write("app/App.cpp", "#include \"attic/Old.h\"\n#include \"support/TestSite.h\"\n");
    tree.Write("app/App_test.cpp",
               "#include \"support/TestSite.h\"\n#include \"batch/Main.h\"\n#include \"app/Helper.h\"\n");
    tree.Write("app/Helper.h", "#include \"support/TestSite.h\"\n");
    tree.Write("batch/Main.cpp", "#include \"ui/Frame.h\"\n#include <QtCore/QString>\n");
    tree.Write("ui/desk/Widget.cpp",
               "#include <QWidget>\n#include \"ui/forms/Form.h\"\n#include \"app/App.h\"\n");
    EXPECT_THAT(
        FaultsIn(tree.Path()),
        ElementsAre("app/App.cpp: attic/Old.h includes from a room without a level",
                    "app/App.cpp: support/TestSite.h includes from a room without a level",
                    "app/App_test.cpp: batch/Main.h goes up",
                    "attic/Old.cpp: base/Low.h lies in a room without a level",
                    "base/Low.h: text/High.h goes up", "base/Low.h: QString knows the windows' toolkit",
                    "batch/Main.cpp: ui/Frame.h goes to another room of its level",
                    "batch/Main.cpp: QtCore/QString knows the windows' toolkit",
                    "text/Own.cpp: images/SgiImage.h goes to another room of its level"));
    EXPECT_THAT(UnknownRoomsIn(tree.Path()), ElementsAre("attic"));
}

TEST(LevelCheck, WhatOnlyTestsMayIncludeDoesNotReachTheProgramThroughAHeader) {
    const TempDir tree;
    tree.Write("app/Helper.h", "#include \"support/TestSite.h\"\n");
    tree.Write("app/App_test.cpp", "#include \"app/Helper.h\"\n");
    EXPECT_THAT(FaultsIn(tree.Path()), IsEmpty());
    tree.Write("app/App.cpp", "#include \"app/Helper.h\"\n");
    EXPECT_THAT(FaultsIn(tree.Path()),
                ElementsAre("app/Helper.h: support/TestSite.h includes from a room without a level"));
}

TEST(LevelCheck, AFileOutsideEveryRoomIsUnknown) {
    const TempDir tree;
    tree.Write("Main.cpp", "");
    EXPECT_THAT(UnknownRoomsIn(tree.Path()), ElementsAre("Main.cpp"));
}

TEST(LevelCheck, TellsTheRoadOfACircle) {
    const TempDir tree;
    tree.Write("text/A.h", "#include \"text/B.h\"\n#include \"text/D.h\"\n");
    tree.Write("text/B.h", "#include \"text/C.h\"\n");
    tree.Write("text/C.h", "#include \"text/B.h\"\n#include \"text/D.h\"\n");
    tree.Write("text/D.h", "");
    tree.Write("text/E.h", "#include \"text/E.h\"\n");
    tree.Write("text/D.cpp", "#include \"text/D.h\"\n#include \"text/A.h\"\n");
    EXPECT_THAT(CircleFinder(SourcesIn(tree.Path())).Circles(),
                ElementsAre("text/B.h > text/C.h > text/B.h", "text/E.h > text/E.h"));
}

}  // namespace
}  // namespace tavrin
