// SPDX-License-Identifier: Apache-2.0
// The reader of site definitions files, `tavrn.def`.
#pragma once

#include <functional>
#include <string>

#include "text/TokenParser.h"

namespace tavrin {

class CCodeGen;
struct CExportOptions;
struct Site;

// What the site files fill.
struct SiteTargets {
    Site& site;
    CCodeGen& codeGen;
    CExportOptions& exportDefaults;
    std::function<void(CArchive&)> readForm;  // a `roe` section from behind its keyword
};

// Reads the library's file, the user's and the one in the current directory, in this order; each later
// one overrides the earlier by the rules of the clauses. Files that cannot be opened are passed over.
void ReadSiteFiles(SiteTargets& targets);

// Reads one file. Errors are alerted with their place; what was read before stays in force. A file that
// is not there is passed over without a word, one that cannot be read is named in the log.
void ReadSiteFile(const std::string& path, SiteTargets& targets);

// Reads the clauses of one file. Used once.
class SiteFileReader : private TokenParser {
  public:
    SiteFileReader(CArchive& archive, SiteTargets& targets);

    void Read();

  private:
    bool ReadClause(const std::string& keyword);
    void ReadToolButton();
    void ReadWordTranslation();
    bool ReadShaderIface();
    bool ReadCodeGen(const std::string& keyword);
    void ReadDataType();
    void SkipBlock();
    std::string RestOfLine();

    SiteTargets& m_targets;
    Site& m_site;
    bool m_toolButtonsSeen = false;  // in this file
};

}  // namespace tavrin
