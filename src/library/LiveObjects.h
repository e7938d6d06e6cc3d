// SPDX-License-Identifier: Apache-2.0
// The process-wide registries of live objects, by which a pointer that a view kept is tested before use.
#pragma once

#include <cstdint>
#include <unordered_set>

namespace tavrin {

// Base of the classes that are registered. Every constructor enters its object and every destructor
// removes it. Each object also gets a serial number that is never used again and grows in the order of
// making: sets ordered by it are the same in every run, unlike sets ordered by address.
// An object that is kept to be brought back by an undo is parked: for everybody else it has gone, until it is
// revived as the same object with the same number.
template <typename Object>
class LiveObject {
  public:
    static bool IsLive(const Object* object) {
        return object != nullptr && Registry().contains(static_cast<const LiveObject*>(object));
    }
    static size_t LiveCount() { return Registry().size(); }
    uint64_t Serial() const { return m_serial; }

  protected:
    LiveObject() : m_serial(NextSerial()) { Registry().insert(this); }
    LiveObject(const LiveObject&) : LiveObject() {}
    LiveObject& operator=(const LiveObject&) = delete;
    ~LiveObject() { Registry().erase(this); }

    // For the classes themselves, which park what belongs to them as well. Both may be repeated.
    void Retire() { Registry().erase(this); }
    void Revive() { Registry().insert(this); }

  private:
    static std::unordered_set<const LiveObject*>& Registry() {
        static std::unordered_set<const LiveObject*> registry;
        return registry;
    }
    static uint64_t NextSerial() {
        static uint64_t serial = 0;
        return ++serial;
    }

    uint64_t m_serial;
};

// A pointer that never leads to another object than the one it was made of, nor to one that has gone.
template <typename Object>
class LiveRef {
  public:
    LiveRef() = default;
    explicit LiveRef(Object& object) : m_object(&object), m_serial(object.Serial()) {}

    // Null once the object has gone.
    Object* Get() const {
        return Object::IsLive(m_object) && m_object->Serial() == m_serial ? m_object : nullptr;
    }
    uint64_t Serial() const { return m_serial; }

  private:
    Object* m_object = nullptr;
    uint64_t m_serial = 0;  // 0 is nobody's
};

}  // namespace tavrin
