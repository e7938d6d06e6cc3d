// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/OperatorWork.h"

#include <QMainWindow>
#include <QMenuBar>
#include <utility>

#include "app/Workspace.h"
#include "ui/commands/CommandActions.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/StatusBox.h"
#include "ui/library/CustomizeDialog.h"
#include "ui/library/OperatorMenuBar.h"
#include "ui/library/OperatorToolBar.h"

namespace tavrin {

OperatorWork::OperatorWork(Needs needs)
    : m_needs(std::move(needs)),
      m_bar(MakeBar()),
      m_menus(std::make_unique<OperatorMenuBar>(*m_needs.frame.menuBar(), m_needs.work.app.Registry(),
                                                [this](uint32_t id) { AddOperator(id); })) {
    m_needs.frame.addToolBarBreak();
    m_needs.frame.addToolBar(m_bar);
}

OperatorWork::~OperatorWork() = default;

OperatorToolBar* OperatorWork::MakeBar() {
    CTvApp& app = m_needs.work.app;
    CommandActions& commands = m_needs.commands;
    auto* bar = new OperatorToolBar(
        &m_needs.frame, app.Registry(),
        {.shaderTypeChosen =
             [&app](const std::string& type) { app.SetVariable(kShaderTypeOption, type, true); },
         .focusDesk = [this] { m_needs.desk.setFocus(); },
         .render = [&commands] { commands.Run(CommandId::kRenderIt); },
         .customize = [&commands] { commands.Run(CommandId::kCustomize); },
         .addOperator = [this](uint32_t id) { AddOperator(id); },
         .logLine = [&app](const std::string& line) { app.GetSite().report.LogLine("%s", line.c_str()); },
         .showStatus = [this](const std::string& text) { m_needs.statusBox.SetStatus(text); }});
    bar->setObjectName("OperatorToolBar");
    bar->setMovable(false);
    bar->SetShaderTypes(app.ShaderTypes());
    return bar;
}

void OperatorWork::AddTo(CommandActions& commands) {
    commands.On(CommandId::kReloadOperators, {[this] { Reload(); }});
    commands.On(CommandId::kCustomize, {[this] { Customize(); }});
}

void OperatorWork::Follow(const Change& change) {
    if (change.replaced) Refresh();
    if (change.settings && m_needs.work.document.toolbar != m_shown) ShowToolbar();
}

void OperatorWork::Refresh() {
    m_menus->Rebuild();
    m_needs.menusRebuilt();
    ShowToolbar();  // with the commands of now
}

void OperatorWork::ShowToolbar() {
    m_shown = m_needs.work.document.toolbar;
    m_bar->RebuildButtons(m_shown);
}

void OperatorWork::AddOperator(uint32_t id) {
    CTvApp& app = m_needs.work.app;
    app.RestoreWorkDirectory();
    const COpEntry* entry = app.Registry().FindById(id);
    if (entry == nullptr) {
        app.GetSite().report.Alert("WARNING: no operator found for ID %d", static_cast<int>(id));
    } else {
        m_needs.work.desk.AddOperator(entry->name);
    }
}

void OperatorWork::Reload() {
    CTvApp& app = m_needs.work.app;
    app.ReloadOperators();
    Refresh();
    const size_t revived = m_needs.work.desk.RevivePlaceholders();
    std::string status = "Operators reloaded: " + std::to_string(app.Registry().Entries().size());
    if (revived > 0) status += "; placeholders that are real boxes again: " + std::to_string(revived);
    m_needs.statusBox.SetStatus(status);
    m_needs.reloaded();
    m_needs.work.probe.OperatorsReloaded();
}

void OperatorWork::Customize() {
    CTvDoc& document = m_needs.work.document;
    CustomizeDialog dialog(&m_needs.frame, m_needs.work.app.Registry(), document.toolbar);
    if (dialog.exec() != QDialog::Accepted) return;
    const EditScope edit(document, "Customize Toolbar");
    document.edits.SettingsChanged();
    document.toolbar = dialog.Result();
}

}  // namespace tavrin
