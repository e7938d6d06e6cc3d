// SPDX-License-Identifier: Apache-2.0
// The surface shader together with the vertex shader that feeds it.
#pragma once

#include <stdexcept>
#include <string>

#include "GlContext.h"

namespace tavrin::mray {

// The compiler refuses the shader; what() holds its messages, line by line.
struct ShaderError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Program {
  public:
    // The file name is only for messages.
    Program(const Gl& gl, const std::string& fragmentSource, const std::string& file);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void use() const { gl_.UseProgram(name_); }
    // -1 when the shader makes no use of it.
    [[nodiscard]] GLint uniform(const char* name) const { return gl_.GetUniformLocation(name_, name); }

  private:
    void attach(GLenum kind, const std::string& source, const std::string& file) const;
    void link(const std::string& file) const;

    const Gl& gl_;
    GLuint name_;
};

}  // namespace tavrin::mray
