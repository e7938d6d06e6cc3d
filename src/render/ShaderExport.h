// SPDX-License-Identifier: Apache-2.0
// Export: the delivery of a finished shader by the library's script.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "document/DocumentFile.h"
#include "document/ExportOptions.h"

namespace tavrin {

class CTvDoc;
class RenderSession;
struct Site;

// The kinds of file that are exported one by one.
enum class ExportKind { kShaderSource, kCompiledShader, kShaderIface, kRenderIface };

// What an export that a document asks for would do to the user's files. A plain value.
struct ExportPlan {
    std::vector<std::string> lines;  // "write /a/marble.frag, which replaces the file there", "run publish"
    std::string digest;              // of that, and of which document asks for it
};

// One for the workspace, whose document and session outlive it. An export that does not start has told why.
class ShaderExport {
  public:
    ShaderExport(CTvDoc& document, Site& site, RenderSession& session)
        : m_document(document), m_site(site), m_session(session) {}

    // Checks the paths, writes the document's copy, saves the shader and starts the library's export script
    // on the targets. False if it was not started; the reason has been reported. The targets are the user's
    // own choice.
    bool Export(const CExportOptions& options);
    // The same with targets and a command that come from the document. If that is foreign, who was named by
    // AskBeforeForeign is asked first; without anybody it is refused.
    bool ExportAll();
    bool ExportAsDocumentSays(ExportKind kind);

    // Decides, and tells whoever asked for the export, whether what a foreign document wants may be done.
    using MayFollow = std::function<bool(const ExportPlan& plan)>;
    void AskBeforeForeign(MayFollow mayFollow) { m_mayFollow = std::move(mayFollow); }

    // Decides, and tells whoever asked for the export, whether the document's copy may replace the file that
    // the document was read from but not to its end. Unless this is set, it may not.
    using MayLoseUnread = std::function<bool(const std::string& path)>;
    void AskBeforeLoss(MayLoseUnread mayLose) { m_mayLose = std::move(mayLose); }

    // The same for one that is the document's own file and no longer what it was when it was last read or
    // saved.
    using MayReplace = std::function<bool(const std::string& path, DocumentFile::Now now)>;
    void AskBeforeReplacing(MayReplace mayReplace) { m_mayReplace = std::move(mayReplace); }

    // Options that export one kind of file to a path, and the path that the document has for it.
    static CExportOptions OnlyThis(ExportKind kind, const std::string& path);
    std::string DocumentPath(ExportKind kind) const;

  private:
    bool ExportForDocument(const CExportOptions& options);
    bool Check(const CExportOptions& options);
    bool Start(const CExportOptions& options);
    ExportPlan PlanOf(const CExportOptions& options) const;
    bool IsFreeOfControls(const char* what, const std::string& text);
    bool TextsOk(const CExportOptions& options);
    bool PathsOk(const CExportOptions& options);
    bool ExportPathOk(const std::string& path);
    bool PostSaveOk(const CExportOptions& options);
    bool WriteDocument(const std::string& path);

    CTvDoc& m_document;
    Site& m_site;
    RenderSession& m_session;
    MayLoseUnread m_mayLose;
    MayReplace m_mayReplace;
    MayFollow m_mayFollow;
};

// Gives the document's five export paths its present name and the site's present extensions; their
// directories stay. To be called on any change of name, extension or shader type.
void UpdateExportPaths(CTvDoc& document, const Site& site);

}  // namespace tavrin
