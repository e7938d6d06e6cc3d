#include "batch/CommandLine.h"

#include <array>
#include <optional>
#include <string_view>

namespace tavrin {

namespace {

struct Option {
    std::string_view name;
    std::string_view operand;  // its name in the help; empty if the option takes none
    std::string_view help;     // lines of the help, the later ones indented by the printer
    void (*act)(CommandLineDelegate&, const std::string& operand);
};

void ActOnSet(CommandLineDelegate& delegate, const std::string& operand) {
    const auto equals = operand.find('=');
    delegate.Set(operand.substr(0, equals), operand.substr(equals + 1));
}

constexpr std::array kOptions = {
    Option{"--save-shader", "", "Generate the shader and run the library's filter script on it.",
           [](CommandLineDelegate& d, const std::string&) { d.SaveShader(); }},
    Option{"--render", "", "Generate the shader, render it, and wait for the end.",
           [](CommandLineDelegate& d, const std::string&) { d.Render(); }},
    Option{"--save", "FILE.tvn", "Write the document.",
           [](CommandLineDelegate& d, const std::string& file) { d.Save(file); }},
    Option{"--set", "NAME=VALUE", "Give a render option a value.", ActOnSet},
    Option{"--list-operators", "", "Print the library's operators: name, menu path and file, a tab between.",
           [](CommandLineDelegate& d, const std::string&) { d.ListOperators(); }},
    Option{"--describe", "OPERATOR", "Print an operator's help, inputs and outputs.",
           [](CommandLineDelegate& d, const std::string& name) { d.Describe(name); }},
    Option{"--keep-work", "DIR", "Leave a copy of the work directory's files in DIR at the end,\nwhatever happens.",
           [](CommandLineDelegate& d, const std::string& directory) { d.KeepWork(directory); }},
    Option{"--library", "NAME", "Start with this library of the installation.",
           [](CommandLineDelegate& d, const std::string& name) { d.Library(name); }},
    Option{"--force", "", "Let --save replace a document that could not be read to its end.",
           [](CommandLineDelegate& d, const std::string&) { d.Force(); }},
    Option{"--quiet", "", "Do not print the log; alerts are printed all the same.",
           [](CommandLineDelegate& d, const std::string&) { d.Quiet(); }},
    Option{"--help", "", "Print this and end.", [](CommandLineDelegate& d, const std::string&) { d.Help(); }},
    Option{"--version", "", "Print the version and end.",
           [](CommandLineDelegate& d, const std::string&) { d.Version(); }},
};

const Option* FindOption(std::string_view name) {
    for (const Option& option : kOptions) {
        if (option.name == name) return &option;
    }
    return nullptr;
}

std::string Advice(const std::string& message) { return message + "; see tavrin-batch --help"; }

}  // namespace

bool CommandLine::TakeDocument(const std::string& word, std::string& error) {
    if (word.empty()) {
        error = Advice("the name of the document is empty");
        return false;
    }
    if (m_hasDocument) {
        error = Advice("one document at a time: " + word + " is a second one");
        return false;
    }
    m_hasDocument = true;
    m_delegate.Document(word);
    return true;
}

bool CommandLine::Parse(const std::vector<std::string>& words, std::string& error) {
    bool optionsEnded = false;
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (optionsEnded || !word.starts_with('-') || word == "-") {
            if (!TakeDocument(word, error)) return false;
            continue;
        }
        if (word == "--") {
            optionsEnded = true;
            continue;
        }
        const auto equals = word.find('=');
        const std::string name = word.substr(0, equals);
        std::optional<std::string> operand;
        if (equals != std::string::npos) operand = word.substr(equals + 1);
        const Option* option = FindOption(name);
        if (option == nullptr) {
            error = Advice("unknown option " + name);
            return false;
        }
        const std::string wanted(option->operand);
        if (wanted.empty() && operand) {
            error = Advice(name + " takes no value");
            return false;
        }
        if (!wanted.empty() && !operand && i + 1 < words.size()) operand = words[++i];
        if (!wanted.empty() && (!operand || operand->empty())) {
            error = Advice(name + " needs " + wanted + " behind it");
            return false;
        }
        if (wanted == "NAME=VALUE" && (operand->front() == '=' || operand->find('=') == std::string::npos)) {
            error = Advice(name + " " + *operand + ": expected NAME=VALUE");
            return false;
        }
        option->act(m_delegate, operand.value_or(std::string()));
    }
    return true;
}

std::string CommandLine::HelpText() {
    constexpr size_t kColumn = 26;
    std::string text =
        "Usage: tavrin-batch [OPTION...] [DOCUMENT.tvn]\n"
        "\n"
        "Opens the document, if one is given, then does what the options ask, in their\n"
        "order. Data goes to standard output, the log and alerts to standard error.\n"
        "\n"
        "Options:\n";
    for (const Option& option : kOptions) {
        std::string line = "  " + std::string(option.name);
        if (!option.operand.empty()) line.append(" ").append(option.operand);
        line.resize(std::max(line.size() + 1, kColumn), ' ');
        for (const char c : option.help) {
            line += c;
            if (c == '\n') line.append(kColumn, ' ');
        }
        text += line + "\n";
    }
    return text +
           "\n"
           "Environment: TAVRN_DIR names the installation, TAVRN_LIB the library by the last\n"
           "component of its path, TAVRN_TMPDIR the directory for work files.\n"
           "SOURCE_DATE_EPOCH, where set, is the time written into documents.\n"
           "\n"
           "Status: 0 if all was done; 1 if something failed (an alert, a script that ended\n"
           "with an error); 2 if the command line is wrong; 128 and the signal's number if\n"
           "interrupted.\n";
}

}  // namespace tavrin
