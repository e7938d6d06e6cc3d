// SPDX-License-Identifier: Apache-2.0
#include "Program.h"

namespace tavrin::mray {

Program::Program(const Gl& gl, const VertexStage& vertices, const std::string& surfaceSource,
                 const std::string& file, Linking linking)
    : gl_(gl),
      vertices_(vertices),
      name_(gl.CreateProgram()),
      apart_(linking == Linking::Apart && vertices.standsApartFrom(surfaceSource)) {
    try {
        build(surfaceSource, file);
    } catch (...) {
        gl_.DeleteProgram(name_);
        throw;
    }
    findValues();
}

Program::~Program() { gl_.DeleteProgram(name_); }

void Program::build(const std::string& surfaceSource, const std::string& file) {
    const GLuint surface = compileShader(gl_, GL_FRAGMENT_SHADER, surfaceSource, file);
    gl_.AttachShader(name_, surface);
    gl_.DeleteShader(surface);  // lives on with the program
    if (apart_) {
        gl_.ProgramParameteri(name_, GL_PROGRAM_SEPARABLE, GL_TRUE);
    } else {
        vertices_.attachTo(name_);
    }
    linkProgram(gl_, name_, file);
}

void Program::findValues() {
    const GLuint block = gl_.GetUniformBlockIndex(name_, "mrValues");
    if (block == GL_INVALID_INDEX) {
        return;
    }
    GLint bytes = 0;
    gl_.GetActiveUniformBlockiv(name_, block, GL_UNIFORM_BLOCK_DATA_SIZE, &bytes);
    gl_.UniformBlockBinding(name_, block, 0);
    valueBytes_ = static_cast<std::size_t>(bytes);
}

void Program::use() const {
    if (apart_) {
        vertices_.useWith(name_);
    } else {
        gl_.UseProgram(name_);
    }
}

void Program::setClip(const std::array<float, 16>& clip) const {
    if (apart_) {
        vertices_.setClip(name_, clip);
    } else {
        gl_.UniformMatrix4fv(uniform("toClip"), 1, GL_FALSE, clip.data());
    }
}

}  // namespace tavrin::mray
