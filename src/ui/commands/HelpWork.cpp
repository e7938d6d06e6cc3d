// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/HelpWork.h"

#include <sstream>

#include "app/TvApp.h"
#include "base/Files.h"
#include "base/Paths.h"
#include "text/Tokens.h"
#include "ui/commands/CommandActions.h"
#include "ui/frame/Splash.h"

namespace tavrin {

namespace {

// Where the line "URL=..." of a shortcut file leads; empty if there is none. What is no address of the
// network is a file beside the shortcut.
std::string ShortcutTarget(const std::string& path) {
    constexpr std::string_view kKey = "URL=";
    std::string text;
    std::string error;
    if (!ReadWholeFile(path, text, error)) return {};
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(kKey)) continue;
        const std::string target(Trim(std::string_view(line).substr(kKey.size())));
        const bool isAddress = target.find("://") != std::string::npos;
        return isAddress ? target : ResolvePath(target, PathDir(path));
    }
    return {};
}

void OpenDocumentation(Site& site) {
    const std::string path = JoinPath(site.directories.tavrnDir, "Readme.url");
    const std::string target = ShortcutTarget(path);
    if (!target.empty() && site.commands.StartProgram({"xdg-open", target}, "xdg-open \"" + target + "\""))
        return;
    site.report.Alert("unable to open %s", path.c_str());
}

}  // namespace

void AddHelpCommands(CommandActions& commands, QWidget& frame, CTvApp& app) {
    commands.On(CommandId::kOnlineDocumentation, {[&app] { OpenDocumentation(app.GetSite()); }});
    commands.On(CommandId::kAbout, {[&frame, &app] { ShowAboutBox(&frame, app.ProductVersion()); }});
}

}  // namespace tavrin
