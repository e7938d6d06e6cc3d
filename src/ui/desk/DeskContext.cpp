// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/DeskContext.h"

#include <QOpenGLContext>
#include <QPair>

namespace tavrin {

namespace {

constexpr int kDepthBits = 24;

}  // namespace

QSurfaceFormat DeskFormat() {
    QSurfaceFormat format;
    format.setVersion(2, 1);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setDepthBufferSize(kDepthBits);
    format.setSamples(0);  // copies of pixels fail with more
    return format;
}

std::string ContextFault(const QOpenGLContext* context) {
    const std::string wanted =
        "FATAL ERROR: the desk needs OpenGL 1.1 or later with the compatibility profile, but this display "
        "has ";
    const std::string advice =
        ". Install or update the OpenGL driver; LIBGL_ALWAYS_SOFTWARE=1 asks for the software renderer.";
    if (context == nullptr || !context->isValid()) return wanted + "no OpenGL" + advice;
    const QSurfaceFormat got = context->format();
    const std::string version = std::to_string(got.majorVersion()) + "." + std::to_string(got.minorVersion());
    if (context->isOpenGLES()) return wanted + "only OpenGL ES " + version + advice;
    if (got.profile() == QSurfaceFormat::CoreProfile)
        return wanted + "only the core profile of " + version + advice;
    if (got.version() < qMakePair(1, 1)) return wanted + "only " + version + advice;
    return {};
}

std::string PlatformFault() {
    QOpenGLContext context;
    context.create();
    return ContextFault(&context);
}

}  // namespace tavrin
