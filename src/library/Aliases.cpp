// SPDX-License-Identifier: Apache-2.0
#include "library/Aliases.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "library/OpBox.h"
#include "library/OpRegistry.h"
#include "text/StoredText.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

class Settling {
  public:
    Settling(const COpEntry& entry, const COpRegistry& registry) : m_entry(entry), m_registry(registry) {}

    void SettleOperator(COpBox& box) {
        std::erase_if(box.aliases, [&](const std::string& alias) {
            if (ToLower(alias) == ToLower(box.filename)) return Refuse(alias, "names the operator itself");
            return m_registry.FindByName(alias) != nullptr &&
                   Refuse(alias, "names an operator that is there, which stays what is meant by it");
        });
    }

    void SettleButtons(const std::vector<std::unique_ptr<COpButton>>& buttons) {
        const auto hasAlias = [](const auto& button) { return !button->aliases.empty(); };
        if (std::none_of(buttons.begin(), buttons.end(), hasAlias)) return;
        std::set<std::string_view> names;
        for (const auto& button : buttons) names.insert(button->name);
        std::set<std::string> claimed;
        const COpButton* first = nullptr;
        for (const auto& button : buttons) {
            if (button->instance != 1 && first != nullptr) {
                button->aliases = first->aliases;
                continue;
            }
            first = button.get();
            std::erase_if(button->aliases, [&](const std::string& alias) {
                if (alias == button->name) return Refuse(alias, "names the button itself");
                if (names.contains(alias))
                    return Refuse(alias, "names a button that is there, which stays what is meant by it");
                return !claimed.insert(alias).second &&
                       Refuse(alias, "is claimed by another button before " + button->name);
            });
        }
    }

  private:
    bool Refuse(const std::string& alias, const std::string& why) {
        m_registry.WarnOnce("alias " + OneLine(alias) + " in " + OneLine(m_entry.path) +
                            " is not heeded: it " + why);
        return true;
    }

    const COpEntry& m_entry;
    const COpRegistry& m_registry;
};

}  // namespace

void SettleAliases(COpBox& box, const COpEntry& entry, const COpRegistry& registry) {
    Settling settling(entry, registry);
    settling.SettleOperator(box);
    settling.SettleButtons(box.inputs);
    settling.SettleButtons(box.outputs);
}

bool WasCalled(const COpBox& box, const std::string& name) {
    return std::any_of(box.aliases.begin(), box.aliases.end(),
                       [&](const std::string& alias) { return ToLower(alias) == ToLower(name); });
}

bool WasCalled(const COpButton& button, std::string_view name) {
    return std::find(button.aliases.begin(), button.aliases.end(), name) != button.aliases.end();
}

}  // namespace tavrin
