// SPDX-License-Identifier: Apache-2.0
// The picture window as the frame knows it: its command, and what it is told by itself.
#pragma once

#include <QObject>

#include "base/Listeners.h"
#include "render/RenderRecord.h"
#include "ui/render/PictureLink.h"

class QWidget;

namespace tavrin {

class CommandActions;
class DocumentWork;
struct Workspace;

// Belongs to the frame. Tells the window of each render, and where the frame stands.
class PictureWork : public QObject {
  public:
    // All of it outlives this.
    struct Needs {
        QWidget& frame;
        Workspace& work;
        PictureLink& pictures;
    };
    explicit PictureWork(Needs needs);
    ~PictureWork() override;

    void AddTo(CommandActions& commands);

    // Opens the document of a render that the user has chosen in the window, as a double click in the history
    // does. Nothing if it has left that.
    static void Restore(int number, Workspace& work, DocumentWork& documents);

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    Needs m_needs;
    Listeners<const RenderRecord&>::Subscription m_records;
    Listeners<int>::Subscription m_forgotten;
};

}  // namespace tavrin
