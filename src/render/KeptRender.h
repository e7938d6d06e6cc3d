// SPDX-License-Identifier: Apache-2.0
// Renders that are kept beyond the session: copies of document and picture beside the user's own document.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "render/RenderRecord.h"

namespace tavrin {

class DocumentHost;
class RenderSession;

// Works on the renders of a session, for whoever offers that to the user. What it keeps is told in the log
// and noted in the render's record. Both files are written aside and get their names when they are whole.
// Main thread only.
class RenderKeeper {
  public:
    // Both outlive it.
    RenderKeeper(RenderSession& session, DocumentHost& host) : m_session(session), m_host(host) {}

    // Whether the render is over, has its document in the history and was not kept yet, or its copy has gone.
    bool CanKeep(int number) const { return Hindrance(number).empty(); }
    // Why it cannot be kept, to be read behind "render 3"; empty if it can.
    std::string Hindrance(int number) const;
    // The directory of the document's file; empty for one that was never saved to any.
    std::string DirectoryOf(int number) const;
    // "NAME-NUMBER".
    std::string StemOf(int number) const;

    // Keeps it as "NAME-NUMBER.tvn" and a picture of that name. Where one of the two is there already, the
    // first of "NAME-NUMBER-2" and so on is taken of which neither is. The document's path; or nothing,
    // alerted, if that fails, and then neither file is made.
    std::optional<std::string> Keep(int number, const std::string& directory);
    // Keeps it under this path and the picture beside it, in the place of what is there: the user has agreed
    // to that. The same result.
    std::optional<std::string> KeepAs(int number, const std::string& path);
    // The picture that KeepAs would write beside that document; empty where the render has none.
    std::string PictureBeside(int number, const std::string& path) const;

    // The renders with a picture that would be missed, oldest first: they are over and not kept, and neither
    // does a file hold their network nor was their document saved since.
    std::vector<int> Unsaved() const;

  private:
    struct Copy;

    std::optional<Copy> Take(int number);
    static int MakePair(const Copy& copy, const std::string& document, const std::string& picture);
    std::optional<std::string> Kept(int number, const std::string& path, const Copy& copy);
    std::nullopt_t Fail(int number, const std::string& path, const std::string& reason);
    const RenderRecord* Listed(int number) const;
    std::string HindranceOf(const RenderRecord& record) const;

    RenderSession& m_session;
    DocumentHost& m_host;
};

}  // namespace tavrin
