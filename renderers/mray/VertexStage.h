// SPDX-License-Identifier: Apache-2.0
// The vertex shader that feeds the surface shaders. It is compiled once and serves
// all of them; where the driver can, it is linked once, too.
#pragma once

#include <array>
#include <stdexcept>
#include <string>

#include "GlContext.h"

namespace tavrin::mray {

// The compiler refuses a shader; what() holds its messages, line by line.
struct ShaderError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Compiles a shader; the caller deletes it.  The file name is only for messages.
GLuint compileShader(const Gl& gl, GLenum kind, const std::string& source, const std::string& file);

// Throws ShaderError where the linker refuses.
void linkProgram(const Gl& gl, GLuint program, const std::string& file);

class VertexStage {
  public:
    explicit VertexStage(const Gl& gl);
    ~VertexStage();
    VertexStage(const VertexStage&) = delete;
    VertexStage& operator=(const VertexStage&) = delete;

    // Whether a surface shader can be linked without it: the driver knows of that,
    // and the shader takes in all that this one gives, which is how they find to
    // each other then.
    [[nodiscard]] bool standsApartFrom(const std::string& surfaceSource) const;

    // Makes it a stage of a program that is linked with it.
    void attachTo(GLuint program) const;

    // Draws with a surface program that is linked without it.
    void useWith(GLuint surfaceProgram) const;
    void setClip(GLuint surfaceProgram, const std::array<float, 16>& clip) const;

  private:
    void linkApart();

    const Gl& gl_;
    GLuint shader_ = 0;
    GLuint program_ = 0;   // of this stage alone; 0 where the driver cannot
    GLuint pipeline_ = 0;  // this stage and that of a surface program
    GLint clip_ = -1;
};

}  // namespace tavrin::mray
