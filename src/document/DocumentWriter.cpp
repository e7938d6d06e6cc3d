// SPDX-License-Identifier: Apache-2.0
#include "document/DocumentWriter.h"

#include <algorithm>
#include <clocale>
#include <ctime>

#include "document/DocumentLayout.h"
#include "document/TvDoc.h"
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

// Builds the text line by line.
class Writer : private DocumentLayout {
  public:
    Writer(const CTvDoc& document, DocumentHost& host) : m_document(document), m_host(host) {}

    std::string Write() {
        const std::string header =
            "# Tavrn file written at " + TimeText(m_host.GetSite().environment) + "\r\n\r\n";
        m_text = header;
        PutVersion(m_host.DocumentVersion());
        PutLibrary(m_host.GetSite().directories.libName);
        WriteToolbar();
        WriteDesk();
        WriteRenderOptions();
        BeginSection("exportoptions");
        Put(ExportOptionLines(m_document.exportOptions));
        EndSection();
        PutHelp(m_document.customshaderhelp);
        m_text += header;
        return std::move(m_text);
    }

  private:
    void WriteToolbar() {
        BeginSection("toolbar");
        for (size_t i = 0; i < m_document.toolbar.size(); ++i) PutToolButton(i, m_document.toolbar[i]);
        EndSection();
    }

    void WriteDesk() {
        BeginSection("opdesk");
        BeginBoxes();
        for (const auto& box : m_document.m_boxes) WriteBox(*box);
        WriteConnections();
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
        EndSection();
    }

    void WriteSwitch(std::string_view keyword, int value) {
        PutDeskKeyword(keyword);
        Line(value != 0);
    }

    void WriteBox(const COpBox& box) {
        BeginBox(box.BoxTitleWid());
        Line("        filename ", box.filename);
        Line("        wid ", box.wid);
        Line("        xypos ", Fixed(box.xypos[0]), " ", Fixed(box.xypos[1]), kLineEnd);
        PutMaxInstances(box.maxinstances);
        for (const auto& input : box.inputs) WriteButton(*input);
        for (const auto& output : box.outputs) WriteButton(*output);
        EndBox();
    }

    void WriteButton(const COpButton& button) {
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

    // An output's wires are written in the order of what they lead to, so that the file does not depend on
    // the order in which they were made.
    void WriteConnections() {
        BeginConnections();
        for (const auto& box : m_document.m_boxes) {
            for (size_t output = 0; output < box->outputs.size(); ++output) {
                std::vector<const COpButton*> inputs(box->outputs[output]->connections.begin(),
                                                     box->outputs[output]->connections.end());
                std::stable_sort(
                    inputs.begin(), inputs.end(), [](const COpButton* left, const COpButton* right) {
                        if (left->owner->wid != right->owner->wid)
                            return left->owner->wid < right->owner->wid;
                        return left->owner->IndexOfButton(*left) < right->owner->IndexOfButton(*right);
                    });
                for (const COpButton* input : inputs) WriteConnection(*box, output, *input);
            }
        }
        EndConnections();
    }

    void WriteConnection(const COpBox& box, size_t output, const COpButton& input) {
        const COpBox& target = *input.owner;
        PutConnection(
            {box.filename, box.wid, box.outputs[output]->name, static_cast<int>(output)},
            {target.filename, target.wid, input.name, static_cast<int>(target.IndexOfButton(input))});
    }

    void WriteRenderOptions() {
        BeginSection("renderoptions");
        for (const auto& [key, value] : m_document.m_renderOptions) {
            if (m_host.IsUnsavedOption(key)) continue;
            if (IsBareToken(key)) {
                PutRenderOption(key, value);
            } else if (!m_host.AppVariables().contains(key)) {  // of its own options the form has told
                m_host.GetSite().report.LogLine(
                    "WARNING: render option \"%s\" is not saved: a document cannot hold this name",
                    key.c_str());
            }
        }
        EndSection();
    }

    const CTvDoc& m_document;
    DocumentHost& m_host;
};

}  // namespace

std::string WriteDocument(const CTvDoc& document, DocumentHost& host) {
    return Writer(document, host).Write();
}

}  // namespace tavrin
