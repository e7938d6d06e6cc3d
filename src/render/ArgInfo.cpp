// SPDX-License-Identifier: Apache-2.0
#include "render/ArgInfo.h"

#include <algorithm>

#include "document/TvDoc.h"
#include "library/ValueVisitor.h"
#include "render/HelpLines.h"
#include "render/LineMap.h"
#include "text/Numbers.h"

namespace tavrin {

namespace {

constexpr size_t kKeyColumns = 11;

void Field(std::string& text, std::string_view key, std::string_view value) {
    text.append("    ").append(key);
    if (key.size() < kKeyColumns) text.append(kKeyColumns - key.size(), ' ');
    text.append(" ").append(value).append("\n");
}

// The range of the slider, for values that have one.
template <typename Value>
void MinMax(std::string& text, const Value& value) {
    if constexpr (requires { value.min, value.max; }) {
        Field(text, "MinMax",
              FormatF(static_cast<double>(value.min)) + " " + FormatF(static_cast<double>(value.max)));
    }
}

void WriteArgument(std::string& text, const COpButton& button, const NameSource& names) {
    const COpValue& value = *button.values[button.currentcast];
    text.append("ArgName ").append(button.ArgumentName(names)).append("\n{\n");
    Field(text, "Stow", std::to_string(button.stow));
    Field(text, "Lock", std::to_string(button.lock));
    Field(text, "Pin", std::to_string(button.pin));
    Field(text, "BoxTitle", button.owner->filename);
    Field(text, "ButtonTitle", button.DisplayName());
    Field(text, "Comments", button.comments);
    Field(text, IsGenericType(value.type) ? type_words::kGeneric : value.type, button.ValueText());
    VisitValue(value, [&](const auto& own) { MinMax(text, own); });
    text += "}\n\n";
}

// Counts on from the lines that were counted before.
class LineCounter {
  public:
    explicit LineCounter(const std::string& text) : m_text(text) {}
    size_t Count() {
        const auto from = m_text.begin() + static_cast<std::ptrdiff_t>(m_counted);
        m_lines += static_cast<size_t>(std::count(from, m_text.end(), '\n'));
        m_counted = m_text.size();
        return m_lines;
    }

  private:
    const std::string& m_text;
    size_t m_counted = 0;
    size_t m_lines = 0;
};

}  // namespace

std::string WriteArgInfo(const std::string& help, const std::vector<COpButton*>& unconnected,
                         const PreparedVariables& variables, Report& report,
                         std::vector<ArgumentLines>* places) {
    std::string text = "Help\n{\n";
    for (const std::string& line : HelpLines(help)) text.append(">").append(line).append("\n");
    text += "}\n\n";
    const NameSource names{variables, &report};
    LineCounter lines(text);
    for (const COpButton* button : unconnected) {
        if (button->arg == 0 || button->values.empty()) continue;
        const size_t before = lines.Count();
        WriteArgument(text, *button, names);
        if (places == nullptr) continue;
        const COpBox& box = *button->owner;
        places->push_back(
            {before + 1, lines.Count() - before - 1, box.wid, box.filename, button->DisplayName()});
    }
    text += "EndArginfo\n";
    return text;
}

std::string WriteArgInfo(const CTvDoc& document, Report& report, std::vector<ArgumentLines>* places) {
    return WriteArgInfo(document.customshaderhelp, document.CollectUnconnectedInputs(),
                        document.preparedVariables, report, places);
}

}  // namespace tavrin
