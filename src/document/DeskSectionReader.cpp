// The `opdesk` section: boxes, connections and the state of the desk.
#include <algorithm>

#include "document/DocumentReader.h"
#include "document/TvDoc.h"
#include "site/Site.h"

namespace tavrin {

namespace {

constexpr std::string_view kButtonPrefix = "opbutton.";

}  // namespace

bool DocumentReader::ReadOpDesk() {
    if (!Expect("{")) return false;
    std::string keyword;
    while (ReadToken(m_archive, keyword) && keyword != "}") {
        if (!ReadDeskClause(keyword)) return false;
    }
    return true;
}

bool DocumentReader::ReadDeskClause(const std::string& keyword) {
    CTvDoc& document = m_document;
    if (keyword == "opbox") return ReadOpBox();
    if (keyword == "opconnects") return ReadConnects();
    if (keyword == "drawlinesoverboxes") return Flag(document.drawlinesoverboxes);
    if (keyword == "showvarnames") return Flag(document.showvarnames);
    if (keyword == "lock") return Flag(document.lock);
    if (keyword == "showiconimages") return Flag(document.showiconimages);
    if (keyword == "linetype") return Choice(document.linetype, "trace", "direct");
    if (keyword == "offsetxy") return Operand(document.offset[0]) && Operand(document.offset[1]);
    if (keyword == "zoomxyf") {
        return Operand(document.zoom[0]) && Operand(document.zoom[1]) && Operand(document.zoomFactor);
    }
    return Unexpected();
}

bool DocumentReader::ReadOpBox() {
    std::string filename;
    if (!Expect("{") || !Expect("filename") || !Operand(filename)) return false;
    auto made = std::make_unique<COpBox>();
    if (!m_host.DefineBox(*made, filename)) return false;
    COpBox& box = *m_document.m_boxes.emplace_back(std::move(made));
    // A definition may come with copies of a vinput; the file decides how many there are.
    std::erase_if(box.inputs, [](const auto& input) { return input->instance != 1; });
    m_inputCursor = 0;
    m_outputCursor = 0;
    m_namesSeen.clear();

    std::string keyword;
    while (ReadToken(m_archive, keyword) && keyword != "}") {
        if (!ReadBoxClause(box, keyword)) return false;
    }
    std::erase_if(box.inputs, [this](const auto& input) {
        return input->kind == ButtonKind::kVinput && !m_namesSeen.contains(input->name);
    });
    box.RenumberInputs();
    return true;
}

bool DocumentReader::ReadBoxClause(COpBox& box, const std::string& keyword) {
    if (keyword == "wid") return Operand(box.wid);
    if (keyword == "xypos") return Operand(box.xypos[0]) && Operand(box.xypos[1]);
    if (keyword == "opboxdefs") {
        return Expect("{") && Expect("maxinstances") && Operand(box.maxinstances) && Expect("}");
    }
    if (keyword.starts_with(kButtonPrefix)) return ReadOpBoxButton(box, keyword.substr(kButtonPrefix.size()));
    return Unexpected();
}

bool DocumentReader::ReadConnects() {
    if (!Expect("{")) return false;
    m_byWid.clear();
    for (const auto& box : m_document.m_boxes) m_byWid[box->wid] = box.get();
    std::string token;
    while (ReadToken(m_archive, token) && token != "}") {
        if (!ReadConnection(token)) return false;
    }
    return true;
}

// One end of a connection, "opbox:TITLE,NUMBER,BUTTON,POSITION"; title and button are not checked.
bool DocumentReader::ScanEnd(const std::string& text, int& wid, int& position) {
    FieldScanner scanner(text);
    if (!scanner.Literal("opbox:") || !scanner.Until(',') || !scanner.Literal(",")) return Unexpected();
    const auto number = scanner.Int();
    if (!number || !scanner.Literal(",") || !scanner.Until(',') || !scanner.Literal(",")) return Unexpected();
    const auto place = scanner.Int();
    if (!place) return Unexpected();
    wid = *number;
    position = *place;
    return true;
}

bool DocumentReader::ReadConnection(const std::string& source) {
    int sourceWid = 0;
    int outputPosition = 0;
    int targetWid = 0;
    int inputPosition = 0;
    std::string target;
    if (!ScanEnd(source, sourceWid, outputPosition) || !Expect("->") || !Operand(target) ||
        !ScanEnd(target, targetWid, inputPosition)) {
        return false;
    }
    for (const int wid : {sourceWid, targetWid}) {
        if (!m_byWid.contains(wid)) return Stop(FormatText("box %d not found", wid));
    }
    COpBox& from = *m_byWid[sourceWid];
    COpBox& to = *m_byWid[targetWid];
    if (outputPosition < 0 || static_cast<size_t>(outputPosition) >= from.outputs.size()) {
        return Stop(FormatText("box %d has no output %d", sourceWid, outputPosition));
    }
    if (inputPosition < 0 || static_cast<size_t>(inputPosition) >= to.inputs.size()) {
        return Stop(FormatText("box %s_%d has no input %d", to.filename.c_str(), targetWid, inputPosition));
    }
    // From the input's side, so that a pair that the file names twice stays whole.
    to.inputs[static_cast<size_t>(inputPosition)]->Connect(
        *from.outputs[static_cast<size_t>(outputPosition)]);
    return true;
}

}  // namespace tavrin
