// SPDX-License-Identifier: Apache-2.0
// The window "Source": what is generated of the network, beside the desk and always as it stands.
#pragma once

#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Listeners.h"
#include "render/SourceMaker.h"
#include "render/SourceWords.h"
#include "ui/windows/ToolWindow.h"

class QLabel;
class QMenu;
class QSplitter;
class QToolButton;

namespace tavrin {

class SourceColumn;

// Lives as long as the frame. The desk is followed once the hand pauses; a hidden window does nothing until
// it comes up. A source that cannot be made gives place to the reasons, which nowhere else are told. What it
// shows, and when, stands in SourceWindowShown.cpp.
class SourceWindow : public ToolWindow {
  public:
    // All of it outlives the window.
    struct Needs {
        CTvDoc& document;
        RenderSession& session;
        Site& site;
        const CCodeGen& siteCodeGen;
        std::function<std::vector<std::string>()> types;              // of shaders, that the library has
        std::function<void(const std::string& boxTitleWid)> goToBox;  // selects it and brings it into view
    };
    SourceWindow(QWidget* frame, Needs needs);
    ~SourceWindow() override;

    void Follow(const Change& change) override;
    void TitleChanged() override { DeskChanged(); }
    void LibraryChanged() override;

    const std::vector<SourceColumn*>& Columns() const { return m_columns; }
    // How often the network was generated for it since the start, and how often that was put off because the
    // hand was still busy.
    int Refreshes() const { return m_refreshes; }
    int Delays() const { return m_delays; }

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    static constexpr int kPause = 200;  // milliseconds without a change, after which the hand has paused

    void FillChooser();
    std::vector<SourceKind> Offered() const;
    std::vector<SourceKind> Chosen() const;
    void Choose(const SourceKind& kind, bool isShown);
    std::string CurrentType() const;
    void ReadWords();
    void ArrangeColumns();
    SourceColumn* ColumnOf(const SourceKind& kind) const;

    void DeskChanged();
    void RefreshWhenIdle();
    void Refresh();
    void ShowMade(const SourceKind& kind);
    void Light();
    void Mark();
    std::string ErrorAt(const LinePlace& place) const;
    bool IsOnDesk(const std::string& box) const;
    void TellPlace(const SourceKind& kind, size_t line);
    void GoTo(const SourceKind& kind, size_t line);

    Needs m_needs;
    SourceMaker m_maker;
    std::optional<SourceWords> m_words;               // read when they are first needed
    std::optional<std::vector<SourceKind>> m_chosen;  // by hand; else that of the document's type
    bool m_isStale = true;
    int m_refreshes = 0;
    int m_delays = 0;
    QTimer m_pause;  // of the hand
    Listeners<>::Subscription m_marksChange;
    // Children.
    QToolButton* m_chooser = nullptr;
    QMenu* m_choices = nullptr;
    QLabel* m_remark = nullptr;  // on the list of words
    QSplitter* m_split = nullptr;
    std::vector<SourceColumn*> m_columns;  // in the order of the chooser
    QLabel* m_place = nullptr;
};

}  // namespace tavrin
