// SPDX-License-Identifier: Apache-2.0
// The alternatives that a button can be cast to. A value is told apart by the text of its type, never by
// its class, and keeps its own data while another cast is current. ValueVisitor.h leads to its own class.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

namespace type_words {
inline constexpr std::string_view kFloat = "float";
inline constexpr std::string_view kXyz = "xyz";
inline constexpr std::string_view kRgb = "rgb";
inline constexpr std::string_view kRgba = "rgba";
inline constexpr std::string_view kString = "string";
inline constexpr std::string_view kGeneric = "generic";  // alone, or followed by ":NAME"
}  // namespace type_words

// Owned by its button, one for each cast. A clone has its own copy of all fields.
class COpValue {
  public:
    virtual ~COpValue() = default;

    std::string type;
    std::string format;  // printf pattern with a conversion for each component; a generic value has none

  protected:
    // Each class has a static `Bears`: whether a type text is one of its own.
    explicit COpValue(std::string_view typeText) : type(typeText) {}
    COpValue(const COpValue&) = default;
};

// A number on a slider.
class COpValueFloat : public COpValue {
  public:
    COpValueFloat() : COpValue(type_words::kFloat) {}
    static bool Bears(std::string_view type) { return type == type_words::kFloat; }

    float value = 0;
    float min = 0;  // slider range
    float max = 0;
    int integer = 0;  // the editor cuts the value to a whole number
};

// Three numbers that share a range: a point, a vector, a normal.
class COpValueXyz : public COpValue {
  public:
    COpValueXyz() : COpValue(type_words::kXyz) {}
    static bool Bears(std::string_view type) { return type == type_words::kXyz; }

    float x = 0;
    float y = 0;
    float z = 0;
    float min = 0;
    float max = 0;
    int integer = 0;
};

// A colour; components are 0 to 1 where the picker sets them.
class COpValueRgb : public COpValue {
  public:
    COpValueRgb() : COpValue(type_words::kRgb) {}
    static bool Bears(std::string_view type) { return type == type_words::kRgb; }

    float r = 0;
    float g = 0;
    float b = 0;
};

// A colour with an opacity.
class COpValueRgba : public COpValue {
  public:
    COpValueRgba() : COpValue(type_words::kRgba) {}
    static bool Bears(std::string_view type) { return type == type_words::kRgba; }

    float r = 0;
    float g = 0;
    float b = 0;
    float a = 0;
};

// A text, typed, chosen or the path of a file.
class COpValueString : public COpValue {
  public:
    COpValueString() : COpValue(type_words::kString) {}
    static bool Bears(std::string_view type) { return type == type_words::kString; }

    std::string value;
    int quoteflag = 0;  // the literal is put in double quotes
    int fileflag = 0;   // the editor offers a file browser
    int noedit = 0;     // the editor's text field is locked
    std::vector<std::string> options;
};

bool IsGenericType(std::string_view type);

// A literal of the target language as it stands.
class COpValueGeneric : public COpValue {
  public:
    // The whole keyword of the definition: "generic", or "generic:" with a name behind it.
    explicit COpValueGeneric(std::string_view typeText) : COpValue(typeText) {}
    static bool Bears(std::string_view type) { return IsGenericType(type); }

    std::string defaultValue;  // the definition's text; only `value` is edited, stored and used
    std::string value;
    int noedit = 0;
    std::vector<std::string> options;
};

// A value of the class that belongs to the type word, all defaults; nothing for a word that is no type.
std::unique_ptr<COpValue> MakeValue(std::string_view type);

// A copy of every field, made by the type text.
std::unique_ptr<COpValue> CloneValue(const COpValue& value);

// The literal that stands for the value in code.
std::string ValueText(const COpValue& value);

}  // namespace tavrin
