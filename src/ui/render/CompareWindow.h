// SPDX-License-Identifier: Apache-2.0
// The window "Compare Renders": two renders, or a render and the desk, and what differs between them.
#pragma once

#include <QTimer>
#include <functional>
#include <string>

#include "render/Comparison.h"
#include "ui/windows/ToolWindow.h"

class QComboBox;
class QLabel;
class QPushButton;
class QTabWidget;

namespace tavrin {

class DifferenceList;
class SourceColumns;

// Lives as long as the frame. The desk is followed once the hand pauses; a hidden window does nothing until
// it comes up. What cannot be read is told in the window. What it shows, and when, stands in
// CompareWindowShown.cpp.
class CompareWindow : public ToolWindow {
  public:
    // All of it outlives the window.
    struct Needs {
        Comparison::Needs comparison;
        std::function<void(const std::string& boxTitleWid)> goToBox;  // selects it and brings it into view
        TakeOver::SetOption setOption;
        std::function<void(int first, int second)> comparePictures;
    };
    CompareWindow(QWidget* frame, Needs needs);
    ~CompareWindow() override;

    // Comes up with two renders, or one and Comparison::kDesk.
    void Compare(int older, int newer);

    void Follow(const Change& change) override;
    void TitleChanged() override { DeskChanged(); }
    void LibraryChanged() override;
    void HistoryChanged() override;
    void SetLocked(bool locked) override;

    Comparison& Compared() { return m_comparison; }
    // How often something was found out and shown since the start: what following has cost.
    int Refreshes() const { return m_refreshes; }
    // How often that was put off because the hand was still busy.
    int Delays() const { return m_delays; }

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    static constexpr int kPause = 200;  // milliseconds without a change, after which the hand has paused
    enum class Part { kDifferences, kSource, kPictures };  // in the order of the tabs

    QWidget* MakeChoosers();
    QWidget* MakeDifferences();
    QWidget* MakeSource();
    QWidget* MakePictures();
    QPushButton* MakeButton(const QString& text, const QString& tip, std::function<void()> press);

    void FillChoosers();
    void FillChooser(QComboBox& chooser, int chosen);
    void ChosenByHand();
    void DeskChanged();
    void RefreshWhenIdle();
    void Refresh();
    void RefreshSource();
    void RefreshNotes();
    void RefreshPictures();
    void UpdateButtons();
    void GoTo(size_t place);
    void TakeOverSelected();
    std::vector<size_t> Givable();        // of the selected rows
    std::string BoxOnDesk(size_t place);  // empty where it is not there

    Needs m_needs;
    Comparison m_comparison;
    bool m_followsNewest = true;  // nothing was chosen by hand
    bool m_isStale = true;
    bool m_isLocked = false;
    int m_refreshes = 0;
    int m_delays = 0;
    QTimer m_pause;  // of the hand
    // Children.
    QComboBox* m_older = nullptr;
    QComboBox* m_newer = nullptr;
    QLabel* m_notes = nullptr;
    QTabWidget* m_parts = nullptr;
    DifferenceList* m_list = nullptr;
    QPushButton* m_goToBox = nullptr;
    QPushButton* m_takeOver = nullptr;
    SourceColumns* m_source = nullptr;
    QLabel* m_changes = nullptr;
    QPushButton* m_nextChange = nullptr;
    QPushButton* m_previousChange = nullptr;
    QLabel* m_pictures = nullptr;
    QPushButton* m_comparePictures = nullptr;
};

}  // namespace tavrin
