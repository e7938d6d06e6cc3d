// SPDX-License-Identifier: Apache-2.0
#include "app/Examples.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <variant>

#include "base/Files.h"
#include "base/Paths.h"
#include "document/DocumentReader.h"
#include "site/Site.h"
#include "text/Archive.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

constexpr const char* kSetting = "examples";
constexpr const char* kPictureExtensions[] = {".png", ".jpg", ".jpeg"};
constexpr std::string_view kDescription = "DESCRIPTION";
constexpr std::string_view kTemplateTitle = "T I T L E   O F   S H A D E R";

char Lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

// "C O P P E R" and the like: each letter stands alone, words are farther apart.
bool IsSpaced(std::string_view line) {
    for (size_t at = 0; at < line.size(); ++at) {
        if (line[at] != ' ' && at + 1 < line.size() && line[at + 1] != ' ') return false;
    }
    return line.size() > 2;
}

std::string ClosedUp(std::string_view line) {
    if (!IsSpaced(line)) return std::string(line);
    std::string title;
    size_t gap = 2;  // blanks before the letter
    for (const char c : line) {
        if (c == ' ') {
            ++gap;
            continue;
        }
        const bool beginsWord = gap > 1;
        if (beginsWord && !title.empty()) title += ' ';
        title += beginsWord ? c : Lower(c);
        gap = 0;
    }
    return title;
}

// Up to the end of the first sentence: a stop with a blank behind it.
std::string FirstSentence(const std::string& text) {
    const size_t end = text.find(". ");
    return end == std::string::npos ? text : text.substr(0, end + 1);
}

// The lines of a text, trimmed.
std::vector<std::string_view> LinesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        lines.push_back(Trim(text.substr(0, end)));
        if (end == std::string_view::npos) break;
        text.remove_prefix(end + 1);
    }
    return lines;
}

std::string ParagraphBehind(const std::vector<std::string_view>& lines, std::string_view heading) {
    std::string paragraph;
    auto line = std::find(lines.begin(), lines.end(), heading);
    if (line == lines.end()) return paragraph;
    ++line;
    while (line != lines.end() && line->empty()) ++line;
    for (; line != lines.end() && !line->empty(); ++line) {
        if (!paragraph.empty()) paragraph += ' ';
        paragraph += *line;
    }
    return paragraph;
}

bool IsSmall(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           status.st_size <= kMostExampleBytes;
}

Example LookInto(const std::string& path) {
    std::string error;
    if (!IsSmall(path)) return {};
    auto archive = CArchive::Open(path, error);
    if (!archive) return {};
    const DocumentForm form = ReadDocument(std::move(*archive));
    for (const SectionRecord& section : form.sections) {
        if (const auto* help = std::get_if<HelpRecord>(&section)) return DescribeExample(help->text);
    }
    return {};
}

std::string PictureBeside(const std::string& path) {
    const std::string stem = path.substr(0, path.size() - (PathFile(path).size() - PathBase(path).size()));
    for (const char* extension : kPictureExtensions) {
        if (PathExists(stem + extension)) return stem + extension;
    }
    return {};
}

bool EndsIn(const std::string& name, const std::string& extension) {
    return name.size() > extension.size() && name.ends_with(extension);
}

}  // namespace

std::string ExamplesDirectory(const Site& site) {
    std::string named;
    if (!site.settings.GetSettingToken(kSetting, named) || named.empty()) return {};
    return ResolvePath(named, JoinPath(site.directories.tavrnDir, site.settingsLibrary));
}

Example DescribeExample(std::string_view help) {
    const std::vector<std::string_view> lines = LinesOf(help);
    const auto title = std::find_if(lines.begin(), lines.end(), [](auto line) { return !line.empty(); });
    if (title == lines.end() || *title == kTemplateTitle) return {};
    Example example;
    example.title = ClosedUp(*title);
    example.description = ParagraphBehind(lines, kDescription);
    example.summary = FirstSentence(example.description);
    return example;
}

bool ListExamples(const std::string& directory, const std::string& extension,
                  std::vector<Example>& examples) {
    examples.clear();
    std::vector<DirEntry> entries;
    if (!ListDirectory(directory, entries)) return false;
    std::vector<std::string> names;
    for (const DirEntry& entry : entries) {
        if (!entry.isDirectory && EndsIn(entry.name, extension)) names.push_back(entry.name);
    }
    std::sort(names.begin(), names.end());
    names.resize(std::min(names.size(), kMostExamples));
    for (const std::string& name : names) {
        const std::string path = JoinPath(directory, name);
        Example& example = examples.emplace_back(LookInto(path));
        if (example.title.empty()) example.title = PathBase(name);
        example.path = path;
        example.picture = PictureBeside(path);
    }
    return true;
}

}  // namespace tavrin
