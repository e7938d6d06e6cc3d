// SPDX-License-Identifier: Apache-2.0
#include "GlContext.h"

#include <EGL/eglext.h>

#include <array>
#include <cstring>
#include <stdexcept>
#include <string>

namespace tavrin::mray {

namespace {

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error("cannot draw: " + what +
                             " (OpenGL 3.3 is needed; on a machine without a graphics card"
                             " install libgl1-mesa-dri and libegl-mesa0)");
}

bool offers(const char* extensions, const char* name) {
    return extensions != nullptr && std::strstr(extensions, name) != nullptr;
}

// The first display that starts: without a surface, a bare device, the default.
EGLDisplay openDisplay() {
    const char* extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    const auto start = [](EGLDisplay display) {
        return display != EGL_NO_DISPLAY && eglInitialize(display, nullptr, nullptr) == EGL_TRUE;
    };
    const auto get =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    if (get != nullptr && offers(extensions, "EGL_MESA_platform_surfaceless")) {
        EGLDisplay display = get(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        if (start(display)) {
            return display;
        }
    }
    const auto list = reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
    if (get != nullptr && list != nullptr && offers(extensions, "EGL_EXT_platform_device")) {
        std::array<EGLDeviceEXT, 8> devices{};
        EGLint count = 0;
        list(static_cast<EGLint>(devices.size()), devices.data(), &count);
        for (EGLint i = 0; i < count; ++i) {
            EGLDisplay display = get(EGL_PLATFORM_DEVICE_EXT, devices[static_cast<std::size_t>(i)], nullptr);
            if (start(display)) {
                return display;
            }
        }
    }
    EGLDisplay display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    return start(display) ? display : EGL_NO_DISPLAY;
}

}  // namespace

GlContext::GlContext() {
    display_ = openDisplay();
    if (display_ == EGL_NO_DISPLAY) {
        fail("no EGL display starts");
    }
    try {
        makeCurrent();
        load();
    } catch (...) {
        eglTerminate(display_);
        throw;
    }
}

GlContext::~GlContext() {
    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(display_, context_);
    eglTerminate(display_);
}

void GlContext::makeCurrent() {
    if (eglBindAPI(EGL_OPENGL_API) != EGL_TRUE) {
        fail("EGL offers no desktop OpenGL");
    }
    constexpr EGLint kConfig[]{EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_SURFACE_TYPE, 0, EGL_NONE};
    constexpr EGLint kContext[]{EGL_CONTEXT_MAJOR_VERSION,
                                3,
                                EGL_CONTEXT_MINOR_VERSION,
                                3,
                                EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                                EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    eglChooseConfig(display_, kConfig, &config, 1, &count);
    context_ = eglCreateContext(display_, count > 0 ? config : EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, kContext);
    if (context_ == EGL_NO_CONTEXT) {
        fail("no OpenGL 3.3 context");
    }
    if (eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, context_) != EGL_TRUE) {
        eglDestroyContext(display_, context_);
        fail("no context without a window");
    }
}

void GlContext::load() {
#define MRAY_LOAD(type, name)                                         \
    gl_.name = reinterpret_cast<type>(eglGetProcAddress("gl" #name)); \
    if (gl_.name == nullptr) {                                        \
        fail("the function gl" #name " is missing");                  \
    }
    MRAY_GL_FUNCTIONS(MRAY_LOAD)
#undef MRAY_LOAD
    if (has("GL_ARB_separate_shader_objects")) {
#define MRAY_LOAD(type, name) gl_.name = reinterpret_cast<type>(eglGetProcAddress("gl" #name));
        MRAY_GL_STAGES(MRAY_LOAD)
#undef MRAY_LOAD
    }
}

bool GlContext::has(const char* extension) const {
    GLint count = 0;
    gl_.GetIntegerv(GL_NUM_EXTENSIONS, &count);
    for (GLint i = 0; i < count; ++i) {
        const GLubyte* name = gl_.GetStringi(GL_EXTENSIONS, static_cast<GLuint>(i));
        if (name != nullptr && std::strcmp(reinterpret_cast<const char*>(name), extension) == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace tavrin::mray
