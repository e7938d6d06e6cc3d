// SPDX-License-Identifier: Apache-2.0
// Values as text, for tests that compare what stands with what stood.
#pragma once

#include <bit>
#include <cstdint>
#include <initializer_list>
#include <ostream>

#include "library/ValueVisitor.h"

namespace tavrin::test {

// To the bit: a number that prints alike may be another one.
inline void Put(std::ostream& text, float number) {
    text << std::hex << std::bit_cast<uint32_t>(number) << std::dec << ' ';
}

inline void Put(std::ostream& text, std::initializer_list<float> numbers) {
    for (const float number : numbers) Put(text, number);
}

inline void Put(std::ostream& text, const COpValue& value) {
    VisitValue(value, ValueCalls{
                          [&](const COpValueFloat& own) {
                              Put(text, {own.value, own.min, own.max});
                              text << own.integer;
                          },
                          [&](const COpValueXyz& own) {
                              Put(text, {own.x, own.y, own.z, own.min, own.max});
                              text << own.integer;
                          },
                          [&](const COpValueRgb& own) {
                              Put(text, {own.r, own.g, own.b});
                          },
                          [&](const COpValueRgba& own) {
                              Put(text, {own.r, own.g, own.b, own.a});
                          },
                          [&](const COpValueString& own) { text << own.value; },
                          [&](const COpValueGeneric& own) { text << own.value; },
                      });
}

}  // namespace tavrin::test
