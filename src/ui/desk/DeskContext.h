// SPDX-License-Identifier: Apache-2.0
// The OpenGL that the desk is drawn with: 1.1, with the calls that later core profiles have dropped.
#pragma once

#include <QSurfaceFormat>
#include <string>

class QOpenGLContext;

namespace tavrin {

// To be the default before there is an application.
QSurfaceFormat DeskFormat();

// Why the desk cannot be drawn in a context; empty if it can. Nothing for none.
std::string ContextFault(const QOpenGLContext* context);
// The same for the contexts that the platform makes. To be asked before there is a window with a desk: where
// the platform has no OpenGL at all, the toolkit cannot even show such a window.
std::string PlatformFault();

}  // namespace tavrin
