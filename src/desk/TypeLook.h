// SPDX-License-Identifier: Apache-2.0
// The colour and the shape by which types are told apart.
#pragma once

#include <string>
#include <unordered_map>

#include "desk/DeskStyle.h"
#include "site/TypeTables.h"

namespace tavrin {

struct TypeLook {
    Rgb color;
    TypeShape shape = TypeShape::kCircle;
    bool operator==(const TypeLook&) const = default;
};

// As the library says; else by the type's name, the same in every run and on every desk. "generic:" before a
// name makes no other type of it. A button without a type has a grey circle.
TypeLook LookOfType(const std::string& type, const TypeTables& types);

// Keeps what it has told, since many ask for the same few types all the time. The tables outlive it and stay
// as they are.
class TypeLooks {
  public:
    explicit TypeLooks(const TypeTables& types) : m_types(types) {}
    const TypeLook& Of(const std::string& type);

  private:
    const TypeTables& m_types;
    std::unordered_map<std::string, TypeLook> m_known;
};

}  // namespace tavrin
