// SPDX-License-Identifier: Apache-2.0
// The value clauses of inputs. Brace groups hold a fixed sequence and nothing else; the blocks of string
// and generic values pass over what they do not know.
#include "library/DefinitionReader.h"
#include "library/OpBox.h"
#include "library/ValueVisitor.h"

namespace tavrin {

bool DefinitionReader::ReadValue(COpButton& button, const std::string& keyword) {
    auto made = MakeValue(keyword);
    if (!made) return Unexpected();
    if (!CanBeStored("type", keyword)) return false;
    COpValue& value = *button.values.emplace_back(std::move(made));
    return VisitValue(value, [this](auto& own) { return ReadBody(own); });
}

bool DefinitionReader::ReadBody(COpValueFloat& value) {
    return Expect("{") && Operand(value.value) && Operand(value.min) && Operand(value.max) &&
           Flag(value.integer) && Operand(value.format) && Expect("}");
}

bool DefinitionReader::ReadBody(COpValueXyz& value) {
    return Expect("{") && Operand(value.x) && Operand(value.y) && Operand(value.z) && Operand(value.min) &&
           Operand(value.max) && Flag(value.integer) && Operand(value.format) && Expect("}");
}

bool DefinitionReader::ReadBody(COpValueRgb& value) {
    return Expect("{") && Operand(value.r) && Operand(value.g) && Operand(value.b) && Operand(value.format) &&
           Expect("}");
}

bool DefinitionReader::ReadBody(COpValueRgba& value) {
    return Expect("{") && Operand(value.r) && Operand(value.g) && Operand(value.b) && Operand(value.a) &&
           Operand(value.format) && Expect("}");
}

bool DefinitionReader::ReadBody(COpValueString& value) {
    std::string token;
    while (ReadToken(m_archive, token) && token != "}") {
        bool read = true;
        if (token == "value") {
            read = Operand(value.value);
        } else if (token == "format") {
            read = Operand(value.format);
        } else if (token == "fileflag") {
            read = Flag(value.fileflag);
        } else if (token == "quoteflag") {
            read = Flag(value.quoteflag);
        } else if (token == "noedit") {
            value.noedit = 1;
        } else if (token == "options") {
            read = ReadOptions(value);
        }
        if (!read) return false;
    }
    return true;
}

bool DefinitionReader::ReadBody(COpValueGeneric& value) {
    std::string token;
    while (ReadToken(m_archive, token) && token != "}") {
        bool read = true;
        if (token == "value") {
            read = Operand(value.defaultValue);
            value.value = value.defaultValue;
        } else if (token == "noedit") {
            value.noedit = 1;
        } else if (token == "options") {
            read = ReadOptions(value);
        }
        if (!read) return false;
    }
    return true;
}

template <typename Value>
bool DefinitionReader::ReadOptions(Value& value) {
    if (!Expect("{")) return false;
    std::string token;
    while (ReadToken(m_archive, token) && token != "}") value.options.push_back(token);
    return true;
}

}  // namespace tavrin
