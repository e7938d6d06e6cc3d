// SPDX-License-Identifier: Apache-2.0
#include "forms/FormReader.h"

#include "forms/FormParser.h"
#include "text/Archive.h"
#include "text/Numbers.h"
#include "text/Report.h"
#include "text/Tokens.h"

namespace tavrin {

bool ReadForm(CArchive& archive, CRenderOptionsEditor& form, FormHost& host, Report& report) {
    return FormReader(archive, host, report).ReadSection(form);
}

bool FormReader::Unexpected() {
    m_report.AlertAt(m_archive, "unexpected input");
    return false;
}

void FormReader::Warn(int line, const std::string& text) {
    m_report.LogLine("WARNING: %s near line %d: %s", m_archive.Path().c_str(), line, text.c_str());
}

bool FormReader::OpenBlock(const std::string& value) {
    return value == "{" || ReadOpeningBrace(m_archive, m_report);
}

bool FormReader::ReadSection(CRenderOptionsEditor& form) {
    if (!ReadOpeningBrace(m_archive, m_report)) return false;
    int width = 0;
    int height = 0;
    std::string key;
    std::string value;
    while (ReadKeyValueLine(m_archive, key, value)) {
        if (key == "winwidth") {
            width = ParseInt(value);
        } else if (key == "winheight") {
            height = ParseInt(value);
        } else if (key == "clearall") {
            form.ClearAll(m_host);
        } else if (key == "loaddefaults") {
            form.LoadDefaults(m_host);
        } else if (!OpenBlock(value) || !ReadWidget(form, key)) {
            return false;
        }
    }
    form.placed = form.children.size();
    if (width != 0) form.winWidth = width;
    if (height != 0) form.winHeight = height;
    return true;
}

bool FormReader::ReadWidget(CFormFrame& parent, const std::string& kind) {
    if (kind == "frame") return ReadFrameInto(parent);
    if (kind == "label") return ReadInto<CFormLabel>(parent);
    if (kind == "xfield") return ReadInto<CFormXField>(parent);
    if (kind == "xyfield") return ReadInto<CFormXYField>(parent);
    if (kind == "xyzfield") return ReadInto<CFormXYZField>(parent);
    if (kind == "button") return ReadInto<CFormButton>(parent);
    if (kind == "ledbutton") return ReadInto<CFormLedButton>(parent);
    if (kind == "chooser") return ReadInto<CFormChooser>(parent);
    if (kind == "okfield") return ReadInto<CFormOkField>(parent);
    if (kind == "stringinput") return ReadInto<CFormStringInput>(parent);
    return Unexpected();
}

template <typename Widget>
bool FormReader::ReadInto(CFormFrame& parent) {
    auto widget = std::make_unique<Widget>();
    FormDraft draft;
    if (!ReadBody(*widget, draft)) {
        widget->Removed(m_host);  // a frame takes the complete widgets in it along
        return false;
    }
    widget->Finish(draft, m_host, m_report);
    for (const std::string& fault : widget->Faults(draft)) Warn(m_archive.LineNumber(), fault);
    parent.children.push_back(std::move(widget));
    return true;
}

// A count of 0 is put right when a frame ends, and, as the language has it, on the frame around it: what
// the frame said of itself stays.
bool FormReader::ReadFrameInto(CFormFrame& parent) {
    if (m_depth == kMostNestedFrames) {
        m_report.AlertAt(m_archive, "frames nested too deeply");
        return false;
    }
    ++m_depth;
    const bool read = ReadInto<CFormFrame>(parent);
    --m_depth;
    if (read && parent.count == 0) parent.count = 1;
    return read;
}

template <typename Widget>
bool FormReader::ReadBody(Widget& widget, FormDraft& draft) {
    std::string key;
    std::string value;
    while (ReadKeyValueLine(m_archive, key, value)) {
        if (!Property(widget, draft, key, value)) return false;
    }
    return true;
}

// Within a frame a line with anything behind the kind opens the body, whatever that is. Sections are
// stricter, and ask for a brace.
bool FormReader::ReadBody(CFormFrame& frame, FormDraft& /*draft*/) {
    std::string key;
    std::string value;
    while (ReadKeyValueLine(m_archive, key, value)) {
        if (key == "{") {
            if (!ReadLayoutBlock(frame)) return false;
            continue;
        }
        if (value.empty() && !ReadOpeningBrace(m_archive, m_report)) return false;
        if (!ReadWidget(frame, key)) return false;
    }
    return true;
}

bool FormReader::ReadLayoutBlock(CFormFrame& frame) {
    std::string key;
    std::string value;
    while (ReadKeyValueLine(m_archive, key, value)) {
        if (key == "vertical" || key == "horizontal") {
            frame.orientation = key == "vertical" ? FormOrientation::kVertical : FormOrientation::kHorizontal;
            frame.count = ParseInt(value);
        } else if (key != "shadowtype" && key != "shadowsize") {
            return Unexpected();
        }
    }
    return true;
}

}  // namespace tavrin
