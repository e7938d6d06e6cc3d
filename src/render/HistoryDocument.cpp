// SPDX-License-Identifier: Apache-2.0
#include "render/HistoryDocument.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "document/DocumentReader.h"
#include "library/DefinitionTexts.h"
#include "library/Placeholder.h"
#include "render/ArgInfo.h"
#include "render/ShaderText.h"
#include "site/Site.h"
#include "text/Archive.h"
#include "text/OutOfMemory.h"
#include "text/StoredText.h"

namespace tavrin {

namespace {

constexpr size_t kMostNotes = 20;

// The host of a document that is only looked at: no library is taken into use, and no file is written.
class LookingHost : public DocumentHost {
  public:
    explicit LookingHost(DocumentHost& host) : m_host(host) {}

    // The library that the document names, where it is not the one in use.
    const std::string& OtherLibrary() const { return m_otherLibrary; }

    Site& GetSite() override { return m_host.GetSite(); }
    const COpRegistry& Registry() const override { return m_host.Registry(); }
    const std::map<std::string, std::string>& AppVariables() const override { return m_host.AppVariables(); }
    const CExportOptions& ExportDefaults() const override { return m_host.ExportDefaults(); }
    bool IsUnsavedOption(const std::string& name) const override { return m_host.IsUnsavedOption(name); }
    bool WantsPlaceholders() override { return true; }
    bool UseLibrary(const std::string& name) override {
        m_otherLibrary = name == GetSite().directories.libName ? std::string() : name;
        return true;
    }
    std::string DocumentVersion() const override { return m_host.DocumentVersion(); }

  protected:
    // An operator of that name in this library is another one.
    bool LoadDefinition(COpBox& box, const std::string& operatorName, DefinitionTexts* texts) override {
        if (m_otherLibrary.empty()) return m_host.DefineBox(box, operatorName, texts);
        GetSite().report.Alert("it is of the library %s", m_otherLibrary.c_str());
        return false;
    }

  private:
    DocumentHost& m_host;
    std::string m_otherLibrary;
};

// Gathers what is reported meanwhile.
class Gathering {
  public:
    explicit Gathering(Report& report) : m_alerts(report), m_log(report) {}

    // Alerts and warnings, a line each.
    void AddTo(std::vector<std::string>& notes) const {
        for (const Report::Pending& alert : m_alerts.All()) Add(notes, alert.text);
        std::string_view log = m_log.Text();
        constexpr std::string_view kWarning = "WARNING: ";
        while (!log.empty()) {
            const size_t length = std::min(log.find('\n'), log.size());
            const std::string_view line = log.substr(0, length);
            if (line.starts_with(kWarning)) Add(notes, line.substr(kWarning.size()));
            log.remove_prefix(std::min(length + 1, log.size()));
        }
    }
    static void Add(std::vector<std::string>& notes, std::string_view text) {
        while (text.ends_with('\n') || text.ends_with('\r')) text.remove_suffix(1);
        std::string note = OneLine(text);
        if (notes.size() >= kMostNotes) note = "and more, which are left out here";
        if (notes.size() <= kMostNotes && std::find(notes.begin(), notes.end(), note) == notes.end())
            notes.push_back(std::move(note));
    }

  private:
    HeldAlerts m_alerts;
    HeldLog m_log;
};

// Options that the library does not know are lost to a document that is read, but the file has them.
void TakeUnknownOptions(const DocumentForm& form, OptionsState& options) {
    for (const SectionRecord& section : form.sections) {
        const auto* record = std::get_if<RenderOptionsRecord>(&section);
        if (record == nullptr) continue;
        for (const RenderOptionRecord& option : record->options)
            options.try_emplace(std::string(option.name), option.value);
    }
}

// The blocks of the arguments as the library's scripts find them, without the lines on how sliders stand:
// those make no other picture.
std::string ArgumentsOf(const CTvDoc& document, const PreparedVariables& variables, Report& report) {
    const std::string text = WriteArgInfo({}, document.CollectUnconnectedInputs(), variables, report);
    std::string arguments;
    const size_t begin = text.find("ArgName ");
    const size_t end = text.rfind("EndArginfo");
    for (size_t at = begin; at < end; at = text.find('\n', at) + 1) {
        const std::string_view line = std::string_view(text).substr(at, text.find('\n', at) + 1 - at);
        const auto isKey = [line](std::string_view key) { return line.substr(4).starts_with(key); };
        const bool isOfSlider =
            line.starts_with("    ") && (isKey("Stow ") || isKey("Lock ") || isKey("Pin "));
        if (!isOfSlider) arguments += line;
    }
    return arguments;
}

bool Load(CTvDoc& document, const std::string& path, Report& report, std::optional<DocumentForm>& form) {
    std::string error;
    auto archive = CArchive::Open(path, error);
    if (!archive) {
        report.Alert("unable to open %s for reading: %s", path.c_str(), error.c_str());
        return false;
    }
    form.emplace(ReadDocument(std::move(*archive)));
    if (!form->IsDocument()) {
        report.Alert("%s", NoDocumentMessage(*form).c_str());
        return false;
    }
    document.Load(*form);  // an error in it has been reported and leaves what was read
    return true;
}

}  // namespace

HistoryDocument HistoryReader::Read(const std::string& path, const std::string& shaderName) {
    HistoryDocument read;
    Report& report = m_host.GetSite().report;
    {
        const Gathering said(report);
        LookingHost host(m_host);
        CTvDoc document(host);
        std::optional<DocumentForm> form;
        read.isRead =
            WithinMemory(report, "reading " + path, [&] { return Load(document, path, report, form); });
        if (read.isRead) {
            read.network = PictureOf(document);
            TakeUnknownOptions(*form, read.network.options);
        }
        if (!host.OtherLibrary().empty()) {
            Gathering::Add(read.notes, "It was rendered with the library " + host.OtherLibrary() +
                                           ": what its file says is compared, and there is no source.");
            return read;
        }
        said.AddTo(read.notes);
        if (read.isRead) read.source = SourceOf(document, shaderName, read.notes);
    }
    if (!read.isRead && !read.notes.empty())
        report.LogLine("WARNING: nothing is compared with %s: %s", path.c_str(), read.notes[0].c_str());
    return read;
}

NetworkPicture HistoryReader::PictureOf(const CTvDoc& document) {
    NetworkPicture picture = CaptureNetwork(document);
    std::erase_if(picture.options,
                  [this](const auto& option) { return m_host.IsUnsavedOption(option.first); });
    return picture;
}

std::string HistoryReader::SourceOf(const CTvDoc& document, const std::string& shaderName,
                                    std::vector<std::string>& notes) {
    Site& site = m_host.GetSite();
    const Gathering said(site.report);
    std::string source;
    WithinMemory(site.report, "generating the shader " + shaderName, [&] {
        const ShaderText text = GenerateShader(document, shaderName, site, m_codeGen);
        for (const std::string& line : text.code) source.append(line).append("\n");
        const std::string arguments = ArgumentsOf(document, text.variables, site.report);
        if (!arguments.empty()) source.append("\n").append(arguments);
        return true;
    });
    said.AddTo(notes);
    return source;
}

}  // namespace tavrin
