// SPDX-License-Identifier: Apache-2.0
// The reader of site definitions files, `tavrn.def`.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "site/TypeMark.h"
#include "text/TokenParser.h"

namespace tavrin {

class CCodeGen;
struct CExportOptions;
struct Site;

// The commands that the file of the current directory names. They are not in force by being read: the file
// may have come there with somebody's documents.
struct LocalCommands {
    std::string path;                                           // the file, absolute
    std::string digest;                                         // of its path and its content
    std::vector<std::pair<std::string, std::string>> settings;  // `editorcmd` and its like, with their values
    std::optional<std::pair<int, std::string>> postSave;        // flag and command of new documents
    std::vector<std::string> formLines;                         // of what its forms can run

    bool Any() const { return !settings.empty() || postSave.has_value() || !formLines.empty(); }
    // A line for each, as a terminal or a box may show it.
    std::vector<std::string> Lines() const;
};

// What the site files fill.
struct SiteTargets {
    Site& site;
    CCodeGen& codeGen;
    CExportOptions& exportDefaults;
    std::function<void(CArchive&)> readForm;  // a `roe` section from behind its keyword
    LocalCommands local = {};                 // found in the file of the current directory
    bool isLocal = false;                     // that file is being read
};

// Reads the library's file, the user's and the one in the current directory, in this order; each later
// one overrides the earlier by the rules of the clauses. Files that cannot be opened are passed over. That of
// the current directory is read only where nobody but the user and root has a hand in it (LocalSiteFile.h);
// if not, the log names it. Where it is one of the other two it counts as that one.
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
    void ReadProbe();
    void ReadExports();
    void ReadSetting(const std::string& key);
    void ReadWordTranslation();
    bool ReadShaderIface();
    bool ReadCodeGen(const std::string& keyword);
    void ReadDataType();
    // Nothing, alerted, for what is none.
    std::optional<std::array<float, 3>> ReadMarkColor(const std::string& text);
    std::optional<TypeShape> ReadMarkShape(const std::string& text);
    void SkipBlock();
    std::string RestOfLine();

    SiteTargets& m_targets;
    Site& m_site;
    bool m_toolButtonsSeen = false;  // in this file
};

}  // namespace tavrin
