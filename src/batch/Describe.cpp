// SPDX-License-Identifier: Apache-2.0
#include "batch/Describe.h"

#include "document/TvDoc.h"
#include "library/OpRegistry.h"
#include "library/ValueVisitor.h"
#include "text/Numbers.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

std::string Number(float value) { return FormatG(static_cast<double>(value)); }

std::string Numbers(std::initializer_list<float> values) {
    std::string text;
    for (const float value : values) {
        if (!text.empty()) text += ' ';
        text += Number(value);
    }
    return text;
}

std::string Range(float min, float max, int integer) {
    return ", from " + Number(min) + " to " + Number(max) + (integer != 0 ? ", whole numbers" : "");
}

std::string Options(const std::vector<std::string>& options) {
    std::string text;
    for (const std::string& option : options) text.append(text.empty() ? ", one of " : " ").append(option);
    return text;
}

// The defaults of a value, as they are told to who writes networks.
struct DefaultText {
    std::string operator()(const COpValueFloat& v) const {
        return Number(v.value) + Range(v.min, v.max, v.integer);
    }
    std::string operator()(const COpValueXyz& v) const {
        return Numbers({v.x, v.y, v.z}) + Range(v.min, v.max, v.integer);
    }
    std::string operator()(const COpValueRgb& v) const { return Numbers({v.r, v.g, v.b}); }
    std::string operator()(const COpValueRgba& v) const { return Numbers({v.r, v.g, v.b, v.a}); }
    std::string operator()(const COpValueString& v) const {
        return QuoteString(v.value) + Options(v.options);
    }
    std::string operator()(const COpValueGeneric& v) const {
        return QuoteString(v.defaultValue) + Options(v.options);
    }
};

// The help indented, its line ends made plain.
void AppendHelp(std::string& text, const std::string& help, std::string_view indent) {
    if (help.empty()) return;
    text += indent;
    for (const char c : help) {
        if (c == '\r') continue;
        text += c;
        if (c == '\n') text += indent;
    }
    text += '\n';
}

void AppendButton(std::string& text, const COpButton& button) {
    text.append("\n").append(button.KindText()).append(" ").append(button.DisplayName()).append("\n");
    AppendHelp(text, button.help, "    ");
    for (const auto& value : button.values) {
        text.append("    ").append(value->type);
        if (!button.IsOutput()) text.append(": ").append(VisitValue(*value, DefaultText()));
        text += '\n';
    }
    if (!button.fixedvalue.empty()) text.append("    stands for: ").append(button.fixedvalue).append("\n");
    if (!button.tieback.empty()) text.append("    passes through: ").append(button.tieback).append("\n");
    if (!button.fixedtext.empty()) text.append("    unconnected: ").append(button.fixedtext).append("\n");
}

}  // namespace

std::string OperatorList(const COpRegistry& registry) {
    std::string text;
    for (const auto& entry : registry.Entries()) {
        text.append(entry->name).append("\t").append(registry.MenuPath(*entry)).append("\t");
        text.append(entry->path).append("\n");
    }
    return text;
}

std::string OperatorDescription(const COpBox& box) {
    std::string text = box.filename + "\n";
    AppendHelp(text, box.boxhelp, "    ");
    for (const auto& input : box.inputs) AppendButton(text, *input);
    for (const auto& output : box.outputs) AppendButton(text, *output);
    return text;
}

std::string NetworkDescription(const std::string& name, const CTvDoc& network) {
    std::string text = name + "\n";
    AppendHelp(text, network.customshaderhelp, "    ");
    text += "\na network of these boxes\n";
    for (const auto& box : network.m_boxes) text.append("    ").append(box->BoxTitleWid()).append("\n");
    return text;
}

}  // namespace tavrin
