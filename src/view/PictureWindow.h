// SPDX-License-Identifier: Apache-2.0
// The one window of the program.
#pragma once

#include <QMainWindow>
#include <QTimer>
#include <chrono>
#include <functional>
#include <string>

#include "render/PictureMessage.h"
#include "view/DockKeeper.h"
#include "view/PictureBook.h"
#include "view/PictureCanvas.h"

class QAction;
class QActionGroup;
class QComboBox;
class QSettings;
class QSplitter;

namespace tavrin {

class PictureStrip;
class StatusLine;

// Shows what desks tell, and tells them what the user does. It comes up without taking the focus, and moves
// to the top only when it is asked to come up. Made once by the program. What it consists of stands in
// PictureWindowParts.cpp.
class PictureWindow : public QMainWindow {
  public:
    // Tells a desk something, if it is there.
    using Tell = std::function<void(const std::string& desk, const PictureMessage&)>;

    // The settings outlive it.
    PictureWindow(QSettings& settings, Tell tell);
    ~PictureWindow() override;

    // Shows it as soon as its place is known: at once, or when a desk tells where it stands, or after that
    // time. `givenUp` is called if it is asked to go before that.
    void ShowInPlace(std::chrono::milliseconds most, std::function<void()> givenUp);

    // What has come from a desk, or from who renders for it.
    void Take(const PictureMessage& message);
    void DeskCame(const std::string& desk);
    void DeskWent(const std::string& desk);

    const PictureBook& Book() const { return m_book; }
    PictureCanvas& Canvas() { return *m_canvas; }
    const DockKeeper& Docking() const { return m_dock; }
    const PictureEntry* Shown() const { return m_shown; }
    const PictureEntry* Compared() const { return m_other; }

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void CreateBar();
    QAction* AddAction(const QString& icon, const QString& name, const QString& keys,
                       const std::function<void()>& act);
    void AddMode(PictureCanvas::Mode mode, const QString& icon, const QString& name, const QString& keys);
    void CreateViews();

    // What the book tells.
    void Came(PictureEntry& entry);
    void Changed(PictureEntry& entry);
    void Leaves(PictureEntry& entry);

    // What the user does.
    void Choose(PictureEntry& entry);
    void Restore(PictureEntry& entry);
    void CompareWith(PictureEntry& entry);
    void OpenMenu(PictureEntry& entry, QPoint at);
    void ChooseMode(PictureCanvas::Mode mode);
    void Flip();
    void Save(const PictureEntry& entry);
    void Copy();
    void Keep(const PictureEntry& entry);

    void Show(PictureEntry* entry);
    void SetOther(PictureEntry* entry);
    void ShowMode(PictureCanvas::Mode mode);
    PictureEntry* OlderThanShown() const;
    PictureEntry* NewestRender() const;
    PictureEntry* OwnOf(const PictureEntry* entry) const;
    bool CanTell(const PictureEntry& entry) const;
    void CompareRenders(const PictureMessage& message);
    void Refresh();
    void RefreshActions();
    void HasPainted();
    void ComeUp();
    void GoAway();

    Tell m_tell;
    PictureBook m_book;
    DockKeeper m_dock;
    PictureCanvas* m_canvas = nullptr;  // children
    PictureStrip* m_strip = nullptr;
    StatusLine* m_status = nullptr;
    QSplitter* m_splitter = nullptr;
    QActionGroup* m_modes = nullptr;
    QComboBox* m_gain = nullptr;
    QAction* m_gainOnBar = nullptr;
    QAction* m_save = nullptr;
    QAction* m_copy = nullptr;
    QAction* m_keep = nullptr;
    PictureEntry* m_shown = nullptr;  // of the book
    PictureEntry* m_other = nullptr;
    bool m_returnsToLive = false;  // it was left for a render that came
    QTimer m_show;                 // until a desk tells where it stands
    std::function<void()> m_givenUp;
    uint64_t m_toldShown = 0;  // the live picture that was told to be shown last
};

}  // namespace tavrin
