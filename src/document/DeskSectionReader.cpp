// The `opdesk` section: boxes, connections and the state of the desk.
#include <algorithm>
#include <functional>
#include <unordered_set>
#include <utility>

#include "document/DocumentReader.h"
#include "document/TvDoc.h"
#include "site/Site.h"

namespace tavrin {

namespace {

constexpr std::string_view kButtonPrefix = "opbutton.";
constexpr std::string_view kNameKeyword = "filename";
constexpr size_t kLongestName = 300;  // no file's name is as long

// The words behind "{ filename", each once, in their order: the names of the operators, as far as that can be
// told without reading the text. A word too many or too few is no harm.
std::vector<std::string_view> OperatorNamesIn(std::string_view text) {
    std::vector<std::string_view> names;
    std::unordered_set<std::string_view> seen;
    const std::boyer_moore_horspool_searcher keyword(kNameKeyword.begin(), kNameKeyword.end());
    for (auto place = text.begin();;) {
        const auto [found, end] = keyword(place, text.end());
        if (found == end) return names;
        const std::string_view before = TrimRight(text.substr(0, static_cast<size_t>(found - text.begin())));
        if (before.ends_with('{')) {
            FieldScanner scanner(text.substr(static_cast<size_t>(end - text.begin()), kLongestName));
            const auto word = scanner.Word();
            if (word && seen.insert(*word).second) names.push_back(*word);
        }
        place = end;
    }
}

}  // namespace

// Lets the preprocessor begin with all operators of the file while the first boxes are read. Once for a file:
// what this misses, in one that changes the library between its boxes, is run when its box comes.
void DocumentReader::ExpectOperators() {
    if (std::exchange(m_hasLookedAhead, true) || !m_definitions.AreShared()) return;
    m_definitions.Expect(OperatorNamesIn(m_archive.Rest()));
}

bool DocumentReader::ReadOpDesk() {
    if (!Expect("{")) return false;
    ExpectOperators();
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
    if (!m_host.DefineBox(*made, filename, &m_definitions)) return false;
    COpBox& box = *m_document.m_boxes.emplace_back(std::move(made));
    // A definition may come with copies of a vinput; the file decides how many there are.
    std::erase_if(box.inputs, [](const auto& input) { return input->instance != 1; });
    m_inputCursor = 0;
    m_outputCursor = 0;
    m_inputRead = nullptr;
    m_namesSeen.clear();

    std::string keyword;
    while (ReadToken(m_archive, keyword) && keyword != "}") {
        if (!ReadBoxClause(box, keyword)) return false;
    }
    std::erase_if(box.inputs, [this](const auto& input) {
        return input->kind == ButtonKind::kVinput && !m_namesSeen.contains(input->name);
    });
    box.RenumberInputs();
    m_byWid[box.wid] = &box;
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
