// SPDX-License-Identifier: Apache-2.0
// The one document with everything that works on it, as a program's frame or a batch run holds it.
#pragma once

#include "app/DocumentCommands.h"
#include "app/TvApp.h"
#include "desk/OpDesk.h"
#include "render/Probe.h"
#include "render/RenderSession.h"
#include "render/ShaderExport.h"
#include "render/ShaderViews.h"

namespace tavrin {

// Made when the application has read its site's defaults. The document is the application's while this lives.
struct Workspace {
    Workspace(CTvApp& application, DocumentCommands::Announce announce)
        : app(application),
          document(app),
          desk(document, app),
          commands(app, document, desk, announce),
          probe(document, app),
          session(document, app.GetSite(), app.CodeGen()),
          views(app.GetSite(), session),
          exporter(document, app.GetSite(), session) {
        session.SetProbe(probe);
        app.SetDocument(&document);
        app.ShaderTypeChanged();
    }
    ~Workspace() { app.SetDocument(nullptr); }
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    CTvApp& app;
    CTvDoc document;
    COpDesk desk;
    DocumentCommands commands;
    Probe probe;
    RenderSession session;
    ShaderViews views;
    ShaderExport exporter;
};

}  // namespace tavrin
