// SPDX-License-Identifier: Apache-2.0
#include "InputFiles.h"

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace tavrin::mray {

namespace {

std::string readFile(const std::string& path, const char* what) {
    std::ifstream file(path, std::ios::binary);
    if (!file || !std::filesystem::is_regular_file(path)) {
        throw std::runtime_error("cannot read the " + std::string(what) + " " + path +
                                 "; check the file name");
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

std::string readShader(const std::string& path) {
    std::string text = readFile(path, "shader");
    if (text.empty()) {
        throw std::runtime_error("the shader " + path + " is empty; generate it again");
    }
    return text;
}

std::vector<float> readValues(const std::string& path) {
    const std::string text = readFile(path, "values");
    const char* at = text.data();
    const char* const end = at + text.size();
    const auto blank = [](char c) { return c == ' ' || c == '\n'; };
    std::vector<float> values;
    while (true) {
        while (at != end && blank(*at)) {
            ++at;
        }
        if (at == end) {
            return values;
        }
        float value = 0;
        const auto [stop, error] = std::from_chars(at, end, value);
        if (error == std::errc::invalid_argument || (stop != end && !blank(*stop)) ||
            values.size() == kMostValues) {
            throw std::runtime_error("the values " + path + " are not at most " +
                                     std::to_string(kMostValues) + " numbers; write them again");
        }
        if (error == std::errc::result_out_of_range) {
            value = std::strtof(std::string(at, stop).c_str(), nullptr);  // 0 or infinite
        }
        values.push_back(value);
        at = stop;
    }
}

void checkOutput(const std::string& path) {
    const std::filesystem::path parent = std::filesystem::path(path).parent_path();
    const std::string directory = parent.empty() ? "." : parent.string();
    if (access(directory.c_str(), W_OK | X_OK) != 0) {
        throw std::runtime_error("cannot write into " + directory + ": " + std::strerror(errno) +
                                 "; name another picture file");
    }
    if (std::filesystem::is_directory(path)) {
        throw std::runtime_error("cannot write " + path + ": it is a directory; name a picture file");
    }
}

}  // namespace tavrin::mray
