// SPDX-License-Identifier: Apache-2.0
// The window "Check": what a user should know of the network, as it stands.
#pragma once

#include <QTimer>
#include <functional>
#include <string>
#include <vector>

#include "render/NetworkCheck.h"
#include "ui/windows/ToolWindow.h"

class QLabel;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace tavrin {

class COpDesk;
class COpRegistry;
class CTvDoc;
struct Site;

// Lives as long as the frame. It looks at the network once the hand pauses, and not at all while it is
// hidden.
class CheckWindow : public ToolWindow {
  public:
    static constexpr size_t kMostRows = 2000;  // of a network that is full of them

    // All of it outlives the window.
    struct Needs {
        CTvDoc& document;
        COpDesk& desk;
        const COpRegistry& registry;
        const Site& site;
        std::function<void(const std::string& boxTitleWid)> goToBox;
        std::function<void(const std::string& why)> tell;  // why something could not be mended
    };
    CheckWindow(QWidget* frame, Needs needs);

    void Follow(const Change& change) override;
    void LibraryChanged() override { NetworkChanged(); }
    void SetLocked(bool locked) override;

    const std::vector<Finding>& Findings() const { return m_findings; }

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void MakeList();
    void NetworkChanged();
    void LookAtFile();
    void Refresh();
    void Show(const std::vector<Finding>& before);
    void ShowSum();
    QTreeWidgetItem* MakeRow(const Finding& finding) const;
    const Finding* Current() const;
    void GoTo();
    void Mend();
    void UpdateButtons();

    Needs m_needs;
    std::vector<Finding> m_ofFile;  // of the one that the document was opened from
    std::vector<Finding> m_findings;
    bool m_isStale = true;
    bool m_isLocked = false;
    QTimer m_pause;  // of the hand
    // Children.
    QTreeWidget* m_list = nullptr;
    QLabel* m_sum = nullptr;
    QPushButton* m_goTo = nullptr;
    QPushButton* m_mend = nullptr;
};

}  // namespace tavrin
