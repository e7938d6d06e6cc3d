// SPDX-License-Identifier: Apache-2.0
#include "support/TestHost.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "base/Paths.h"
#include "document/DocumentReader.h"

namespace tavrin::test {

namespace {

// Hands the operator's file, the last argument, to the output, the second, as it stands.
constexpr const char* kRedirect =
    "my ($in, $out, $err, $command, $file) = @ARGV;\n"
    "open my $from, '<:raw', $file or exit 3;\n"
    "open my $to, '>:raw', $out or exit 4;\n"
    "local $/;\n"
    "my $text = <$from>;\n"
    "print {$to} $text if defined $text;\n";

constexpr const char* kLinkDefinition = "input in { float { 0 0 1 0 %g } } output out { float out }";

}  // namespace

TestHost::TestHost() {
    Site& site = m_test.site;
    site.environment.Set("SOURCE_DATE_EPOCH", "1000000000");
    site.directories.tavrnDir = m_test.directory / "installation";
    MakeLibrary("mini");
    UseLibrary("mini");
    usedLibraries.clear();
}

void TestHost::MakeLibrary(const std::string& name) {
    m_test.directory.Write("installation/" + name + "/bin/redirect.pl", kRedirect);
    std::filesystem::create_directories(m_test.directory / ("installation/" + name + "/menu"));
}

bool TestHost::LoadDefinition(COpBox& box, const std::string& operatorName, DefinitionTexts* texts) {
    const COpEntry* entry = m_registry.FindByName(operatorName);
    if (startsProcesses || entry == nullptr) return DocumentHost::LoadDefinition(box, operatorName, texts);
    box.filename = entry->name;
    CArchive archive = ArchiveOf(ReadFile(entry->path), entry->path);
    return box.ReadDefinition(archive, m_test.site.directories.libDir, m_test.report);
}

bool TestHost::UseLibrary(const std::string& name) {
    usedLibraries.push_back(name);
    if (name.find('/') != std::string::npos) return false;
    Directories& directories = m_test.site.directories;
    directories.libName = name;
    directories.libDir = JoinPath(directories.tavrnDir, name);
    m_registry.Clear();
    m_registry.AddDirectory(JoinPath(directories.libDir, "menu"));
    return true;
}

std::string TestHost::AddOperator(const std::string& name, const std::string& text,
                                  const std::string& library) {
    MakeLibrary(library);
    const std::string key = std::to_string(1000 + m_operatorCounts[library]++);
    const std::string path =
        m_test.directory.Write("installation/" + library + "/menu/" + key + "." + name, text);
    const Directories& directories = m_test.site.directories;
    m_registry.Clear();
    m_registry.AddDirectory(JoinPath(directories.libDir, "menu"));
    return path;
}

RecordingView::RecordingView(CTvDoc& document)
    : m_changes(document.edits.Observe([this](const Change& change) { OnChange(change); })) {}

void RecordingView::OnChange(const Change& change) {
    calls.push_back(TextOf(change));
    if (change.replaced) finder.clear();
    for (const GoneBox& box : change.went) {
        const auto place = std::find(finder.begin(), finder.end(), box.boxTitleWid);
        if (place != finder.end()) finder.erase(place);
    }
    for (const COpBox* box : change.came) finder.push_back(box->BoxTitleWid());
}

std::string TextOf(const Change& change) {
    std::string text = change.act.empty() ? "" : change.act + ":";
    const auto add = [&text](const std::string& word) { text += (text.empty() ? "" : " ") + word; };
    if (change.replaced) add("replaced");
    const auto list = [&](const char* what, const auto& objects, const auto& nameOf) {
        if (!objects.empty()) add(what);
        for (const auto& object : objects) add(nameOf(object));
    };
    const auto title = [](const COpBox* box) { return box->BoxTitleWid(); };
    if (!change.replaced) list("came", change.came, title);
    list("dropped", change.dropped, title);
    list("went", change.went, [](const GoneBox& box) { return box.boxTitleWid; });
    list("touched", change.touched, title);
    const auto name = [](const COpButton* button) {
        return button->owner->BoxTitleWid() + "." + button->DisplayName();
    };
    list("buttons", change.buttons, name);
    list("tuned", change.tuned, name);
    if (change.wires) add("wires");
    if (change.options) add("options");
    if (change.settings) add("settings");
    if (change.frames) add("frames");
    if (change.selection) add("selection");
    return text;
}

std::unique_ptr<COpBox> MakeBox(const std::string& filename, const std::string& definition, int wid) {
    CollectingSink sink;
    Report report;
    report.SetSink(&sink);
    auto box = std::make_unique<COpBox>();
    CArchive archive = ArchiveOf(definition, filename);
    EXPECT_TRUE(box->ReadDefinition(archive, "", report)) << sink.LastAlert();
    box->filename = filename;
    box->wid = wid;
    return box;
}

std::unique_ptr<COpBox> MakeLink(const std::string& filename, int wid) {
    return MakeBox(filename, kLinkDefinition, wid);
}

void Wire(COpBox& from, size_t output, COpBox& to, size_t input) {
    to.inputs.at(input)->Connect(*from.outputs.at(output));
}

COpBox& BoxAt(const CTvDoc& document, size_t place) {
    if (place >= document.m_boxes.size()) throw std::out_of_range("the document has no such box");
    return **std::next(document.m_boxes.begin(), static_cast<std::ptrdiff_t>(place));
}

std::vector<int> WidsOf(const CTvDoc& document) {
    std::vector<int> wids;
    for (const auto& box : document.m_boxes) wids.push_back(box->wid);
    return wids;
}

std::string CrLfText(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '\n') result += '\r';
        result += c;
    }
    return result;
}

COpBox& DocumentTest::Add(COpDesk& desk, std::unique_ptr<COpBox> box) {
    const EditScope edit(document, "Add");
    EXPECT_TRUE(desk.AdmitBox(*box));
    document.edits.BoxDropped(*box);
    document.SetModified(false);
    return Add(std::move(box));
}

bool DocumentTest::Load(std::string_view text) {
    return document.Load(ReadDocument(ArchiveOf(text, "doc.tvn")));
}

bool DocumentTest::LoadDeskOnly(std::string_view text) {
    return document.LoadDesk(ReadDesk(ArchiveOf(text, "doc.tvn")));
}

}  // namespace tavrin::test
