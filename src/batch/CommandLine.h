// The command line of tavrin-batch.
#pragma once

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
    virtual void Library(const std::string& name) = 0;
    virtual void Force() = 0;
    virtual void Quiet() = 0;

    // Steps on the document, done in their order.
    virtual void SaveShader() = 0;
    virtual void Render() = 0;
    virtual void Save(const std::string& path) = 0;
    virtual void Set(const std::string& name, const std::string& value) = 0;
    virtual void ListOperators() = 0;
    virtual void Describe(const std::string& operatorName) = 0;

    // Each replaces everything else.
    virtual void Help() = 0;
    virtual void Version() = 0;
};

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
