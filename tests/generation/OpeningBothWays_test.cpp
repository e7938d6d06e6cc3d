// SPDX-License-Identifier: Apache-2.0
// Whatever a document holds, it opens to the same with a run of the preprocessor for each operator as with
// one for each box: every document of the tests, whole and broken, with the operators of the supplied library
// and of some that are broken themselves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "document/DocumentReader.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::ReadFile;
using test::SourcePath;

// The supplied library and some operators more. Documents that name another library stay with this one.
class LibraryHost : public test::TestHost {
  public:
    explicit LibraryHost(bool isPure) {
        Site& site = GetSite();
        site.directories.tavrnDir = SourcePath("installation");
        site.directories.libName = "mray";
        site.directories.libDir = SourcePath("installation/mray");
        site.settingsLibrary = "mray";
        site.settings.Store("preprocess.pure", isPure ? "1" : "0");
        const test::TempDir& directory = Directory();
        directory.Write("more/0100.Refused", "icontext x\n#error not today\n");
        directory.Write("more/0110.Wrong", "icontext x\nbogus\n");
        directory.Write("more/0120.noisebox", "output result { float out }\n");
        directory.Write("more/0130.surfacebox", "input amount { float { 0 0 1 0 %g } }\n");
        directory.Write("more/0140.Empty", "");
        m_operators.AddDirectory(SourcePath("installation/mray/menu"));
        m_operators.AddDirectory(SourcePath("tests/tiny/menu"));
        m_operators.AddDirectory(directory / "more");
    }
    const COpRegistry& Registry() const override { return m_operators; }
    bool UseLibrary(const std::string& name) override { return name.find('/') == std::string::npos; }

  private:
    Report m_silent;
    COpRegistry m_operators{m_silent};
};

// All that an opening leaves, as text. Paths of the host's own work directory are told by a word.
std::string Opened(const std::string& text, bool isPure, bool deskOnly) {
    LibraryHost host(isPure);
    CTvDoc document(host);
    CArchive archive = test::ArchiveOf(text, "doc.tvn");
    const bool isRead = deskOnly ? document.LoadDesk(ReadDesk(std::move(archive)))
                                 : document.Load(ReadDocument(std::move(archive)));
    const test::CollectingSink& sink = host.Sink();
    std::string result = isRead ? "read\n" : "stopped\n";
    for (const std::string& alert : sink.alerts) result += "ALERT " + alert + "\n";
    for (const std::string& file : sink.files) result += "FILE " + file + "\n" + ReadFile(file) + "\n";
    result += "LOG " + sink.log + "\n" + document.Snapshot();
    const std::string own = host.Directory().Path();
    for (auto place = result.find(own); place != std::string::npos; place = result.find(own, place))
        result.replace(place, own.size(), "OWN");
    return result;
}

std::string BoxesOf(const std::vector<std::string>& names) {
    std::string text = "opdesk {\n";
    for (const std::string& name : names) text += "opbox { filename " + name + " wid 1 }\n";
    return text + "}\n";
}

std::vector<std::string> Corpus() {
    std::vector<std::string> files;
    for (const char* folder : {"examples", "fuzz/corpus/document", "tests/cases", "tests/hostile/document"}) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(SourcePath(folder))) {
            const bool isDocument =
                entry.path().extension() == ".tvn" || std::string_view(folder).starts_with("fuzz");
            if (isDocument && entry.is_regular_file()) files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

TEST(OpeningBothWays, EveryDocumentOfTheTestsOpensToTheSame) {
    const auto files = Corpus();
    EXPECT_GT(files.size(), 100U);
    for (const std::string& file : files) {
        const std::string text = ReadFile(file);
        EXPECT_EQ(Opened(text, true, false), Opened(text, false, false)) << file;
    }
}

TEST(OpeningBothWays, ABrokenOperatorIsToldTheSameWhereverItStands) {
    for (const std::string name : {"Refused", "Wrong", "Missing", "Empty", "noisebox"}) {
        for (const auto& names : std::vector<std::vector<std::string>>{
                 {name}, {"Noise", name}, {"Noise", "Noise", name, "Mix"}, {name, name, "Noise", "Wrong"}}) {
            const std::string text = BoxesOf(names);
            for (const bool deskOnly : {false, true})
                EXPECT_EQ(Opened(text, true, deskOnly), Opened(text, false, deskOnly)) << text;
        }
    }
}

}  // namespace
}  // namespace tavrin
