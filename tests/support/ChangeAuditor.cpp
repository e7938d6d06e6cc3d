// SPDX-License-Identifier: Apache-2.0
#include "support/ChangeAuditor.h"

#include <set>
#include <sstream>

#include "support/ValuePrint.h"

namespace tavrin::test {

namespace {

std::string TextOf(const COpBox& box) {
    std::ostringstream text;
    text << box.wid << ' ' << box.maxinstances << ' ' << box.muted << ' ';
    Put(text, box.xypos[0]);
    Put(text, box.xypos[1]);
    for (const auto* side : {&box.inputs, &box.outputs}) {
        text << '|';
        for (const auto& button : *side) text << ' ' << button->Serial() << ':' << button->instance;
    }
    return text.str();
}

std::string TextOf(const COpButton& button) {
    return std::to_string(button.arg) + ' ' + std::to_string(button.currentcast);
}

std::string TunedTextOf(const COpButton& button) {
    std::ostringstream text;
    text << button.pin << button.lock << button.stow << " \"" << button.argname << "\" \"" << button.comments
         << '"';
    for (const auto& value : button.values) {
        text << ' ' << value->type << ' ';
        Put(text, *value);
    }
    return text.str();
}

std::string WiresOf(const COpButton& button) {
    if (button.connections.Empty()) return {};
    std::ostringstream text;
    text << button.Serial() << ':';
    for (const COpButton* peer : button.connections) text << ' ' << peer->Serial();
    text << '\n';
    return text.str();
}

std::string SettingsText(const CTvDoc& document) {
    std::ostringstream text;
    text << document.showiconimages << document.linetype << document.drawlinesoverboxes
         << document.showvarnames << document.lock;
    for (const auto& name : document.toolbar) text << ' ' << name;
    const CExportOptions& options = document.exportOptions;
    text << options.saveTavrn << options.saveSource << options.saveCompiled << options.saveShaderIface
         << options.saveRenderIface << options.runPostSave << options.postSaveScript
         << document.customshaderhelp;
    return text.str();
}

template <typename Object>
std::set<uint64_t> SerialsOf(const std::vector<Object*>& objects) {
    std::set<uint64_t> serials;
    for (const Object* object : objects) serials.insert(object->Serial());
    return serials;
}

}  // namespace

ChangeAuditor::ChangeAuditor(CTvDoc& document, const COpDesk& desk)
    : m_document(document),
      m_desk(desk),
      m_before(Take()),
      m_changes(document.edits.Observe([this](const Change& change) { OnChange(change); })) {}

ChangeAuditor::Picture ChangeAuditor::Take() const {
    Picture picture;
    for (const auto& box : m_desk.m_pendingBoxes) picture.standing[box->Serial()] = box->BoxTitleWid();
    std::map<uint64_t, std::string> wires;  // whatever the order of the stack is
    for (const auto& box : m_document.m_boxes) {
        picture.standing[box->Serial()] = box->BoxTitleWid();
        picture.boxes[box->Serial()] = TextOf(*box);
        for (const auto* side : {&box->inputs, &box->outputs}) {
            for (const auto& button : *side) {
                picture.buttons[button->Serial()] = TextOf(*button);
                picture.tuned[button->Serial()] = TunedTextOf(*button);
                wires[button->Serial()] = WiresOf(*button);
            }
        }
    }
    for (const auto& [serial, text] : wires) picture.wires += text;
    for (const auto& [name, value] : m_document.m_renderOptions) picture.options += name + '=' + value + '\n';
    picture.settings = SettingsText(m_document);
    picture.frames = m_document.frames;
    return picture;
}

std::string ChangeAuditor::Look() {
    if (!m_document.edits.IsOpen()) Compare(Take(), {});
    TakeAsItIs();
    return std::exchange(m_missed, {});
}

void ChangeAuditor::TakeAsItIs() { m_before = Take(); }

void ChangeAuditor::OnChange(const Change& change) {
    if (change.selection) return;
    Picture now = Take();
    if (!change.replaced) Compare(now, change);
    m_before = std::move(now);
}

void ChangeAuditor::Compare(const Picture& now, const Change& change) {
    const auto miss = [&](const std::string& what) { m_missed += change.act + ": " + what + "\n"; };
    std::set<uint64_t> went;
    for (const GoneBox& box : change.went) went.insert(box.serial);
    const std::set<uint64_t> came = SerialsOf(change.came);
    const std::set<uint64_t> dropped = SerialsOf(change.dropped);
    std::set<uint64_t> touched = SerialsOf(change.touched);
    for (const auto& [serial, name] : m_before.standing) {
        if (!now.standing.contains(serial) && !went.contains(serial)) miss(name + " has gone");
    }
    for (const auto& [serial, name] : now.standing) {
        if (!m_before.standing.contains(serial) && !came.contains(serial)) miss(name + " has come");
    }
    for (const auto& [serial, text] : now.boxes) {
        const auto before = m_before.boxes.find(serial);
        if (before == m_before.boxes.end()) {
            if (!dropped.contains(serial)) miss(now.standing.at(serial) + " stands in the network");
        } else if (before->second != text && !touched.contains(serial)) {
            miss(now.standing.at(serial) + " is different");
        }
    }
    std::set<uint64_t> buttons = SerialsOf(change.buttons);
    for (const COpBox* box : change.touched) {
        for (const auto* side : {&box->inputs, &box->outputs}) {
            for (const auto& button : *side) buttons.insert(button->Serial());
        }
    }
    const auto compareButtons = [&](const auto& mapBefore, const auto& mapNow) {
        for (const auto& [serial, text] : mapNow) {
            const auto before = mapBefore.find(serial);
            if (before != mapBefore.end() && before->second != text && !buttons.contains(serial))
                miss("a button is different: " + text);
        }
    };
    compareButtons(m_before.buttons, now.buttons);
    buttons.merge(SerialsOf(change.tuned));
    compareButtons(m_before.tuned, now.tuned);
    // Wires that came with the boxes are seen with them.
    if (now.wires != m_before.wires && !change.wires && change.dropped.empty()) miss("wires are different");
    if (now.options != m_before.options && !change.options) miss("options are different");
    if (now.settings != m_before.settings && !change.settings) miss("settings are different");
    if (now.frames != m_before.frames && !change.frames) miss("frames are different");
}

}  // namespace tavrin::test
