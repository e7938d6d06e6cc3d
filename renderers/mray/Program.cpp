// SPDX-License-Identifier: Apache-2.0
#include "Program.h"

#include <algorithm>

#include "InfoLog.h"

namespace tavrin::mray {

namespace {

constexpr const char* kVertexSource = R"(#version 330 core
in vec3 position;
in vec3 object;
in vec3 normal;
in vec3 tangent;
in vec2 uv;
in vec4 lit;
in float open;
uniform mat4 toClip;
out vec3 tvPosition;
out vec3 tvObject;
out vec3 tvNormal;
out vec3 tvTangent;
out vec2 tvUV;
out vec4 tvLit;
out float tvOpen;
void main()
{
    tvPosition = position;
    tvObject = object;
    tvNormal = normal;
    tvTangent = tangent;
    tvUV = uv;
    tvLit = lit;
    tvOpen = open;
    gl_Position = toClip * vec4(position, 1.0);
}
)";

template <typename GetNumber, typename GetText>
std::string fetchLog(GLuint name, GetNumber getNumber, GetText getText) {
    GLint size = 0;
    getNumber(name, GL_INFO_LOG_LENGTH, &size);
    std::string log(static_cast<std::size_t>(std::max(size, 1)), '\0');
    getText(name, static_cast<GLsizei>(log.size()), nullptr, log.data());
    return log;
}

}  // namespace

Program::Program(const Gl& gl, const std::string& fragmentSource, const std::string& file)
    : gl_(gl), name_(gl.CreateProgram()) {
    try {
        attach(GL_FRAGMENT_SHADER, fragmentSource, file);
        attach(GL_VERTEX_SHADER, kVertexSource, "mray-render");
        link(file);
    } catch (...) {
        gl_.DeleteProgram(name_);
        throw;
    }
}

Program::~Program() { gl_.DeleteProgram(name_); }

void Program::attach(GLenum kind, const std::string& source, const std::string& file) const {
    const GLuint shader = gl_.CreateShader(kind);
    const char* text = source.data();
    const auto size = static_cast<GLint>(source.size());
    gl_.ShaderSource(shader, 1, &text, &size);
    gl_.CompileShader(shader);
    GLint good = 0;
    gl_.GetShaderiv(shader, GL_COMPILE_STATUS, &good);
    const std::string log = good != 0 ? "" : fetchLog(shader, gl_.GetShaderiv, gl_.GetShaderInfoLog);
    gl_.AttachShader(name_, shader);
    gl_.DeleteShader(shader);  // lives on with the program
    if (good == 0) {
        throw ShaderError(readableLog(log, file));
    }
}

void Program::link(const std::string& file) const {
    static constexpr const char* kAttributes[]{"position", "object", "normal", "tangent",
                                               "uv",       "lit",    "open"};
    GLuint index = 0;
    for (const char* attribute : kAttributes) {
        gl_.BindAttribLocation(name_, index++, attribute);
    }
    gl_.LinkProgram(name_);
    GLint good = 0;
    gl_.GetProgramiv(name_, GL_LINK_STATUS, &good);
    if (good == 0) {
        throw ShaderError(readableLog(fetchLog(name_, gl_.GetProgramiv, gl_.GetProgramInfoLog), file));
    }
}

}  // namespace tavrin::mray
