// SPDX-License-Identifier: Apache-2.0
// The `opdesk` section: boxes, connections and the state of the desk.
#include "document/DocumentReader.h"
#include "text/Numbers.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

constexpr std::string_view kButtonPrefix = "opbutton.";

bool IsSwitch(std::string_view keyword) {
    return keyword == "drawlinesoverboxes" || keyword == "showvarnames" || keyword == "lock" ||
           keyword == "showiconimages";
}

}  // namespace

bool DocumentReader::ReadOpDesk() {
    const DocumentRecord begun = Begun();
    if (!Expect("{")) return false;
    auto& desk = AddSection<DeskRecord>(begun);
    std::string_view keyword;
    while (Next(keyword) && keyword != "}") {
        if (!ReadDeskItem(desk, keyword)) return false;
    }
    if (keyword != "}") EndsInside("opdesk");
    End(desk);
    return true;
}

bool DocumentReader::ReadDeskItem(DeskRecord& desk, std::string_view keyword) {
    if (keyword == "opbox") return ReadOpBox(desk);
    if (keyword == "opconnects") return ReadConnects(desk);
    return ReadDeskSetting(desk, keyword);
}

bool DocumentReader::ReadDeskSetting(DeskRecord& desk, std::string_view keyword) {
    DeskSettingRecord setting{Begun(), keyword, 0, {}, 0};
    const auto choice = [&](std::string_view on, std::string_view off) {
        std::string_view word;
        if (!Operand(word)) return false;
        if (word != on && word != off) return Unexpected();
        setting.flag = word == on ? 1 : 0;
        return true;
    };
    bool isWhole = true;
    if (IsSwitch(keyword)) {
        if (!choice("1", "0")) return false;
    } else if (keyword == "linetype") {
        if (!choice("trace", "direct")) return false;
    } else if (keyword == "offsetxy") {
        isWhole = Operands(std::span(setting.numbers).first(2), setting.numberCount);
    } else if (keyword == "zoomxyf") {
        isWhole = Operands(setting.numbers, setting.numberCount);
    } else {
        return Unexpected();
    }
    if (isWhole) End(setting);
    desk.items.emplace_back(setting);
    return isWhole;
}

bool DocumentReader::ReadOpBox(DeskRecord& desk) {
    const DocumentRecord begun = Begun();
    std::string_view name;
    if (!Expect("{") || !Expect("filename") || !Operand(name)) return false;
    auto& box = std::get<BoxRecord>(desk.items.emplace_back(std::in_place_type<BoxRecord>));
    static_cast<DocumentRecord&>(box) = begun;
    box.operatorName = name;
    box.nameEnd = TokenEnd();
    // What most boxes have, at once: reading a large document is mostly memory.
    box.settings.reserve(3);
    box.buttons.reserve(4);
    std::string_view keyword;
    while (Next(keyword) && keyword != "}") {
        if (!ReadBoxItem(box, keyword)) return false;
    }
    box.isClosed = keyword == "}";
    End(box);
    return true;
}

bool DocumentReader::ReadBoxItem(BoxRecord& box, std::string_view keyword) {
    if (keyword.starts_with(kButtonPrefix)) return ReadOpBoxButton(box, keyword.substr(kButtonPrefix.size()));
    BoxSettingRecord setting{Begun(), keyword, 0, {}, 0, 0};
    bool isWhole = true;
    if (keyword == "wid" || keyword == "xypos") {
        SkipToToken(m_archive);
        setting.operands = m_archive.Position();
    }
    if (keyword == "wid") {
        if (!Operand(setting.integer)) return false;
    } else if (keyword == "xypos") {
        isWhole = Operands(setting.numbers, setting.numberCount);
    } else if (keyword == "opboxdefs") {
        if (!Expect("{") || !Expect("maxinstances") || !Operand(setting.integer)) return false;
        isWhole = Expect("}");
    } else {
        return Unexpected();
    }
    if (isWhole) End(setting);
    box.settings.push_back(setting);
    return isWhole;
}

bool DocumentReader::ReadConnects(DeskRecord& desk) {
    if (!Expect("{")) return false;
    std::string_view token;
    while (Next(token) && token != "}") {
        ConnectionRecord connection{Begun(), {}, {}};
        if (!ReadConnection(token, connection)) return false;
        End(connection);
        desk.items.emplace_back(connection);
    }
    return true;
}

bool DocumentReader::ReadConnection(std::string_view source, ConnectionRecord& connection) {
    std::string_view target;
    return ScanEnd(source, connection.source) && Expect("->") && Operand(target) &&
           ScanEnd(target, connection.target);
}

// "opbox:OPERATOR,NUMBER,BUTTON,POSITION".
bool DocumentReader::ScanEnd(std::string_view text, ConnectionRecord::End& end) {
    FieldScanner scanner(text);
    const auto field = [&](std::string_view& name) {
        const auto found = scanner.Until(',');
        if (found) name = *found;
        return found && scanner.Literal(",");
    };
    const auto number = [&](int& place) {
        const auto found = scanner.Int();
        if (found) place = *found;
        return found.has_value();
    };
    const bool isEnd = scanner.Literal("opbox:") && field(end.operatorName) && number(end.wid) &&
                       scanner.Literal(",") && field(end.button) && number(end.position);
    return isEnd || Unexpected();
}

}  // namespace tavrin
