// SPDX-License-Identifier: Apache-2.0
#include "site/Site.h"

#include "base/Files.h"
#include "base/Paths.h"
#include "text/Tokens.h"

namespace tavrin {

std::string Site::LibraryPath(const std::string& path) const { return ResolvePath(path, directories.libDir); }

std::string Site::WorkPath(const std::string& name) const { return JoinPath(directories.workDir, name); }

bool Site::WriteWorkFile(const std::string& name, std::string_view text, std::string& error) const {
    return WriteOwnFile(directories.workDir, name, text, error);
}

void Site::LogFile(const std::string& path) { report.LogRaw(LogText(path)); }

std::string Site::LogText(const std::string& path) {
    std::string text;
    ReadFileToText(path, text);
    if (!text.empty() && text.back() != '\n') text += "\r\n";
    return text;
}

// A document can bring another library into use, of which these settings say nothing.
bool Site::PreprocessIsPure() const {
    int isPure = 0;
    return settings.GetSettingInt("preprocess.pure", isPure) && isPure != 0 &&
           settingsLibrary == directories.libName;
}

}  // namespace tavrin
