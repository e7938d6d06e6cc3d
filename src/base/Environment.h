// SPDX-License-Identifier: Apache-2.0
// The environment that children are given. It starts as a copy of the process's own and is changed here
// alone: the process environment is read once and never written.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

// A plain value: the site owns the one that children get. Nothing here fails.
class Environment {
  public:
    static Environment FromProcess();

    std::optional<std::string> Get(const std::string& name) const;
    void Set(const std::string& name, const std::string& value) { m_values[name] = value; }
    void Unset(const std::string& name) { m_values.erase(name); }

    // "NAME=VALUE" for each variable, in the order of names.
    std::vector<std::string> ToList() const;

  private:
    std::map<std::string, std::string> m_values;
};

}  // namespace tavrin
