// SPDX-License-Identifier: Apache-2.0
// The three views of a shader: its source and its two interfaces, each a file for the editor.
#pragma once

#include <optional>
#include <string>

namespace tavrin {

class RenderSession;
struct Site;

// Each view saves the shader first. The result is the path of the file to show; nothing if a step failed,
// which has been reported. The two interface views share one file.
class ShaderViews {
  public:
    ShaderViews(Site& site, RenderSession& session) : m_site(site), m_session(session) {}

    std::optional<std::string> ViewShaderSource();
    std::optional<std::string> ViewRenderInterface();
    std::optional<std::string> ViewShaderInterface();

  private:
    int RunTool(const std::string& input, const std::string& tool, const std::string& output);

    Site& m_site;
    RenderSession& m_session;
};

}  // namespace tavrin
