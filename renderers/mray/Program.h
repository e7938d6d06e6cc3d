// SPDX-License-Identifier: Apache-2.0
// The surface shader together with the vertex shader that feeds it.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "VertexStage.h"

namespace tavrin::mray {

// How a program is linked with the vertex shader.
enum class Linking {
    Together,
    Apart  // where that is possible: what the driver makes of the vertex shader is kept
};

class Program {
  public:
    // A shader may have a block of values:
    //   layout(std140) uniform mrValues { ... };
    // The file name is only for messages.  Throws ShaderError.
    Program(const Gl& gl, const VertexStage& vertices, const std::string& surfaceSource,
            const std::string& file, Linking linking);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void use() const;
    // These two are for the program in use.
    void setClip(const std::array<float, 16>& clip) const;
    // -1 when the shader makes no use of it.
    [[nodiscard]] GLint uniform(const char* name) const { return gl_.GetUniformLocation(name_, name); }

    // The size of the block of values, 0 without one.
    [[nodiscard]] std::size_t valueBytes() const { return valueBytes_; }

  private:
    void build(const std::string& surfaceSource, const std::string& file);
    void findValues();

    const Gl& gl_;
    const VertexStage& vertices_;
    GLuint name_;
    bool apart_;
    std::size_t valueBytes_ = 0;
};

}  // namespace tavrin::mray
