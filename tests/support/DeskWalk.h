// SPDX-License-Identifier: Apache-2.0
// A user who does anything anywhere on the desk, the same in every run.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "desk/DeskMenu.h"

namespace tavrin::test {

enum class WalkEdit {
    kCut,
    kCopy,
    kPaste,
    kDelete,
    kSelectAll,
    kUnselectAll,
    kFitToWindow,
    kZoomReset,
    kZoomIn,
    kZoomOut,
    kCount,
};

// Edits that put boxes in order and keep their flow.
enum class WalkFlow {
    kAlign,
    kDistribute,
    kTidySelected,
    kTidyAll,
    kDeleteKeepingFlow,
    kMute,
    kEscape,
    kCount,
};

// How the walk goes through a context menu that has opened.
struct WalkMenu {
    // The place of the item to choose among these; of a submenu's title to go on into it. Nothing leaves the
    // menu.
    std::function<std::optional<size_t>(const DeskMenuEntries& items)> next;
    // What happens while the menu is open. To be called once, before the last item is chosen or the menu
    // left.
    std::function<void()> meanwhile;
};

// How the walk's choices reach a desk: as events of a window, or straight.
class DeskHands {
  public:
    virtual ~DeskHands() = default;
    virtual void Move(const PointerState& pointer) = 0;
    virtual void LeftDown(const PointerState& pointer) = 0;
    virtual void LeftUp(const PointerState& pointer) = 0;
    virtual void Wheel(bool forward) = 0;
    virtual void Tick() = 0;  // the time of a gesture goes on
    virtual void Edit(WalkEdit edit) = 0;
    // `which` chooses among the kinds of an edit. Nothing where the hands have no way to it.
    virtual void Flow(WalkFlow, uint32_t /*which*/) {}
    // Clicks there with the right button and goes through the menu that comes, if one does.
    virtual void Menu(const PointerState& pointer, const WalkMenu& menu) = 0;
    virtual void AddOperator(const std::string& name) = 0;
    virtual void Scroll(bool across, ScrollAction action, int thumb) = 0;
    virtual void Lock(bool locked) = 0;
    virtual void SaveAndOpenAgain() = 0;
    virtual void Paint() = 0;
};

// Document, desk, view and hands outlive it.
class DeskWalk {
  public:
    struct Ground {
        const CTvDoc& document;
        const COpDesk& desk;
        const DeskViewport& view;
        DeskHands& hands;
        std::vector<std::string> operators;
    };
    DeskWalk(Ground ground, uint32_t seed) : m_ground(std::move(ground)), m_random(seed) {}

    // One edit, which may be a gesture of many events.
    void Step();

    // What the last step was.
    const std::string& Name() const { return m_name; }
    // How many steps so far were edits by the pointer: with a press, a menu or a drag that pans.
    int PointerEdits() const { return m_pointerEdits; }
    // How many menus have opened, and how many items were chosen in them.
    int MenusOpened() const { return m_menusOpened; }
    int ItemsChosen() const { return m_itemsChosen; }
    // The buttons that were selected for wiring when one of its events came.
    const std::set<const COpButton*>& Selected() const { return m_selected; }

  private:
    struct Choice {
        int weight;
        const char* name;
        void (DeskWalk::*step)();
    };
    static const std::vector<Choice>& Choices();

    uint32_t Below(size_t count) { return static_cast<uint32_t>(m_random() % count); }
    bool OneIn(uint32_t count) { return Below(count) == 0; }
    float Between(float low, float high);

    COpBox* AnyBox();
    COpButton* AnyButton(bool vinputsOnly = false);
    DeskPoint Anywhere();
    DeskPoint OnAButton();
    DeskPoint OnAnArrow();
    DeskPoint OnALine();

    void Modifiers();
    PointerState At(DeskPoint point);
    void Hover(DeskPoint point);
    void Press(DeskPoint point);
    void Drag(DeskPoint point);
    void Release();
    void Click(DeskPoint point);
    void Menu(DeskPoint point, const std::vector<std::string>& way = {});
    std::optional<size_t> NextItem(const DeskMenuEntries& items, const std::vector<std::string>& way,
                                   size_t depth);
    void Meanwhile();

    void DragABox();
    void DragAFrame();
    void WireByDragging();
    void WireByClicks();
    void WireAgain();
    void Grow();
    void SelectByBand();
    void ClickALine();
    void ClickAnywhere();
    void HoverAnywhere();
    void AnyEvent();
    void DragOverTheEdge();
    void TurnTheWheel();
    void Pan();
    void Scroll();
    void Edit();
    void Flow();
    void PullAWire();
    void DropOnALine();
    void CopyAndPaste();
    void Tidy();
    void AddAndDrop();
    void AddAndLeave();
    void ChooseFromAMenu();
    void Lock();
    void SaveAndOpenAgain();

    Ground m_ground;
    std::mt19937 m_random;
    std::string m_name;
    std::set<const COpButton*> m_selected;
    PointerState m_pointer;
    bool m_pointerEdit = false;  // the step is one
    int m_pointerEdits = 0;
    int m_menusOpened = 0;
    int m_itemsChosen = 0;
};

}  // namespace tavrin::test
