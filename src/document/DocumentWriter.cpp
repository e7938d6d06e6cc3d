#include "document/DocumentWriter.h"

#include <algorithm>
#include <clocale>
#include <ctime>

#include "document/TvDoc.h"
#include "library/ValueVisitor.h"
#include "site/Site.h"
#include "text/Numbers.h"
#include "text/StoredText.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

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

// A name within the end of a connection, whose fields are told apart by commas. Nobody reads the name.
std::string ConnectionField(std::string name) {
    std::replace(name.begin(), name.end(), ',', '_');
    return name;
}

// The word of a generic value's line that brings it back to the cast of this type.
std::string GenericWords(const std::string& type) {
    const bool hasName = type.starts_with(kGenericPrefix) && type.size() > kGenericPrefix.size();
    if (!hasName) return type;
    return std::string(type_words::kGeneric) + " " + type.substr(kGenericPrefix.size());
}

// Builds the text line by line.
class Writer {
  public:
    Writer(const CTvDoc& document, DocumentHost& host) : m_document(document), m_host(host) {}

    std::string Write() {
        const std::string header =
            "# Tavrn file written at " + TimeText(m_host.GetSite().environment) + "\r\n\r\n";
        m_text = header;
        Line("tavrn-version ", m_host.DocumentVersion(), kLineEnd);
        Line("tavrn-renderer ", TokenText(m_host.GetSite().directories.libName), kLineEnd);
        WriteToolbar();
        WriteDesk();
        WriteRenderOptions();
        Line("exportoptions\r\n{");
        m_text += ExportOptionLines(m_document.exportOptions);
        Line("}\r\n");
        WriteHelp();
        m_text += header;
        return std::move(m_text);
    }

  private:
    template <typename... Pieces>
    void Line(const Pieces&... pieces) {
        (Put(pieces), ...);
        m_text += kLineEnd;
    }
    void Put(std::string_view text) { m_text += text; }
    void Put(const std::string& text) { m_text += text; }
    void Put(const char* text) { m_text += text; }
    void Put(int number) { m_text += std::to_string(number); }
    void Put(size_t number) { m_text += std::to_string(number); }
    void Put(bool flag) { m_text += flag ? '1' : '0'; }
    void Put(float number) { AppendG(m_text, static_cast<double>(number)); }

    static std::string Fixed(float number) { return FormatF(static_cast<double>(number)); }

    void WriteToolbar() {
        Line("toolbar\r\n{");
        for (size_t i = 0; i < m_document.toolbar.size(); ++i)
            Line("    button ", TokenText(std::to_string(i) + "=" + m_document.toolbar[i]));
        Line("}\r\n");
    }

    void WriteDesk() {
        Line("opdesk\r\n{\r\n    # BOXES");
        for (const auto& box : m_document.m_boxes) WriteBox(*box);
        Line();
        WriteConnections();
        Line("    # DESK STATE");
        Line("    drawlinesoverboxes ", m_document.drawlinesoverboxes != 0);
        Line("    showvarnames       ", m_document.showvarnames != 0);
        Line("    lock               ", m_document.lock != 0);
        Line("    showiconimages     ", m_document.showiconimages != 0);
        Line("    linetype           ", m_document.linetype == 1 ? "trace" : "direct");
        Line("    offsetxy           ", Fixed(m_document.offset[0]), " ", Fixed(m_document.offset[1]));
        Line("    zoomxyf            ", Fixed(m_document.zoom[0]), " ", Fixed(m_document.zoom[1]), " ",
             Fixed(m_document.zoomFactor));
        Line("}\r\n");
    }

    void WriteBox(const COpBox& box) {
        Line("\r\n    # ", box.BoxTitleWid());
        Line("    opbox\r\n    {");
        Line("        filename ", box.filename);
        Line("        wid ", box.wid);
        Line("        xypos ", Fixed(box.xypos[0]), " ", Fixed(box.xypos[1]), kLineEnd);
        Line("        opboxdefs\r\n        {");
        Line("            maxinstances ", box.maxinstances);
        Line("        }");
        for (const auto& input : box.inputs) WriteButton(*input);
        for (const auto& output : box.outputs) WriteButton(*output);
        Line("    }");
    }

    void WriteButton(const COpButton& button) {
        Line("\r\n        opbutton.", button.KindText(), " ", button.name, " ", button.DisplayName());
        Line("        {\r\n            opbuttondefs\r\n            {");
        Line("                currentcast ", TokenText(button.CurrentType()));
        Line("                wwms\r\n                {");
        Line("                    pin ", button.pin);
        Line("                    stow ", button.stow);
        Line("                    lock ", button.lock);
        Line("                    arg ", button.arg);
        Line("                    argname ", QuoteString(button.argname));
        Line("                    comments ", QuoteString(button.comments));
        if (!button.IsOutput()) {
            for (const auto& value : button.values) WriteValue(*value);
        }
        Line("                }\r\n            }\r\n        }");
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
        Line("    opconnects\r\n    {");
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
        Line("    }\r\n");
    }

    void WriteConnection(const COpBox& box, size_t output, const COpButton& input) {
        const COpBox& target = *input.owner;
        Line("        opbox:", ConnectionField(box.filename), ",", box.wid, ",",
             ConnectionField(box.outputs[output]->name), ",", output,
             " -> opbox:", ConnectionField(target.filename), ",", target.wid, ",",
             ConnectionField(input.name), ",", target.IndexOfButton(input));
    }

    void WriteRenderOptions() {
        Line("renderoptions\r\n{");
        for (const auto& [key, value] : m_document.m_renderOptions) {
            if (m_host.IsUnsavedOption(key)) continue;
            if (IsBareToken(key)) {
                Line("    setenv ", key, " ", QuoteString(value));
            } else if (!m_host.AppVariables().contains(key)) {  // of its own options the form has told
                m_host.GetSite().report.LogLine(
                    "WARNING: render option \"%s\" is not saved: a document cannot hold this name",
                    key.c_str());
            }
        }
        Line("}\r\n");
    }

    void WriteHelp() {
        Line("customshaderhelp\r\n{");
        bool lineBegins = true;
        for (const char c : m_document.customshaderhelp) {
            if (lineBegins) m_text += '>';
            m_text += c;
            lineBegins = c == '\n';
        }
        Line("\r\n}\r\n");
    }

    const CTvDoc& m_document;
    DocumentHost& m_host;
    std::string m_text;
};

}  // namespace

std::string WriteDocument(const CTvDoc& document, DocumentHost& host) {
    return Writer(document, host).Write();
}

}  // namespace tavrin
