// SPDX-License-Identifier: Apache-2.0
// Where the program keeps what the user has arranged: window places, the state of switches, recent files.
// The desktop program stores it in the user's configuration directory; tests keep it in memory.
#pragma once

#include <map>
#include <string>

namespace tavrin {

// Written through at once: a value set is there in the next run, whatever ends this one. Main thread only.
class Profile {
  public:
    virtual ~Profile() = default;

    // `otherwise` if there is no such key or its value is no number.
    virtual int GetInt(const std::string& key, int otherwise) const = 0;
    virtual std::string GetText(const std::string& key) const = 0;  // empty if there is none
    virtual void SetInt(const std::string& key, int value) = 0;
    virtual void SetText(const std::string& key, const std::string& value) = 0;
};

// One that forgets everything when it goes.
class MemoryProfile : public Profile {
  public:
    int GetInt(const std::string& key, int otherwise) const override {
        const auto found = numbers.find(key);
        return found == numbers.end() ? otherwise : found->second;
    }
    std::string GetText(const std::string& key) const override {
        const auto found = texts.find(key);
        return found == texts.end() ? std::string() : found->second;
    }
    void SetInt(const std::string& key, int value) override { numbers[key] = value; }
    void SetText(const std::string& key, const std::string& value) override { texts[key] = value; }

    std::map<std::string, int> numbers;
    std::map<std::string, std::string> texts;
};

}  // namespace tavrin
