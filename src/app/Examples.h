// SPDX-License-Identifier: Apache-2.0
// The networks that a library shows to those who begin.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

struct Site;

// A document of the directory of examples, with what can be told of it before it is opened.
struct Example {
    std::string path;         // of the document
    std::string title;        // as its help has it, else the name of its file
    std::string summary;      // the first sentence of the help's description; empty where it has none
    std::string description;  // all of its first paragraph
    std::string picture;      // path of the picture beside it; empty where there is none

    bool operator==(const Example&) const = default;
};

// The directory that the site names by "examples", from the library whose site file says so on, whichever
// library a document has brought since. Empty where none is named.
std::string ExamplesDirectory(const Site& site);

// What stands in the directory, by the names of the files, no more than kMostExamples. A document that
// cannot be read, is no document or is larger than kMostExampleBytes has the name of its file as its title
// and no words besides: what is amiss with it is told when it is opened. False if the directory cannot be
// listed.
bool ListExamples(const std::string& directory, const std::string& extension, std::vector<Example>& examples);

inline constexpr size_t kMostExamples = 500;
inline constexpr int64_t kMostExampleBytes = 4 << 20;

// At work behind that: title, summary and description of a document's help text. Nothing of a template that
// nobody has filled in.
Example DescribeExample(std::string_view help);

}  // namespace tavrin
