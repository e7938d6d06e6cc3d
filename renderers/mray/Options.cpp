// SPDX-License-Identifier: Apache-2.0
#include "Options.h"

#include <array>
#include <charconv>
#include <optional>
#include <utility>

namespace tavrin::mray {

namespace {

constexpr int kLongestSide = 8192;
constexpr long kMostPixels = 8192L * 4320L;

template <typename Kind>
using Names = std::vector<std::pair<std::string, Kind>>;

const Names<ObjectKind>& objectNames() {
    static const Names<ObjectKind> names{{"sphere", ObjectKind::Sphere},
                                         {"torus", ObjectKind::Torus},
                                         {"cube", ObjectKind::Cube},
                                         {"vase", ObjectKind::Vase},
                                         {"plane", ObjectKind::Plane}};
    return names;
}

const Names<BackdropKind>& backdropNames() {
    static const Names<BackdropKind> names{{"studio", BackdropKind::Studio},
                                           {"sky", BackdropKind::Sky},
                                           {"dark", BackdropKind::Dark},
                                           {"white", BackdropKind::White}};
    return names;
}

const Names<LightKind>& lightNames() {
    static const Names<LightKind> names{
        {"key", LightKind::Key}, {"sun", LightKind::Sun}, {"soft", LightKind::Soft}, {"rim", LightKind::Rim}};
    return names;
}

template <typename Kind>
Kind choose(const std::string& option, const std::string& value, const Names<Kind>& names) {
    std::string all;
    for (const auto& [name, kind] : names) {
        if (name == value) {
            return kind;
        }
        all += (all.empty() ? "" : ", ") + name;
    }
    throw UsageError(option + " cannot be \"" + value + "\"; choose one of " + all);
}

template <typename Number>
std::optional<Number> number(const std::string& text) {
    Number value{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end || text.empty()) {
        return std::nullopt;
    }
    return value;
}

void readSize(Options& options, const std::string& value) {
    const auto cut = value.find_first_of(",x");
    const auto width = number<int>(value.substr(0, cut));
    const auto height = cut == std::string::npos ? std::nullopt : number<int>(value.substr(cut + 1));
    if (!width || !height || *width < 1 || *height < 1) {
        throw UsageError("--size cannot be \"" + value +
                         "\"; give width and height in pixels, as in 320,240");
    }
    if (*width > kLongestSide || *height > kLongestSide || long{*width} * *height > kMostPixels) {
        throw UsageError("--size " + value + " is too large; at most " + std::to_string(kLongestSide) +
                         " pixels a side and " + std::to_string(kMostPixels / 1000000) + " million in all");
    }
    options.width = *width;
    options.height = *height;
}

void readSamples(Options& options, const std::string& value) {
    static constexpr std::array<int, 5> kCounts{1, 2, 4, 9, 16};
    const auto count = number<int>(value);
    if (!count || std::find(kCounts.begin(), kCounts.end(), *count) == kCounts.end()) {
        throw UsageError("--samples cannot be \"" + value + "\"; choose one of 1, 2, 4, 9, 16");
    }
    options.samples = *count;
}

void readExposure(Options& options, const std::string& value) {
    const auto exposure = number<float>(value);
    if (!exposure || !(*exposure > 0 && *exposure <= 1000)) {
        throw UsageError("--exposure cannot be \"" + value +
                         "\"; give a factor above 0 and up to 1000, 1 is normal");
    }
    options.exposure = *exposure;
}

bool readFlag(Options& options, const std::string& name) {
    const std::pair<const char*, bool*> flags[]{{"--quiet", &options.quiet},
                                                {"--timing", &options.timing},
                                                {"--live", &options.live},
                                                {"--help", &options.help},
                                                {"--version", &options.version}};
    for (const auto& [flag, target] : flags) {
        if (name == flag) {
            return *target = true;
        }
    }
    return false;
}

void readFile(Options& options, const std::string& name, const std::string& value) {
    if (value.empty()) {
        throw UsageError(name + " needs the name of a file (--help explains)");
    }
    (name == "--part" ? options.part : name == "--values" ? options.values : options.coarse) = value;
}

void readValue(Options& options, const std::string& name, const std::string& value) {
    if (name == "--size") {
        readSize(options, value);
    } else if (name == "--samples") {
        readSamples(options, value);
    } else if (name == "--exposure") {
        readExposure(options, value);
    } else if (name == "--object") {
        options.object = choose(name, value, objectNames());
    } else if (name == "--background") {
        options.backdrop = choose(name, value, backdropNames());
    } else if (name == "--light") {
        options.light = choose(name, value, lightNames());
    } else {
        readFile(options, name, value);
    }
}

bool takesValue(const std::string& name) {
    static constexpr std::array<const char*, 9> kNames{"--size",   "--samples",    "--exposure",
                                                       "--object", "--background", "--light",
                                                       "--part",   "--values",     "--coarse"};
    return std::find(kNames.begin(), kNames.end(), name) != kNames.end();
}

void takeFiles(Options& options, const std::vector<std::string>& files) {
    if (options.help || options.version || (options.live && files.empty())) {
        return;
    }
    if (options.live) {
        throw UsageError("--live takes no files; its requests name them (--help explains)");
    }
    if (files.size() != 2) {
        throw UsageError("give two file names, the shader and the picture to write (--help explains)");
    }
    options.shader = files[0];
    options.output = files[1];
}

}  // namespace

Options parseOptions(const std::vector<std::string>& arguments) {
    Options options;
    std::vector<std::string> files;
    bool onlyFiles = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (onlyFiles || argument.size() < 2 || argument[0] != '-') {
            files.push_back(argument);
            continue;
        }
        if (argument == "--") {
            onlyFiles = true;
            continue;
        }
        const auto equals = argument.find('=');
        const std::string name = argument.substr(0, equals);
        if (!takesValue(name)) {
            if (!readFlag(options, argument)) {
                throw UsageError("unknown option " + argument + " (--help lists them)");
            }
        } else if (equals != std::string::npos) {
            readValue(options, name, argument.substr(equals + 1));
        } else if (++i < arguments.size()) {
            readValue(options, name, arguments[i]);
        } else {
            throw UsageError(name + " needs a value (--help explains)");
        }
    }
    takeFiles(options, files);
    return options;
}

std::string usage() {
    return "usage: mray-render [options] SHADER.frag OUTPUT.png\n"
           "Renders an object with a surface shader and writes a picture.\n"
           "  --size W,H           size in pixels (320,240)\n"
           "  --samples N          samples per pixel: 1, 2, 4, 9 or 16 (4)\n"
           "  --object NAME        sphere, torus, cube, vase or plane (sphere)\n"
           "  --background NAME    studio, sky, dark or white (studio)\n"
           "  --light NAME         key, sun, soft or rim (key)\n"
           "  --exposure E         factor on all light (1)\n"
           "  --part FILE          the name of the picture while it grows; it is valid so far\n"
           "  --values FILE        numbers for the shader's uniform block mrValues, in its layout\n"
           "  --coarse FILE        with --live: a first, coarse picture\n"
           "  --quiet              print no progress\n"
           "  --timing             print where the time went\n"
           "  --live               stay, and read requests from the standard input: lines\n"
           "                         draw ID OPTION... SHADER.frag OUTPUT.png\n"
           "                       whose words have %25 for a %, %20 for a blank and so on;\n"
           "                       a newer line stops what is drawn, and so does \"stop\".\n"
           "                       Answers: picture ID, dropped ID, refused ID or failed ID TEXT;\n"
           "                       before them any of program ID new|kept, coarse ID, alive ID,\n"
           "                       say ID TEXT, times ID TEXT\n"
           "  --help, --version    print this, or the version\n"
           "The render stops when the file named by TAVRN_KILLFILE appears.\n"
           "Exit status: 0 done, 1 failed, 2 bad command line, 3 stopped.\n";
}

}  // namespace tavrin::mray
