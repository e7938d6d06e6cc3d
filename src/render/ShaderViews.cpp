// SPDX-License-Identifier: Apache-2.0
#include "render/ShaderViews.h"

#include "base/Files.h"
#include "render/FilterScript.h"
#include "render/RenderSession.h"
#include "site/Site.h"

namespace tavrin {

namespace {

constexpr int kNotStarted = -1;  // the runner has alerted
constexpr const char* kArgInfo = "arginfo";

}  // namespace

std::optional<std::string> ShaderViews::ViewShaderSource() {
    if (!m_session.SaveShader()) return std::nullopt;
    return m_site.WorkPath(m_session.ShaderName());
}

std::optional<std::string> ShaderViews::ViewRenderInterface() {
    if (!m_session.SaveShader()) return std::nullopt;
    const std::string output = m_site.WorkPath(m_session.ShaderName() + ".tmp");
    const int code = RunTool("-", m_site.LibraryPath("bin/renderiface"), output);
    if (code == 0) return output;
    if (code != kNotStarted) m_site.report.Alert("renderiface command returned %d", code);
    return std::nullopt;
}

std::optional<std::string> ShaderViews::ViewShaderInterface() {
    if (!m_session.SaveShader()) return std::nullopt;
    const std::string argInfo = m_site.WorkPath(kArgInfo);
    std::string error;
    if (!m_site.WriteWorkFile(kArgInfo, m_session.ArgInfo(), error)) {
        m_site.report.Alert("unable to open %s for writing", argInfo.c_str());
        return std::nullopt;
    }
    const std::string tool = m_site.LibraryPath("bin/guiprefilter");
    const std::string output = m_site.WorkPath(m_session.ShaderName() + ".tmp");
    const int code = RunTool(argInfo, tool, output);
    if (code == 0) return output;
    if (code != kNotStarted) m_site.report.Alert("%s returned %d", tool.c_str(), code);
    return std::nullopt;
}

// The exit code of the tool, or kNotStarted.
int ShaderViews::RunTool(const std::string& input, const std::string& tool, const std::string& output) {
    return RunFilterScript(m_site, input, tool, m_session.ShaderName(), output).value_or(kNotStarted);
}

}  // namespace tavrin
