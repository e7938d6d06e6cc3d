// SPDX-License-Identifier: Apache-2.0
// The search for an operator at the pointer: what opens it, what it reads, and what comes of a choice.
#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <memory>
#include <optional>

#include "desk/DeskGeometry.h"
#include "library/OperatorIndex.h"
#include "library/OperatorSearch.h"

class QWidget;

namespace tavrin {

class CommandActions;
class DeskPane;
class Profile;
class SearchPopup;
struct Workspace;

// Belongs to the frame. Where the library wants the search on the desk, the operators are read as soon as the
// program has nothing else to do, else when the search is opened first.
class SearchWork {
  public:
    // All of it outlives this.
    struct Needs {
        QWidget& frame;
        Workspace& work;
        DeskPane& desk;
        Profile& profile;  // keeps what was used last
    };
    explicit SearchWork(const Needs& needs);
    ~SearchWork();

    void AddTo(CommandActions& commands);
    // A key was pressed on the desk, or a wire let go of over it. False if the library wants no search there,
    // or the desk is locked.
    bool OpenByKey(const QString& begun);
    bool OpenForWire(const COpButton& button, DeskPoint at);
    void OnIdle();
    // The operators were looked for anew.
    void LibraryChanged();
    // Closes it and reads no more: the program is about to end.
    void End();

    // Null before it was opened first.
    SearchPopup* Popup() const { return m_popup; }
    const OperatorIndex* Index() const { return m_index.get(); }

  private:
    bool IsLocked() const;
    void BeginReading();
    void Read();
    void OpenAt(DeskPoint at, const QString& begun, const COpButton* button);
    DeskPoint PlaceOnDesk() const;
    void Put(const std::string& name, const std::optional<WireFit>& fit);
    void LetGo();

    Needs m_needs;
    std::unique_ptr<OperatorIndex> m_index;  // from the first reading up to the end
    std::unique_ptr<OperatorSearch> m_search;
    SearchPopup* m_popup = nullptr;  // the frame's child
    bool m_hasEnded = false;
    bool m_isForWire = false;
    DeskPoint m_at;        // where the operator is to come
    uint64_t m_shown = 0;  // the index's revision that was found in last
    QElapsedTimer m_lastFind;
    QTimer m_timer;
};

}  // namespace tavrin
