// SPDX-License-Identifier: Apache-2.0
#include "library/KnownOperator.h"

#include <algorithm>
#include <utility>

#include "library/OpBox.h"
#include "library/ValueVisitor.h"
#include "text/Archive.h"
#include "text/Report.h"
#include "text/StoredText.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

template <typename Values>
std::vector<std::string> TypesOf(const Values& values) {
    std::vector<std::string> types;
    for (const auto& value : values) types.push_back(value->type);
    return types;
}

std::vector<std::string> OptionsOf(const COpButton& button) {
    std::vector<std::string> options;
    const auto add = [&](const std::vector<std::string>& more) {
        options.insert(options.end(), more.begin(), more.end());
    };
    for (const auto& value : button.values) {
        VisitValue(
            std::as_const(*value),
            ValueCalls{[](const COpValueFloat&) {}, [](const COpValueXyz&) {}, [](const COpValueRgb&) {},
                       [](const COpValueRgba&) {}, [&](const COpValueString& text) { add(text.options); },
                       [&](const COpValueGeneric& literal) { add(literal.options); }});
    }
    return options;
}

void AddButtons(const std::vector<std::unique_ptr<COpButton>>& buttons, std::vector<KnownButton>& known) {
    for (const auto& button : buttons) {
        if (button->instance != 1) continue;
        known.push_back({button->DisplayName(), button->IsOutput(), button->disableconnectflag == 0,
                         TypesOf(button->values), button->currentcast, button->help, OptionsOf(*button)});
    }
}

bool Has(const std::vector<std::string>& types, const std::string& type) {
    return std::find(types.begin(), types.end(), type) != types.end();
}

// A button without any type has the empty one, which goes with no other.
std::string CurrentType(const std::vector<std::string>& types, size_t currentcast) {
    return currentcast < types.size() ? types[currentcast] : std::string();
}

WireFit FitOf(const OpenEnd& end, const KnownButton& button) {
    const std::string wanted = CurrentType(end.types, end.currentcast);
    const std::string own = CurrentType(button.types, button.currentcast);
    if (!wanted.empty() && wanted == own) return {WireFit::Types::kSame, button.name, {}};
    if (!wanted.empty() && Has(button.types, wanted)) return {WireFit::Types::kCast, button.name, wanted};
    const bool isShared = std::any_of(end.types.begin(), end.types.end(),
                                      [&](const std::string& type) { return Has(button.types, type); });
    return {isShared ? WireFit::Types::kOther : WireFit::Types::kForeign, button.name, {}};
}

}  // namespace

void ForgetDefinition(KnownOperator& known) {
    KnownOperator bare;
    bare.id = known.id;
    bare.name = std::move(known.name);
    bare.menu = std::move(known.menu);
    bare.path = std::move(known.path);
    bare.problem = std::move(known.problem);
    bare.revision = known.revision;
    known = std::move(bare);
}

void LearnDefinition(KnownOperator& known, const std::string& text, const std::string& libraryDir) {
    CArchive archive = CArchive::FromText(known.path, text);
    Report silent;
    const HeldAlerts held(silent);
    COpBox box;
    box.filename = known.name;
    const bool isRead = box.ReadDefinition(archive, libraryDir, silent, known.path);
    known.aliases = std::move(box.aliases);
    known.keywords = std::move(box.keywords);
    known.icon = std::move(box.iconimg);
    known.color = std::to_array(box.color);
    known.help = std::move(box.boxhelp);
    known.buttons.clear();
    known.problem.clear();
    if (!isRead) {
        known.problem = held.All().empty() ? known.path + " ends too early" : OneLine(held.All().back().text);
        return;
    }
    AddButtons(box.inputs, known.buttons);
    AddButtons(box.outputs, known.buttons);
}

void LearnNetwork(KnownOperator& known, std::string_view text) {
    ForgetDefinition(known);
    known.source = KnownOperator::Source::kNetwork;
    known.problem.clear();
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = Trim(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.empty()) continue;
        if (line.front() != '#') break;
        const size_t words = std::min(line.find_first_not_of('#'), line.size());
        if (!known.help.empty()) known.help += "\r\n";
        known.help += Trim(line.substr(words));
    }
}

OpenEnd OpenEnd::Of(const COpButton& button) {
    return {button.IsOutput(), button.disableconnectflag == 0, TypesOf(button.values), button.currentcast};
}

std::optional<WireFit> FindFit(const OpenEnd& end, const KnownOperator& known) {
    std::optional<WireFit> best;
    if (!end.takesWires) return best;
    for (const KnownButton& button : known.buttons) {
        if (button.isOutput == end.isOutput || !button.takesWires) continue;
        WireFit fit = FitOf(end, button);
        if (!best || fit.types < best->types) best = std::move(fit);
    }
    return best;
}

}  // namespace tavrin
