// SPDX-License-Identifier: Apache-2.0
#include "VertexStage.h"

#include <algorithm>

#include "InfoLog.h"

namespace tavrin::mray {

namespace {

constexpr const char* kHead = "#version 330 core\n";
// A stage that is linked alone must say what it writes.
constexpr const char* kHeadApart =
    "#version 330 core\n"
    "#extension GL_ARB_separate_shader_objects : require\n"
    "out gl_PerVertex { vec4 gl_Position; };\n";

constexpr const char* kSource = R"(
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

constexpr const char* kAttributes[]{"position", "object", "normal", "tangent", "uv", "lit", "open"};
constexpr const char* kOutputs[]{"in vec3 tvPosition;", "in vec3 tvObject;", "in vec3 tvNormal;",
                                 "in vec3 tvTangent;",  "in vec2 tvUV;",     "in vec4 tvLit;",
                                 "in float tvOpen;"};

template <typename GetNumber, typename GetText>
std::string fetchLog(GLuint name, GetNumber getNumber, GetText getText) {
    GLint size = 0;
    getNumber(name, GL_INFO_LOG_LENGTH, &size);
    std::string log(static_cast<std::size_t>(std::max(size, 1)), '\0');
    getText(name, static_cast<GLsizei>(log.size()), nullptr, log.data());
    return log;
}

void bindAttributes(const Gl& gl, GLuint program) {
    GLuint index = 0;
    for (const char* attribute : kAttributes) {
        gl.BindAttribLocation(program, index++, attribute);
    }
}

}  // namespace

GLuint compileShader(const Gl& gl, GLenum kind, const std::string& source, const std::string& file) {
    const GLuint shader = gl.CreateShader(kind);
    const char* text = source.data();
    const auto size = static_cast<GLint>(source.size());
    gl.ShaderSource(shader, 1, &text, &size);
    gl.CompileShader(shader);
    GLint good = 0;
    gl.GetShaderiv(shader, GL_COMPILE_STATUS, &good);
    if (good == 0) {
        const std::string log = fetchLog(shader, gl.GetShaderiv, gl.GetShaderInfoLog);
        gl.DeleteShader(shader);
        throw ShaderError(readableLog(log, file));
    }
    return shader;
}

void linkProgram(const Gl& gl, GLuint program, const std::string& file) {
    gl.LinkProgram(program);
    GLint good = 0;
    gl.GetProgramiv(program, GL_LINK_STATUS, &good);
    if (good == 0) {
        throw ShaderError(readableLog(fetchLog(program, gl.GetProgramiv, gl.GetProgramInfoLog), file));
    }
}

VertexStage::VertexStage(const Gl& gl) : gl_(gl) {
    shader_ = compileShader(gl, GL_VERTEX_SHADER, std::string(kHead) + kSource, "mray-render");
    if (gl.UseProgramStages != nullptr) {
        linkApart();
    }
}

VertexStage::~VertexStage() {
    if (pipeline_ != 0) {
        gl_.DeleteProgramPipelines(1, &pipeline_);
        gl_.DeleteProgram(program_);
    }
    gl_.DeleteShader(shader_);
}

// A driver that only says that it can is taken for one that cannot.
void VertexStage::linkApart() {
    const GLuint program = gl_.CreateProgram();
    try {
        const GLuint shader =
            compileShader(gl_, GL_VERTEX_SHADER, std::string(kHeadApart) + kSource, "mray-render");
        gl_.ProgramParameteri(program, GL_PROGRAM_SEPARABLE, GL_TRUE);
        gl_.AttachShader(program, shader);
        gl_.DeleteShader(shader);  // lives on with the program
        bindAttributes(gl_, program);
        linkProgram(gl_, program, "mray-render");
    } catch (const ShaderError&) {
        gl_.DeleteProgram(program);
        return;
    }
    program_ = program;
    clip_ = gl_.GetUniformLocation(program_, "toClip");
    gl_.GenProgramPipelines(1, &pipeline_);
    gl_.BindProgramPipeline(pipeline_);
    gl_.UseProgramStages(pipeline_, GL_VERTEX_SHADER_BIT, program_);
}

bool VertexStage::standsApartFrom(const std::string& surfaceSource) const {
    const auto takenIn = [&surfaceSource](const char* line) {
        return surfaceSource.find(line) != std::string::npos;
    };
    return pipeline_ != 0 && std::all_of(std::begin(kOutputs), std::end(kOutputs), takenIn);
}

void VertexStage::attachTo(GLuint program) const {
    gl_.AttachShader(program, shader_);
    bindAttributes(gl_, program);
}

void VertexStage::useWith(GLuint surfaceProgram) const {
    gl_.UseProgram(0);  // else the pipeline does not count
    gl_.BindProgramPipeline(pipeline_);
    gl_.UseProgramStages(pipeline_, GL_FRAGMENT_SHADER_BIT, surfaceProgram);
    gl_.ActiveShaderProgram(pipeline_, surfaceProgram);
}

void VertexStage::setClip(GLuint surfaceProgram, const std::array<float, 16>& clip) const {
    gl_.ActiveShaderProgram(pipeline_, program_);
    gl_.UniformMatrix4fv(clip_, 1, GL_FALSE, clip.data());
    gl_.ActiveShaderProgram(pipeline_, surfaceProgram);
}

}  // namespace tavrin::mray
