// SPDX-License-Identifier: Apache-2.0
// What a document's file says, record by record. Plain values: the texts are views of the text that was read,
// and live as long as the DocumentForm that owns it.
#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "library/Value.h"

namespace tavrin {

// The place of a record in the text, from its keyword up to and with its last token, as offsets; the form
// tells the lines.
struct DocumentRecord {
    size_t begin = 0;
    size_t end = 0;

    // False where reading stopped within the record, which then is what there is of it.
    bool IsWhole() const { return end > begin; }
};

// The types whose values are numbers, and how many a value has beside the integer flag.
struct NumberType {
    std::string_view word;
    size_t count;
    bool hasInteger;
};
inline constexpr std::array<NumberType, 4> kNumberTypes = {{
    {type_words::kFloat, 3, true},
    {type_words::kXyz, 5, true},
    {type_words::kRgb, 3, false},
    {type_words::kRgba, 4, false},
}};

// The value of a cast.
struct ValueRecord : DocumentRecord {
    std::string_view type;           // the keyword
    std::array<float, 5> numbers{};  // of float, xyz, rgb and rgba, the integer flag apart
    size_t numberCount = 0;          // how many stand there
    std::optional<int> integer;      // of float and xyz
    std::string_view text;           // of string and the generic types
    std::string_view name;           // the word behind "generic", if there is one
};

// A block of a button.
struct ButtonRecord : DocumentRecord {
    std::string_view kind;  // behind "opbutton."; any word
    std::string_view name;
    std::string_view fullName;
    size_t namesEnd = 0;  // behind the two names
    std::string_view cast;
    // What the text says of them; the last one counts.
    std::optional<int> pin;
    std::optional<int> stow;
    std::optional<int> lock;
    std::optional<int> arg;
    std::optional<std::string_view> argname;
    std::optional<std::string_view> comments;
    std::vector<ValueRecord> values;
};

// "wid 3", "xypos 100 200", and what "opboxdefs" holds.
struct BoxSettingRecord : DocumentRecord {
    std::string_view keyword;
    int integer = 0;                 // the number, or the most boxes
    std::array<float, 2> numbers{};  // the place
    size_t numberCount = 0;          // how many of them stand there
    size_t operands = 0;             // where they begin, as an offset
};

// A block of a box.
struct BoxRecord : DocumentRecord {
    std::string_view operatorName;
    size_t nameEnd = 0;     // behind it
    bool isClosed = false;  // its brace stands there; the end of the text ends a block as well
    std::vector<BoxSettingRecord> settings;  // anywhere before, between and behind the buttons
    std::vector<ButtonRecord> buttons;

    // The one that counts; null if there is none.
    const BoxSettingRecord* LastSetting(std::string_view keyword) const {
        const auto isIt = [&](const BoxSettingRecord& setting) { return setting.keyword == keyword; };
        const auto found = std::find_if(settings.rbegin(), settings.rend(), isIt);
        return found == settings.rend() ? nullptr : &*found;
    }
};

// A line of a wire: ends are found by number and position.
struct ConnectionRecord : DocumentRecord {
    struct End {
        std::string_view operatorName;  // nobody relies on the names
        std::string_view button;
        int wid = 0;
        int position = 0;  // among the box's outputs or inputs; any number
    };
    End source;
    End target;
};

// A line of the desk's state: "lock 1", "zoomxyf 0.5 0.5 1".
struct DeskSettingRecord : DocumentRecord {
    std::string_view keyword;
    int flag = 0;                    // of one that is on or off; of linetype, 1 for "trace"
    std::array<float, 3> numbers{};  // of offsetxy and zoomxyf
    size_t numberCount = 0;          // how many of them stand there

    bool HasNumbers() const { return keyword == "offsetxy" || keyword == "zoomxyf"; }
};

// The program that wrote the file.
struct VersionRecord : DocumentRecord {
    std::string_view version;
};
// The library that the operators behind it come from.
struct LibraryRecord : DocumentRecord {
    std::string_view name;
};
// The numbers of the muted boxes, with blanks between them.
struct MutedRecord : DocumentRecord {
    std::string_view wids;
};
// A frame or a note, as FrameOf takes it.
struct FrameRecord : DocumentRecord {
    std::string_view words;
};
// The operators of the toolbar, in order.
struct ToolbarRecord : DocumentRecord {
    std::vector<std::string_view> operators;
};
// A section of the network: boxes, wires and the desk's state in the order of the text.
struct DeskRecord : DocumentRecord {
    std::vector<std::variant<BoxRecord, ConnectionRecord, DeskSettingRecord>> items;
};
// One render option.
struct RenderOptionRecord : DocumentRecord {
    std::string_view name;
    std::string_view value;
};
// A section of render options, in the order of the text.
struct RenderOptionsRecord : DocumentRecord {
    std::vector<RenderOptionRecord> options;
};
// One export option.
struct ExportOptionRecord : DocumentRecord {
    std::string_view key;   // a known one
    std::string_view line;  // what stands behind it
};
// A section of export options, in the order of the text.
struct ExportOptionsRecord : DocumentRecord {
    std::vector<ExportOptionRecord> options;
};
// The help of the finished shader.
struct HelpRecord : DocumentRecord {
    std::string text;  // without the marks before its lines, joined by CR LF
};
using SectionRecord = std::variant<VersionRecord, LibraryRecord, MutedRecord, FrameRecord, ToolbarRecord,
                                   DeskRecord, RenderOptionsRecord, ExportOptionsRecord, HelpRecord>;

// The common part of a section, whatever it is.
inline const DocumentRecord& PlaceOf(const SectionRecord& section) {
    return std::visit([](const auto& record) -> const DocumentRecord& { return record; }, section);
}

}  // namespace tavrin
