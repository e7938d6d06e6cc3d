// SPDX-License-Identifier: Apache-2.0
// A desk without a window on which a walk does anything anywhere.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <set>

#include "desk/HitTest.h"
#include "document/DocumentReader.h"
#include "document/DocumentSnapshot.h"
#include "render/RenderSession.h"
#include "site/Site.h"
#include "support/ChangeAuditor.h"
#include "support/DeskInvariants.h"
#include "support/DeskWalk.h"
#include "support/TestHost.h"

namespace tavrin::test {

class EvenText : public TextMeasure {
  public:
    float LabelWidth(const std::string& text) const override { return static_cast<float>(text.size()) * 6; }
    float TitleWidth(const std::string& text) const override { return static_cast<float>(text.size()) * 9; }
};

// Lays boxes out as a window would, and keeps the names that the Box Finder shows.
class WalkView : public DeskView {
  public:
    void LayoutBox(COpBox& box) override { tavrin::LayoutBox(box, viewport->Zoom(), EvenText(), {}); }
    void OnChange(const Change& change) {
        if (change.replaced) finder.clear();
        for (const GoneBox& box : change.went) {
            if (const auto place = finder.find(box.boxTitleWid); place != finder.end()) finder.erase(place);
        }
        for (const COpBox* box : change.came) finder.insert(box->BoxTitleWid());
    }

    const DeskViewport* viewport = nullptr;
    std::multiset<std::string> finder;
};

// What a menu is open on.
class Target {
  public:
    Target(const COpBox& box, const COpButton* button)
        : m_box(box.Serial()), m_button(button == nullptr ? 0 : button->Serial()) {}
    bool IsIn(const CTvDoc& document) const {
        for (const auto& box : document.m_boxes) {
            if (box->Serial() == m_box) return m_button == 0 || HasButton(*box);
        }
        return false;
    }

  private:
    bool HasButton(const COpBox& box) const {
        const auto isIt = [this](const auto& button) { return button->Serial() == m_button; };
        return std::any_of(box.inputs.begin(), box.inputs.end(), isIt) ||
               std::any_of(box.outputs.begin(), box.outputs.end(), isIt);
    }

    uint64_t m_box;
    uint64_t m_button;  // 0 without a button
};

class DeskWalkTest : public DocumentTest, public testing::WithParamInterface<uint32_t>, public DeskHands {
  protected:
    DeskWalkTest() {
        host.startsProcesses = false;
        host.GetSite().types.SetDataType("float", {"float ", ";"});
        view.viewport = &viewport;
        viewport.SetSize(800, 600);
        AddOperators();
    }

    void AddOperators();
    // With every second seed, the library wants what it may want of wires.
    bool ChooseRules() {
        if (GetParam() % 2 != 0) return false;
        for (const char* name : {"pullwires", "dropwires", "escapewires", "insertboxes"})
            host.GetSite().settings.Store(std::string("desk.") + name, "1");
        return true;
    }
    void Edit(WalkEdit edit) override;
    void Flow(WalkFlow flow, uint32_t which) override;
    void Menu(const PointerState& pointer, const WalkMenu& menu) override;
    void Move(const PointerState& pointer) override {
        if (document.lock == 0) gestures.Move(pointer);
    }
    void LeftDown(const PointerState& pointer) override {
        if (document.lock == 0) gestures.LeftDown(pointer);
    }
    void LeftUp(const PointerState& pointer) override {
        if (document.lock == 0) gestures.LeftUp(pointer);
    }
    void Wheel(bool forward) override { viewport.Wheel(forward ? 1 : -1); }
    void Tick() override { gestures.Tick(); }
    void AddOperator(const std::string& name) override { desk.AddOperator(name); }
    void Scroll(bool across, ScrollAction action, int thumb) override {
        if (across) {
            viewport.ScrollHorizontally(action, thumb);
        } else {
            viewport.ScrollVertically(action, thumb);
        }
    }
    void Lock(bool locked) override;
    void SaveAndOpenAgain() override;
    // What a window does for a paint.
    void Paint() override {
        desk.ValidateReferences();
        if (viewport.Zoom() != m_lastZoom) LayoutAll();
        m_lastZoom = viewport.Zoom();
        gestures.UpdateGrowArrows();
    }
    void LayoutAll() {
        for (const auto& box : document.m_boxes) view.LayoutBox(*box);
        for (const auto& box : desk.m_pendingBoxes) view.LayoutBox(*box);
        for (const auto& box : desk.m_clipboardBoxes) view.LayoutBox(*box);
    }

    void Look();
    void LookCloser();
    void ExpectLaidOut();
    void ExpectListed();
    void ExpectSavedWhole();
    void CutOneSidedWires();

    WalkView view;
    Edits::Subscription changes =
        document.edits.Observe([this](const Change& change) { view.OnChange(change); });
    const bool hasRules = ChooseRules();  // before there is a desk, which reads them
    SeenDesk desk{document, host, view};
    DeskViewport viewport{document, {0.1F, 10}};
    DeskGestures gestures{
        {document, desk, viewport, view, host.GetSite().report, 3, [](const std::string&) {}}};
    DeskMenu deskMenu{{document, desk, gestures, view, host.GetSite().types, [this](const std::string& name) {
                           EXPECT_NE(host.Registry().FindByName(name), nullptr) << name;
                       }}};
    DeskInvariants invariants{document, desk};
    ChangeAuditor auditor{document, desk};
    DocumentSnapshot snapshot{document, host};
    CCodeGen siteCodeGen;
    std::vector<std::string> operators;
    std::optional<DeskWalk> walk;

  private:
    void Operator(const std::string& name, const std::string& text) {
        host.AddOperator(name, text);
        operators.push_back(name);
    }
    float m_lastZoom = 0;
    std::string m_whenLocked;
};

inline void DeskWalkTest::AddOperators() {
    const std::string code = "\ncodegen.main-body append\nTAVRN_BoxTitleWid(";
    const std::string end = ");\n<<EOT>>\n";
    Operator("Constant", "input value { float { 0.25 0 1 0 %g } } output result { float out }" + code +
                             "value, result" + end);
    Operator("Math",
             "input left { float { 0 0 1 0 %g } rgb { 1 0 0 %g } } input right { float { 0 0 1 0 %g } }\n"
             "input how { string { \"a\" } wwms.disableconnectflag 1 wwms.disableargflag 1 }\n"
             "output result { float out rgb out }\ndefs { castlock.add left result }" +
                 code + "left, right, how, result" + end);
    Operator("Layers",
             "input base { float { 0 0 1 0 %g } }\nvinput layer { vinstances 2 vargseparator \", \"\n"
             "float { 0 0 1 0 %g } rgb { 1 1 0 %g } }\noutput top { rgb out } output cover { float out }" +
                 code + "layer, base, top, cover" + end);
    Operator("Relay", "input in { float { 0 0 1 0 %g } } output tieback=in out { float out }\n");
    Operator("Fixed",
             "input in { float { 0 0 1 0 %g } }\n"
             "output fixedvalue=\"f(in, TAVRN_BoxWid)\" out { float out }\ndefs { maxinstances 4 }\n");
    Operator("Surface", "input colour { rgb { 1 1 1 %g } float { 0 0 1 0 %g } }\ndefs { maxinstances 1 }" +
                            code + "colour" + end);
    Operator("Note", "boxhelp\n{\nNothing to wire.\n}\n");
    CTvDoc network(host);
    for (const char* name : {"Constant", "Surface", "Layers"}) {
        auto box = std::make_unique<COpBox>();
        ASSERT_TRUE(host.DefineBox(*box, name));
        box->wid = static_cast<int>(network.m_boxes.size()) + 1;
        box->xypos[0] = 150.0F * static_cast<float>(box->wid);
        network.m_boxes.push_back(std::move(box));
    }
    Wire(BoxAt(network, 0), 0, BoxAt(network, 2), 1);
    Wire(BoxAt(network, 2), 0, BoxAt(network, 1), 0);
    Operator("Network", network.Store());
}

inline void DeskWalkTest::Edit(WalkEdit edit) {
    if (document.lock != 0) return;
    switch (edit) {
        case WalkEdit::kCut:
            return desk.CutBoxes();
        case WalkEdit::kCopy:
            return desk.CopySelection();
        case WalkEdit::kPaste:
            return desk.PasteBoxes(DeskPoint{desk.m_mouseDesk[0], desk.m_mouseDesk[1]});
        case WalkEdit::kDelete:
            return desk.DeleteSelection();
        case WalkEdit::kSelectAll:
            return desk.SelectAllBoxes();
        case WalkEdit::kUnselectAll:
            return desk.UnselectAllBoxes();
        case WalkEdit::kFitToWindow:
            viewport.FitToWindow();
            return;
        case WalkEdit::kZoomReset:
            viewport.ZoomReset();
            return;
        case WalkEdit::kZoomIn:
            viewport.ZoomIn();
            return;
        case WalkEdit::kZoomOut:
        case WalkEdit::kCount:
            viewport.ZoomOut();
            return;
    }
}

inline void DeskWalkTest::Flow(WalkFlow flow, uint32_t which) {
    if (document.lock != 0) return;
    switch (flow) {
        case WalkFlow::kAlign:
            return desk.AlignSelected(static_cast<DeskAlign>(which));
        case WalkFlow::kDistribute:
            return desk.DistributeSelected(which % 2 == 0 ? DeskAxis::kAcross : DeskAxis::kUp);
        case WalkFlow::kTidySelected:
            return desk.Tidy(COpDesk::TidyScope::kSelected);
        case WalkFlow::kTidyAll:
            return desk.Tidy(COpDesk::TidyScope::kAll);
        case WalkFlow::kDeleteKeepingFlow:
            return desk.DeleteKeepingFlow();
        case WalkFlow::kMute:
            return desk.MuteSelected();
        case WalkFlow::kEscape:
        case WalkFlow::kCount:
            gestures.LetGo();
            return;
    }
}

inline void DeskWalkTest::Menu(const PointerState& pointer, const WalkMenu& menu) {
    const auto entries = deskMenu.Open(viewport.ToDesk(pointer.at));
    if (!entries) return;
    EXPECT_EQ(document.lock, 0);
    // Else it is that of a frame or note.
    std::optional<Target> target;
    if (desk.m_mouseBox != nullptr) target.emplace(*desk.m_mouseBox, desk.m_mouseButton);
    int id = desk_command::kNone;
    for (const DeskMenuEntries* items = &*entries; items != nullptr;) {
        const auto place = menu.next(*items);
        if (!place) return menu.meanwhile();
        const DeskMenuEntry& item = items->at(*place);
        id = item.id;
        items = item.kind == DeskMenuEntry::Kind::kSubmenu ? &item.entries : nullptr;
    }
    menu.meanwhile();
    Look();  // at this edit by itself: choosing is another
    const std::string before = document.Snapshot();
    const bool stands = !target || target->IsIn(document);
    deskMenu.Choose(id);
    if (!stands || id == desk_command::kNone || id == desk_command::kEditFile) {
        EXPECT_EQ(document.Snapshot(), before) << id;
    }
}

// Whatever is tried while the desk is locked changes nothing.
inline void DeskWalkTest::Lock(bool locked) {
    if (!locked) {
        EXPECT_EQ(document.Snapshot(), m_whenLocked) << "a locked desk was changed";
    }
    document.lock = locked ? 1 : 0;
    auditor.TakeAsItIs();
    m_whenLocked = document.Snapshot();
}

inline void DeskWalkTest::SaveAndOpenAgain() {
    const std::string text = document.Store();
    document.DeleteContents();
    EXPECT_TRUE(Load(text)) << host.Sink().LastAlert();
    desk.OnInitialUpdate();
    invariants.TakeAsItIs();
}

inline void DeskWalkTest::ExpectLaidOut() {
    for (const auto& box : document.m_boxes) {
        COpBox other(*box);
        other.wid = box->wid;
        view.LayoutBox(other);
        EXPECT_EQ(box->layout.width, other.layout.width) << box->BoxTitleWid();
        EXPECT_EQ(box->layout.bodyHeight, other.layout.bodyHeight) << box->BoxTitleWid();
        EXPECT_EQ(box->layout.leftColumnWidth, other.layout.leftColumnWidth) << box->BoxTitleWid();
        EXPECT_EQ(box->layout.rightColumnWidth, other.layout.rightColumnWidth) << box->BoxTitleWid();
    }
}

inline void DeskWalkTest::ExpectListed() {
    std::multiset<std::string> names;
    for (const auto& box : document.m_boxes) names.insert(box->BoxTitleWid());
    for (const auto& box : desk.m_pendingBoxes) names.insert(box->BoxTitleWid());
    EXPECT_EQ(view.finder, names);
}

inline void DeskWalkTest::CutOneSidedWires() {
    for (const auto& box : document.m_boxes) {
        for (const auto& input : box->inputs) {
            const COpButton* source = input->connections.First();
            if (source != nullptr && !source->connections.Contains(*input)) input->Disconnect();
        }
    }
    auditor.TakeAsItIs();
}

// A wire that only its input knows of is not saved, and a clone gets its templates when it is read again:
// both are put right before.
inline void DeskWalkTest::ExpectSavedWhole() {
    CutOneSidedWires();
    for (const auto& box : document.m_boxes) {
        COpBox defined;
        ASSERT_TRUE(host.DefineBox(defined, box->filename));
        box->codegen = defined.codegen;
    }
    document.SetPath("/documents/walk.tvn");
    EXPECT_EQ(document.OrderBoxes().size(), document.m_boxes.size());
    const auto code = RenderSession(document, host.GetSite(), siteCodeGen).Generate().code;
    const std::string text = document.Store();
    EXPECT_EQ(document.Store(), text);
    CTvDoc other(host);
    ASSERT_TRUE(other.Load(ReadDocument(ArchiveOf(text, "walk.tvn")))) << host.Sink().LastAlert();
    other.SetPath(document.Path());
    EXPECT_EQ(other.Store(), text);
    EXPECT_EQ(RenderSession(other, host.GetSite(), siteCodeGen).Generate().code, code);
}

inline void DeskWalkTest::Look() {
    EXPECT_EQ(invariants.Look(walk->Selected()), "");
    EXPECT_EQ(auditor.Look(), "");
    EXPECT_EQ(document.edits.StrayEdits(), 0);
    EXPECT_EQ(tavrin::TextOf(snapshot.Take()), document.Snapshot());
}

inline void DeskWalkTest::LookCloser() {
    Paint();
    ExpectLaidOut();
    ExpectListed();
    ExpectSavedWhole();
}

}  // namespace tavrin::test
