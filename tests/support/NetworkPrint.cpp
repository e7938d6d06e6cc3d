// SPDX-License-Identifier: Apache-2.0
#include "support/NetworkPrint.h"

#include <map>
#include <sstream>

#include "base/Paths.h"
#include "document/TvDoc.h"
#include "support/ValuePrint.h"

namespace tavrin::test {

namespace {

void PutEnds(std::ostream& text, const char* name, const ConnectionSet& ends) {
    text << ' ' << name;
    for (const COpButton* end : ends) text << ' ' << end->Serial();
}

std::string TextOf(const COpButton& button) {
    std::ostringstream text;
    text << "  " << button.Serial() << ' ' << button.name << ' ' << button.instance << " arg " << button.arg
         << " cast " << button.currentcast << ' ' << button.pin << button.lock << button.stow << " \""
         << button.argname << "\" \"" << button.comments << '"';
    for (const auto& value : button.values) {
        text << ' ' << value->type << ' ';
        Put(text, *value);
    }
    PutEnds(text, "wires", button.connections);
    PutEnds(text, "named by", button.NamedBy());
    text << (COpButton::IsLive(&button) ? "\n" : " GONE\n");
    return text.str();
}

std::string TextOf(const COpBox& box) {
    std::ostringstream text;
    text << box.Serial() << ' ' << box.BoxTitleWid() << ' ' << box.maxinstances << ' ' << box.muted << ' ';
    Put(text, {box.xypos[0], box.xypos[1]});
    text << (COpBox::IsLive(&box) ? "\n" : " GONE\n");
    for (const auto* side : {&box.inputs, &box.outputs}) {
        for (const auto& button : *side) text << TextOf(*button);
    }
    return text.str();
}

}  // namespace

std::string PrintNetwork(const CTvDoc& document) {
    std::map<uint64_t, std::string> boxes;
    for (const auto& box : document.m_boxes) boxes[box->Serial()] = TextOf(*box);
    std::ostringstream text;
    for (const auto& [serial, box] : boxes) text << box;
    for (const auto& [name, value] : document.m_renderOptions) text << name << '=' << value << '\n';
    text << document.showiconimages << document.linetype << document.drawlinesoverboxes
         << document.showvarnames;
    for (const auto& name : document.toolbar) text << ' ' << name;
    const CExportOptions& options = document.exportOptions;
    text << '\n'
         << options.saveTavrn << options.saveSource << options.saveCompiled << options.saveShaderIface
         << options.saveRenderIface << options.runPostSave << ' ' << PathDir(options.tavrnPath) << ' '
         << PathDir(options.compiledPath) << ' ' << PathDir(options.sourcePath) << ' '
         << PathDir(options.shaderIfacePath) << ' ' << PathDir(options.renderIfacePath) << ' '
         << options.postSaveScript << '\n'
         << document.customshaderhelp << '\n';
    for (const auto& [number, frame] : document.frames) text << number << ' ' << WordsOf(frame) << '\n';
    return text.str();
}

}  // namespace tavrin::test
