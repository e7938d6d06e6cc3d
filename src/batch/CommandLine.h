// SPDX-License-Identifier: Apache-2.0
// The command line of tavrin-batch.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace tavrin {

// What the options ask for. Called in the order of the command line.
class CommandLineDelegate {
  public:
    virtual ~CommandLineDelegate() = default;

    // What holds for the whole run.
    virtual void Document(const std::string& path) = 0;
    virtual void KeepWork(const std::string& directory) = 0;
    virtual void Picture(const std::string& path) = 0;
    virtual void Library(const std::string& name) = 0;
    virtual void Force() = 0;
    virtual void TrustExports() = 0;
    virtual void NoSiteCommands() = 0;
    virtual void Quiet() = 0;
    virtual void TimeLimit(std::chrono::seconds time) = 0;

    // Steps on the document, done in their order.
    virtual void SaveShader() = 0;
    virtual void Render() = 0;
    virtual void Save(const std::string& path) = 0;
    virtual void Set(const std::string& name, const std::string& value) = 0;
    virtual void ListOperators() = 0;
    virtual void Describe(const std::string& operatorName) = 0;
    virtual void Script(const std::string& path) = 0;
    virtual void ExportAll() = 0;
    virtual void Export(const std::string& kind, const std::string& path) = 0;
    virtual void Merge(const std::string& path) = 0;
    virtual void Add(const std::string& operatorName) = 0;
    virtual void View(const std::string& kind) = 0;
    virtual void Check() = 0;
    virtual void Probe(const std::string& output) = 0;

    // Each replaces everything else.
    virtual void Help() = 0;
    virtual void Version() = 0;
};

// The words of --export and --view.
namespace export_words {
inline constexpr const char* kShaderSource = "shaderSource";
inline constexpr const char* kCompiledShader = "compiledShader";
inline constexpr const char* kShaderIface = "shaderIFace";
inline constexpr const char* kRenderIface = "renderIFace";
}  // namespace export_words
namespace view_words {
inline constexpr const char* kSource = "source";
inline constexpr const char* kRenderIface = "renderiface";
inline constexpr const char* kShaderIface = "shaderiface";
}  // namespace view_words

// Made for one command line. Its delegate, which outlives it, hears of each word that has a meaning; nothing
// is done.
class CommandLine {
  public:
    explicit CommandLine(CommandLineDelegate& delegate) : m_delegate(delegate) {}

    // Takes the words behind the program's name. False if they are wrong, with a message that says what to
    // do in `error`; the delegate has then heard of the words before the wrong one.
    bool Parse(const std::vector<std::string>& words, std::string& error);

    // The text of --help.
    static std::string HelpText();

  private:
    bool TakeDocument(const std::string& word, std::string& error);

    CommandLineDelegate& m_delegate;
    bool m_hasDocument = false;
};

}  // namespace tavrin
