// SPDX-License-Identifier: Apache-2.0
#include "batch/CommandLine.h"

#include <array>
#include <optional>
#include <span>
#include <string_view>

#include "text/Numbers.h"

namespace tavrin {

namespace {

struct Option {
    std::string_view name;
    std::string_view operand;  // its name in the help; empty if the option takes none
    std::string_view help;     // lines of the help, the later ones indented by the printer
    void (*act)(CommandLineDelegate&, const std::string& operand);
    std::span<const std::string_view> words = {};  // what the operand, up to its '=', must be one of
};

constexpr std::array<std::string_view, 4> kExportWords = {
    export_words::kShaderSource, export_words::kCompiledShader, export_words::kShaderIface,
    export_words::kRenderIface};
constexpr std::array<std::string_view, 3> kViewWords = {view_words::kSource, view_words::kRenderIface,
                                                        view_words::kShaderIface};
constexpr std::string_view kAssignment = "NAME=VALUE";
constexpr std::string_view kExportTarget = "KIND=PATH";
constexpr std::string_view kSeconds = "SECONDS";
constexpr std::string_view kOutput = "BOX.OUTPUT";

// Splits an operand at its first '=' and hands both parts on.
template <void (CommandLineDelegate::*Act)(const std::string&, const std::string&)>
void ActOnPair(CommandLineDelegate& delegate, const std::string& operand) {
    const auto equals = operand.find('=');
    (delegate.*Act)(operand.substr(0, equals), operand.substr(equals + 1));
}
template <void (CommandLineDelegate::*Act)(const std::string&)>
void ActOn(CommandLineDelegate& delegate, const std::string& operand) {
    (delegate.*Act)(operand);
}
template <void (CommandLineDelegate::*Act)()>
void ActAlone(CommandLineDelegate& delegate, const std::string&) {
    (delegate.*Act)();
}

// An operand that FaultOf has passed.
void ActOnTimeLimit(CommandLineDelegate& delegate, const std::string& operand) {
    delegate.TimeLimit(std::chrono::seconds(FieldScanner(operand).Int().value_or(0)));
}

using Delegate = CommandLineDelegate;
const std::array kSteps = {
    Option{"--save-shader", "", "Generate the shader and run the library's filter script on it.",
           ActAlone<&Delegate::SaveShader>},
    Option{"--render", "", "Generate the shader, render it, and wait for the end.",
           ActAlone<&Delegate::Render>},
    Option{
        "--probe", kOutput,
        "From here on save, render and view the network as if this\noutput went to the picture. Nothing of "
        "the document changes.",
        ActOn<&Delegate::Probe>},
    Option{"--check", "",
           "Generate, then print what a user should know before rendering,\none finding a line. A finding "
           "that is "
           "an error makes the\nstatus 1.",
           ActAlone<&Delegate::Check>},
    Option{
        "--view", "KIND",
        "Save the shader and print a text: source, renderiface (the\nrender interface) or shaderiface (the "
        "shader interface).",
        ActOn<&Delegate::View>, kViewWords},
    Option{"--export", "KIND=PATH",
           "Write one kind of file to a path, and wait for the end:\nshaderSource, compiledShader, "
           "shaderIFace or "
           "renderIFace.",
           ActOnPair<&Delegate::Export>, kExportWords},
    Option{"--export-all", "", "Export what the document's export options ask for, and wait\nfor the end.",
           ActAlone<&Delegate::ExportAll>},
    Option{"--add", "OPERATOR", "Put a box of the operator, or the network that it is, on the\ndesk.",
           ActOn<&Delegate::Add>},
    Option{"--merge", "FILE.tvn", "Put the boxes of another document on the desk, with new\nnumbers.",
           ActOn<&Delegate::Merge>},
    Option{"--set", kAssignment, "Give a render option a value.", ActOnPair<&Delegate::Set>},
    Option{"--save", "FILE.tvn", "Write the document.", ActOn<&Delegate::Save>},
    Option{"--script", "FILE.tvx", "Run a script of actions to its end.", ActOn<&Delegate::Script>},
    Option{"--list-operators", "", "Print the library's operators: name, menu path and file, a\ntab between.",
           ActAlone<&Delegate::ListOperators>},
    Option{"--describe", "OPERATOR", "Print an operator's help, inputs and outputs.",
           ActOn<&Delegate::Describe>},
};
const std::array kSettings = {
    Option{"--keep-work", "DIR",
           "Leave a copy of the work directory's files in DIR at the end,\nwhatever happens.",
           ActOn<&Delegate::KeepWork>},
    Option{"--picture", "FILE",
           "Keep the picture that --render or a script makes in FILE; of\nseveral renders, the last one's.",
           ActOn<&Delegate::Picture>},
    Option{"--library", "NAME", "Start with this library of the installation.", ActOn<&Delegate::Library>},
    Option{"--force", "",
           "Let --save and --export-all replace a document that could not\nbe read to its end, or that has "
           "changed or gone since it was read.",
           ActAlone<&Delegate::Force>},
    Option{"--trust-exports", "",
           "Let --export-all and scripts write and run what a document\nasks for that you have not saved "
           "here.",
           ActAlone<&Delegate::TrustExports>},
    Option{"--no-site-commands", "",
           "Use no command that tavrn.def of the current directory\nnames; its other settings count.",
           ActAlone<&Delegate::NoSiteCommands>},
    Option{
        "--quiet", "",
        "Do not print the log; alerts are printed all the same, and\nwhat the log has to say of a failure.",
        ActAlone<&Delegate::Quiet>},
    Option{
        "--time-limit", kSeconds,
        "Stop a render, or the script that makes the shader, that takes\nlonger; 0 is no limit. Without this "
        "the library's site\ndefinitions say so.",
        ActOnTimeLimit},
    Option{"--help", "", "Print this and end.", ActAlone<&Delegate::Help>},
    Option{"--version", "", "Print the version and end.", ActAlone<&Delegate::Version>},
};

const Option* FindOption(std::string_view name) {
    for (const Option& option : kSteps) {
        if (option.name == name) return &option;
    }
    for (const Option& option : kSettings) {
        if (option.name == name) return &option;
    }
    return nullptr;
}

// What is wrong with an option's operand; empty if nothing is.
std::string FaultOf(const Option& option, const std::string& operand) {
    const std::string name(option.name);
    const bool isPair = option.operand == kAssignment || option.operand == kExportTarget;
    const auto equals = operand.find('=');
    if (isPair && (equals == 0 || equals == std::string::npos)) {
        return name + " " + operand + ": expected " + std::string(option.operand);
    }
    const bool isNumber = operand.size() < 10 && operand.find_first_not_of("0123456789") == std::string::npos;
    if (option.operand == kSeconds && !isNumber)
        return name + " " + operand + ": expected a number of seconds";
    const auto dot = operand.find('.');
    if (option.operand == kOutput && (dot == 0 || dot == std::string::npos || operand.ends_with('.')))
        return name + " " + operand + ": expected BOX.OUTPUT, such as Noise_3.result";
    const std::string word = isPair ? operand.substr(0, equals) : operand;
    if (option.words.empty()) return {};
    if (option.operand == kExportTarget && equals + 1 == operand.size())
        return name + " " + operand + ": the path is empty";
    std::string known;
    for (const std::string_view candidate : option.words) {
        if (candidate == word) return {};
        known.append(known.empty() ? "" : ", ").append(candidate);
    }
    return name + " " + operand + ": expected one of " + known;
}

void AppendHelp(std::string& text, const Option& option) {
    constexpr size_t kColumn = 22;
    std::string line = "  " + std::string(option.name);
    if (!option.operand.empty()) line.append(" ").append(option.operand);
    if (line.size() >= kColumn) line.append("\n");
    const size_t lineStart = line.rfind('\n') == std::string::npos ? 0 : line.rfind('\n') + 1;
    line.append(kColumn - (line.size() - lineStart), ' ');
    for (const char c : option.help) {
        line += c;
        if (c == '\n') line.append(kColumn, ' ');
    }
    text += line + "\n";
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
        if (operand) {
            if (const std::string fault = FaultOf(*option, *operand); !fault.empty()) {
                error = Advice(fault);
                return false;
            }
        }
        option->act(m_delegate, operand.value_or(std::string()));
    }
    return true;
}

std::string CommandLine::HelpText() {
    std::string text =
        "Usage: tavrin-batch [OPTION...] [DOCUMENT.tvn]\n"
        "\n"
        "Does the work of the shader builder without a window: opens the document, if one\n"
        "is given, then does what the options ask on it, in their order. An option can be\n"
        "repeated. Data goes to standard output, the log and alerts to standard error.\n"
        "\n"
        "What can be done:\n";
    for (const Option& option : kSteps) AppendHelp(text, option);
    text += "\nWhat holds for the whole run:\n";
    for (const Option& option : kSettings) AppendHelp(text, option);
    return text +
           "\n"
           "Examples:\n"
           "  tavrin-batch --render --picture marble.png marble.tvn\n"
           "      renders and keeps the picture\n"
           "  tavrin-batch --render --keep-work out marble.tvn\n"
           "      renders and keeps everything; the picture is out/1/marble.png\n"
           "  tavrin-batch --check --render --export shaderSource=/site/marble.frag marble.tvn\n"
           "      checks, renders, then delivers the source\n"
           "  tavrin-batch --set MRAY_OBJECT=torus --save torus.tvn marble.tvn\n"
           "      changes a render option and saves under another name\n"
           "  tavrin-batch --probe Noise_3.result --render --picture noise.png marble.tvn\n"
           "      shows what one wire carries\n"
           "  tavrin-batch --describe Marble\n"
           "      tells what an operator does\n"
           "\n"
           "Scripts (.tvx) hold actions, one a line or separated by ';', comments behind '#':\n"
           "  form render render, form render kill, form export all, form export compiledShader,\n"
           "  form export shaderIFace, form loadtavrn PATH, form system COMMAND, form roe hide,\n"
           "  form exit, roe use-defaults. An action that is unknown counts as a failure.\n"
           "\n"
           "Environment:\n"
           "  TAVRN_DIR           the installation; ../share/tavrin beside the program if not set\n"
           "  TAVRN_LIB           the library, by the last component of its path; mray if not set\n"
           "  TAVRN_TMPDIR, TEMP  where the work directory is made; /tmp if neither is set\n"
           "  SOURCE_DATE_EPOCH   the time that is written into documents\n"
           "\n"
           "Files:\n"
           "  tavrn.def in the library, in the home directory and in the current directory are\n"
           "  the site definitions, each overriding the one before. The last is read only where\n"
           "  nobody but you and root can write it and its directory.\n"
           "\n"
           "Status: 0 if all was done; 1 if something failed (an alert, a finding that is an\n"
           "error, an unknown action, a script that ended with an error); 2 if the command\n"
           "line is wrong; 128 and the signal's number if interrupted.\n";
}

}  // namespace tavrin
