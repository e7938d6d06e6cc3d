// SPDX-License-Identifier: Apache-2.0
#include "document/DocumentWriter.h"

#include <algorithm>
#include <clocale>
#include <ctime>
#include <utility>

#include "document/DocumentLayout.h"
#include "document/TvDoc.h"
#include "library/Placeholder.h"
#include "library/ValueVisitor.h"
#include "site/Site.h"
#include "text/StoredText.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

// The time of writing. Where SOURCE_DATE_EPOCH is set, that instant in universal time stands for now, so
// that a file can be made again byte by byte.
std::string TimeText(const Environment& environment) {
    std::time_t now = std::time(nullptr);
    std::tm fields{};
    if (const auto epoch = environment.Get("SOURCE_DATE_EPOCH"); epoch && !epoch->empty()) {
        now = static_cast<std::time_t>(std::strtoll(epoch->c_str(), nullptr, 10));
        ::gmtime_r(&now, &fields);
    } else {
        ::localtime_r(&now, &fields);
    }
    static const locale_t kCLocale = ::newlocale(LC_ALL_MASK, "C", nullptr);
    char text[64];
    const size_t length = ::strftime_l(text, sizeof text, "%a %b %d %H:%M:%S %Y", &fields, kCLocale);
    return {text, length};
}

// The word of a generic value's line that brings it back to the cast of this type.
std::string GenericWords(const std::string& type) {
    const bool hasName = type.starts_with(kGenericPrefix) && type.size() > kGenericPrefix.size();
    if (!hasName) return type;
    return std::string(type_words::kGeneric) + " " + type.substr(kGenericPrefix.size());
}

// What belongs to one box, line by line.
class BoxWriter : private DocumentLayout {
  public:
    explicit BoxWriter(std::string before = {}) { m_text = std::move(before); }

    std::string Take() { return std::move(m_text); }
    using DocumentLayout::Put;

    void PutBox(const COpBox& box) {
        if (box.IsPlaceholder()) return PutPlaceholder(box);
        BeginBox(box.BoxTitleWid());
        Line("        filename ", box.filename);
        Line("        wid ", box.wid);
        Line("        xypos ", Fixed(box.xypos[0]), " ", Fixed(box.xypos[1]), kLineEnd);
        PutMaxInstances(box.maxinstances);
        for (const auto& input : box.inputs) WriteButton(*input);
        for (const auto& output : box.outputs) WriteButton(*output);
        EndBox();
    }

    // An output's wires are written in the order of what they lead to, so that the file does not depend on
    // the order in which they were made.
    void PutWires(const COpBox& box) {
        for (size_t output = 0; output < box.outputs.size(); ++output) {
            std::vector<const COpButton*> inputs(box.outputs[output]->connections.begin(),
                                                 box.outputs[output]->connections.end());
            std::stable_sort(inputs.begin(), inputs.end(), [](const COpButton* left, const COpButton* right) {
                if (left->owner->wid != right->owner->wid) return left->owner->wid < right->owner->wid;
                return left->owner->IndexOfButton(*left) < right->owner->IndexOfButton(*right);
            });
            for (const COpButton* input : inputs) WriteConnection(box, output, *input);
        }
    }

  private:
    void PutPlaceholder(const COpBox& box) {
        Line("\r\n    # ", OneLine(box.BoxTitleWid()), "\r\n    ",
             BlockOf(*box.placeholder, box.wid, box.xypos));
    }

    void WriteButton(const COpButton& button) {
        if (button.stray != nullptr) return Line("\r\n        ", *button.stray);
        BeginButton(button.KindText(), button.name, button.DisplayName(), button.CurrentType());
        Line("                    pin ", button.pin);
        Line("                    stow ", button.stow);
        Line("                    lock ", button.lock);
        Line("                    arg ", button.arg);
        Line("                    argname ", QuoteString(button.argname));
        Line("                    comments ", QuoteString(button.comments));
        if (!button.IsOutput()) {
            for (const auto& value : button.values) WriteValue(*value);
        }
        EndButton();
    }

    void WriteValue(const COpValue& value) {
        Put("                    ");
        VisitValue(value, [this](const auto& own) { WriteFields(own); });
    }
    void WriteFields(const COpValueFloat& v) {
        Line("float ", v.value, " ", v.min, " ", v.max, " ", v.integer);
    }
    void WriteFields(const COpValueXyz& v) {
        Line("xyz ", v.x, " ", v.y, " ", v.z, " ", v.min, " ", v.max, " ", v.integer);
    }
    void WriteFields(const COpValueRgb& v) { Line("rgb ", v.r, " ", v.g, " ", v.b); }
    void WriteFields(const COpValueRgba& v) { Line("rgba ", v.r, " ", v.g, " ", v.b, " ", v.a); }
    void WriteFields(const COpValueString& v) { Line("string ", QuoteString(v.value)); }
    // Its reader takes the line as it stands, so the value has to keep to one.
    void WriteFields(const COpValueGeneric& v) {
        Line(GenericWords(v.type), " ", QuoteString(OneLine(v.value)));
    }

    void WriteConnection(const COpBox& box, size_t output, const COpButton& input) {
        const COpBox& target = *input.owner;
        PutConnection(
            {box.filename, box.wid, box.outputs[output]->name, static_cast<int>(output)},
            {target.filename, target.wid, input.name, static_cast<int>(target.IndexOfButton(input))});
    }
};

// What stands round boxes and wires.
class FrameWriter : private DocumentLayout {
  public:
    enum class Losses { kNamed, kUnsaid };

    FrameWriter(const CTvDoc& document, DocumentHost& host, Losses losses)
        : m_document(document), m_host(host), m_losses(losses) {}

    DocumentFrame Write() {
        DocumentFrame frame;
        const std::string header =
            "# Tavrn file written at " + TimeText(m_host.GetSite().environment) + "\r\n\r\n";
        Put(header);
        PutVersion(m_host.DocumentVersion());
        PutLibrary(m_host.GetSite().directories.libName);
        WriteMuted();
        for (const auto& [number, own] : m_document.frames) PutFrame(WordsOf(own));
        WriteToolbar();
        BeginSection("opdesk");
        BeginBoxes();
        frame.beforeBoxes = std::exchange(m_text, {});
        BeginConnections();
        frame.beforeWires = std::exchange(m_text, {});
        EndConnections();
        WriteDeskState();
        EndSection();
        WriteRenderOptions();
        BeginSection("exportoptions");
        Put(ExportOptionLines(m_document.exportOptions));
        EndSection();
        PutHelp(m_document.customshaderhelp);
        Put(header);
        frame.behindWires = std::exchange(m_text, {});
        return frame;
    }

  private:
    // Of a network without muted boxes nothing is said.
    void WriteMuted() {
        std::vector<int> wids;
        for (const auto& box : m_document.m_boxes) {
            if (box->muted != 0) wids.push_back(box->wid);
        }
        if (wids.empty()) return;
        std::sort(wids.begin(), wids.end());
        std::string text;
        for (const int wid : wids) text += (text.empty() ? "" : " ") + std::to_string(wid);
        PutMuted(text);
    }

    void WriteToolbar() {
        BeginSection("toolbar");
        for (size_t i = 0; i < m_document.toolbar.size(); ++i) PutToolButton(i, m_document.toolbar[i]);
        EndSection();
    }

    void WriteDeskState() {
        WriteSwitch("drawlinesoverboxes", m_document.drawlinesoverboxes);
        WriteSwitch("showvarnames", m_document.showvarnames);
        WriteSwitch("lock", m_document.lock);
        WriteSwitch("showiconimages", m_document.showiconimages);
        PutDeskKeyword("linetype");
        Line(m_document.linetype == 1 ? "trace" : "direct");
        PutDeskKeyword("offsetxy");
        Line(Fixed(m_document.offset[0]), " ", Fixed(m_document.offset[1]));
        PutDeskKeyword("zoomxyf");
        Line(Fixed(m_document.zoom[0]), " ", Fixed(m_document.zoom[1]), " ", Fixed(m_document.zoomFactor));
    }

    void WriteSwitch(std::string_view keyword, int value) {
        PutDeskKeyword(keyword);
        Line(value != 0);
    }

    void WriteRenderOptions() {
        BeginSection("renderoptions");
        for (const auto& [key, value] : m_document.m_renderOptions) {
            if (m_host.IsUnsavedOption(key)) continue;
            if (IsBareToken(key)) {
                PutRenderOption(key, value);
            } else if (m_losses == Losses::kNamed &&
                       !m_host.AppVariables().contains(key)) {  // of its own options the form has told
                m_host.GetSite().report.LogLine(
                    "WARNING: render option \"%s\" is not saved: a document cannot hold this name",
                    key.c_str());
            }
        }
        EndSection();
    }

    const CTvDoc& m_document;
    DocumentHost& m_host;
    Losses m_losses;
};

}  // namespace

DocumentFrame WriteDocumentFrame(const CTvDoc& document, DocumentHost& host) {
    return FrameWriter(document, host, FrameWriter::Losses::kUnsaid).Write();
}

std::string WriteBox(const COpBox& box) {
    BoxWriter writer;
    writer.PutBox(box);
    return writer.Take();
}

std::string WriteWires(const COpBox& box) {
    BoxWriter writer;
    writer.PutWires(box);
    return writer.Take();
}

std::string WriteDocument(const CTvDoc& document, DocumentHost& host) {
    DocumentFrame frame = FrameWriter(document, host, FrameWriter::Losses::kNamed).Write();
    BoxWriter writer(std::move(frame.beforeBoxes));
    for (const auto& box : document.m_boxes) writer.PutBox(*box);
    writer.Put(frame.beforeWires);
    for (const auto& box : document.m_boxes) writer.PutWires(*box);
    writer.Put(frame.behindWires);
    return writer.Take();
}

}  // namespace tavrin
