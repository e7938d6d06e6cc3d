// SPDX-License-Identifier: Apache-2.0
#include "LiveRequest.h"

#include <charconv>
#include <utility>

namespace tavrin::mray {

namespace {

std::vector<std::string> splitWords(const std::string& line) {
    std::vector<std::string> words;
    std::size_t at = 0;
    while ((at = line.find_first_not_of(' ', at)) != std::string::npos) {
        const std::size_t end = std::min(line.find(' ', at), line.size());
        words.push_back(line.substr(at, end - at));
        at = end;
    }
    return words;
}

std::string decode(const std::string& id, const std::string& word) {
    std::string text;
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (word[i] != '%') {
            text += word[i];
            continue;
        }
        const char* digits = word.data() + i + 1;
        unsigned char byte = 0;
        if (i + 2 >= word.size() || std::from_chars(digits, digits + 2, byte, 16).ptr != digits + 2) {
            throw RequestError(id, "the word " + word + " of a request has a % without two digits");
        }
        text += static_cast<char>(byte);
        i += 2;
    }
    return text;
}

}  // namespace

LiveRequest parseRequest(const std::string& line) {
    const std::vector<std::string> words = splitWords(line);
    if (words.size() < 2 || words[0] != "draw") {
        throw RequestError("", "a request is: draw ID OPTION... SHADER.frag OUTPUT.png");
    }
    LiveRequest request{words[1], {}};
    std::vector<std::string> arguments;
    for (std::size_t i = 2; i < words.size(); ++i) {
        arguments.push_back(decode(request.id, words[i]));
    }
    try {
        request.options = parseOptions(arguments);
    } catch (const UsageError& error) {
        throw RequestError(request.id, error.what());
    }
    if (request.options.help || request.options.version || request.options.live) {
        throw RequestError(request.id, "--help, --version and --live are no options of a request");
    }
    return request;
}

}  // namespace tavrin::mray
