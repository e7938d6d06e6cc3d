// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/PictureWork.h"

#include <QEvent>
#include <QWidget>

#include "app/Workspace.h"
#include "ui/commands/CommandActions.h"
#include "ui/commands/DocumentWork.h"

namespace tavrin {

PictureWork::PictureWork(Needs needs) : m_needs(needs) {
    RenderRecords& records = m_needs.work.session.records;
    PictureLink& pictures = m_needs.pictures;
    m_records =
        records.afterRecord.Add([&pictures](const RenderRecord& record) { pictures.TellRender(record); });
    m_forgotten = records.afterForget.Add([&pictures](int number) { pictures.ForgetRender(number); });
    m_needs.frame.installEventFilter(this);
}

PictureWork::~PictureWork() { m_needs.frame.removeEventFilter(this); }

void PictureWork::AddTo(CommandActions& commands) {
    PictureLink& pictures = m_needs.pictures;
    commands.On(CommandId::kPictureWindow,
                {.run = [&pictures] { pictures.IsUp() ? pictures.Close() : pictures.ComeUp(); },
                 .enabled = [&pictures] { return pictures.IsPossible(); },
                 .checked = [&pictures] { return pictures.IsUp(); }});
}

void PictureWork::Restore(int number, Workspace& work, DocumentWork& documents) {
    for (const std::string& entry : work.session.History().Entries()) {
        int known = 0;
        std::string name;
        if (!RenderHistory::ParseEntry(entry, known, name) || known != number) continue;
        documents.OpenHistoryEntry(entry);
        return;
    }
}

bool PictureWork::eventFilter(QObject* object, QEvent* event) {
    const auto type = event->type();
    if (type == QEvent::Move || type == QEvent::Resize || type == QEvent::Show)
        m_needs.pictures.FrameMoved(m_needs.frame.frameGeometry());
    return QObject::eventFilter(object, event);
}

}  // namespace tavrin
