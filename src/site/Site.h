// SPDX-License-Identifier: Apache-2.0
// What the installation and the site configure, as the rooms above read it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "base/Environment.h"
#include "site/Commands.h"
#include "site/Settings.h"
#include "site/TypeTables.h"
#include "text/Report.h"

namespace tavrin {

// The process-wide directories and commands.
struct Directories {
    std::string tavrnDir;          // installation
    std::string libName;           // library: the last component of its directory, the renderer's name
    std::string libDir;            // tavrnDir and libName; empty while no library is selected
    std::string workDir;           // this process's own, removed at the end
    std::string editorCmd;         // text editor, as TextEditor.h reads it
    std::string docBrowserDir;     // where document dialogs open
    std::string scriptBrowserDir;  // where the script dialog opens
};

// Owned by the application object, filled at start-up, read everywhere.
struct Site {
    Site(Report& siteReport, Environment siteEnvironment, MainThreadQueue& queue)
        : report(siteReport), environment(std::move(siteEnvironment)), commands(report, environment, queue) {}
    Site(const Site&) = delete;
    Site& operator=(const Site&) = delete;

    // The path of a file that is named relative to the library, and of a file in the work directory.
    std::string LibraryPath(const std::string& path) const;
    std::string WorkPath(const std::string& name) const;
    // Writes a file of the work directory, as WriteOwnFile does.
    bool WriteWorkFile(const std::string& name, std::string_view text, std::string& error) const;

    // Brings a child's error file into the log, its last line completed; nothing if there is none.
    void LogFile(const std::string& path);
    // The text that LogFile logs, of a file beyond the limit of output its two ends.
    std::string LogText(const std::string& path) const;

    // Takes the limits of scripts from the settings.
    void ReadLimits();

    // The paths of the probe networks that the library in use names; none once a document has brought
    // another.
    std::vector<std::string> ProbePaths() const;

    // The library in use has said that what its preprocessor makes of an operator depends on files alone.
    bool PreprocessIsPure() const;

    Report& report;
    Environment environment;  // what children are given
    Commands commands;
    Directories directories;
    Settings settings;
    ChildLimits renderLimits;  // of a render
    ChildLimits
        compileLimits;  // of the scripts that make the shader's source and its views, and what they run
    std::string settingsLibrary;  // the library whose site file is in the settings
    TypeTables types;
    std::vector<std::string> menuDirs;
    std::vector<std::string> toolButtons;                // names of operators
    std::vector<std::string> probes;                     // files of saved networks that show an output
    std::map<std::string, std::string> shaderIfaceExts;  // by shader type
    std::string extShaderSource;
    std::string extCompiledShader;
    std::string extRenderIface;
    std::string extShaderIface = ".cus";  // until a shader type selects another
    std::string docExt = ".tvn";
    bool debugMode = false;
    bool quietMode = false;
};

}  // namespace tavrin
