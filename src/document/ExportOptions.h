// SPDX-License-Identifier: Apache-2.0
// What an export writes, and where: kept by each document, and once more as the site's defaults.
#pragma once

#include <string>
#include <string_view>

namespace tavrin {

class CArchive;
class Report;

// A plain value. Only flags and the command are saved; the paths follow the document's own.
struct CExportOptions {
    // What to write.
    int saveTavrn = 0;  // the document file
    int saveSource = 0;
    int saveCompiled = 0;
    int saveShaderIface = 0;
    int saveRenderIface = 0;
    int runPostSave = 0;
    // Where to: complete paths in a document, of which its file holds the directories alone.
    std::string tavrnPath = "./";
    std::string compiledPath = "./";
    std::string sourcePath = "./";
    std::string shaderIfacePath = "./";
    std::string renderIfacePath = "./";
    std::string postSaveScript;  // a command, split into words by blanks and double quotes

    bool operator==(const CExportOptions&) const = default;
};

bool IsExportOption(std::string_view key);
// Takes the line of a known key: it sets the flag, and the path unless that is empty; a directory gets a
// closing separator.
void SetExportOption(CExportOptions& options, std::string_view key, std::string_view line);

// Reads an `exportoptions` clause of a site file from behind its keyword. The line of an unknown key is
// passed over; then the key is alerted as "unknown export option: KEY" and ends the reading; false then.
bool ReadExportOptions(CArchive& archive, CExportOptions& options, Report& report);

// The lines of the clause in a document, between its braces. They end in LF alone; a line break in a path or
// in the command becomes a blank.
std::string ExportOptionLines(const CExportOptions& options);

}  // namespace tavrin
