// SPDX-License-Identifier: Apache-2.0
// An OpenGL 3.3 core context without a window, and the functions used of it.
#pragma once

#include <EGL/egl.h>
#include <GL/glcorearb.h>

namespace tavrin::mray {

// clang-format off
#define MRAY_GL_FUNCTIONS(use) \
    use(PFNGLACTIVETEXTUREPROC, ActiveTexture) \
    use(PFNGLATTACHSHADERPROC, AttachShader) \
    use(PFNGLBINDATTRIBLOCATIONPROC, BindAttribLocation) \
    use(PFNGLBINDBUFFERPROC, BindBuffer) \
    use(PFNGLBINDBUFFERBASEPROC, BindBufferBase) \
    use(PFNGLBINDFRAMEBUFFERPROC, BindFramebuffer) \
    use(PFNGLBINDRENDERBUFFERPROC, BindRenderbuffer) \
    use(PFNGLBINDTEXTUREPROC, BindTexture) \
    use(PFNGLBINDVERTEXARRAYPROC, BindVertexArray) \
    use(PFNGLBUFFERDATAPROC, BufferData) \
    use(PFNGLCHECKFRAMEBUFFERSTATUSPROC, CheckFramebufferStatus) \
    use(PFNGLCLEARPROC, Clear) \
    use(PFNGLCLEARCOLORPROC, ClearColor) \
    use(PFNGLCOMPILESHADERPROC, CompileShader) \
    use(PFNGLCREATEPROGRAMPROC, CreateProgram) \
    use(PFNGLCREATESHADERPROC, CreateShader) \
    use(PFNGLDELETEBUFFERSPROC, DeleteBuffers) \
    use(PFNGLDELETEFRAMEBUFFERSPROC, DeleteFramebuffers) \
    use(PFNGLDELETEPROGRAMPROC, DeleteProgram) \
    use(PFNGLDELETERENDERBUFFERSPROC, DeleteRenderbuffers) \
    use(PFNGLDELETESHADERPROC, DeleteShader) \
    use(PFNGLDELETETEXTURESPROC, DeleteTextures) \
    use(PFNGLDELETEVERTEXARRAYSPROC, DeleteVertexArrays) \
    use(PFNGLDRAWELEMENTSPROC, DrawElements) \
    use(PFNGLENABLEPROC, Enable) \
    use(PFNGLENABLEVERTEXATTRIBARRAYPROC, EnableVertexAttribArray) \
    use(PFNGLFRAMEBUFFERRENDERBUFFERPROC, FramebufferRenderbuffer) \
    use(PFNGLGENBUFFERSPROC, GenBuffers) \
    use(PFNGLGENFRAMEBUFFERSPROC, GenFramebuffers) \
    use(PFNGLGENRENDERBUFFERSPROC, GenRenderbuffers) \
    use(PFNGLGENTEXTURESPROC, GenTextures) \
    use(PFNGLGENVERTEXARRAYSPROC, GenVertexArrays) \
    use(PFNGLGETACTIVEUNIFORMBLOCKIVPROC, GetActiveUniformBlockiv) \
    use(PFNGLGETERRORPROC, GetError) \
    use(PFNGLGETINTEGERVPROC, GetIntegerv) \
    use(PFNGLGETPROGRAMINFOLOGPROC, GetProgramInfoLog) \
    use(PFNGLGETPROGRAMIVPROC, GetProgramiv) \
    use(PFNGLGETSHADERINFOLOGPROC, GetShaderInfoLog) \
    use(PFNGLGETSHADERIVPROC, GetShaderiv) \
    use(PFNGLGETSTRINGIPROC, GetStringi) \
    use(PFNGLGETUNIFORMBLOCKINDEXPROC, GetUniformBlockIndex) \
    use(PFNGLGETUNIFORMLOCATIONPROC, GetUniformLocation) \
    use(PFNGLLINKPROGRAMPROC, LinkProgram) \
    use(PFNGLREADPIXELSPROC, ReadPixels) \
    use(PFNGLRENDERBUFFERSTORAGEPROC, RenderbufferStorage) \
    use(PFNGLSHADERSOURCEPROC, ShaderSource) \
    use(PFNGLTEXIMAGE2DPROC, TexImage2D) \
    use(PFNGLTEXPARAMETERIPROC, TexParameteri) \
    use(PFNGLUNIFORM1IPROC, Uniform1i) \
    use(PFNGLUNIFORM3FVPROC, Uniform3fv) \
    use(PFNGLUNIFORM4FVPROC, Uniform4fv) \
    use(PFNGLUNIFORMBLOCKBINDINGPROC, UniformBlockBinding) \
    use(PFNGLUNIFORMMATRIX4FVPROC, UniformMatrix4fv) \
    use(PFNGLUSEPROGRAMPROC, UseProgram) \
    use(PFNGLVERTEXATTRIBPOINTERPROC, VertexAttribPointer) \
    use(PFNGLVIEWPORTPROC, Viewport)

// Those of programs whose stages are linked apart; null where there are none.
#define MRAY_GL_STAGES(use) \
    use(PFNGLACTIVESHADERPROGRAMPROC, ActiveShaderProgram) \
    use(PFNGLBINDPROGRAMPIPELINEPROC, BindProgramPipeline) \
    use(PFNGLDELETEPROGRAMPIPELINESPROC, DeleteProgramPipelines) \
    use(PFNGLGENPROGRAMPIPELINESPROC, GenProgramPipelines) \
    use(PFNGLPROGRAMPARAMETERIPROC, ProgramParameteri) \
    use(PFNGLUSEPROGRAMSTAGESPROC, UseProgramStages)
// clang-format on

// The functions, loaded when a context is current.
struct Gl {
#define MRAY_DECLARE(type, name) type name = nullptr;
    MRAY_GL_FUNCTIONS(MRAY_DECLARE)
    MRAY_GL_STAGES(MRAY_DECLARE)
#undef MRAY_DECLARE
};

// Makes a context current on this thread for as long as it lives.  Throws
// std::runtime_error when the machine offers none.
class GlContext {
  public:
    GlContext();
    ~GlContext();
    GlContext(const GlContext&) = delete;
    GlContext& operator=(const GlContext&) = delete;

    [[nodiscard]] const Gl& gl() const { return gl_; }

  private:
    void makeCurrent();
    void load();
    [[nodiscard]] bool has(const char* extension) const;

    EGLDisplay display_ = EGL_NO_DISPLAY;
    EGLContext context_ = EGL_NO_CONTEXT;
    Gl gl_;
};

}  // namespace tavrin::mray
