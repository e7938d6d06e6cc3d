// SPDX-License-Identifier: Apache-2.0
// What the preprocessor made of the operators that one operation on a document meets.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tavrin {

class COpRegistry;
class CommandQueue;
struct COpEntry;
struct DefinitionSource;
struct ProgramCall;
struct Site;

// The output of one run.
struct DefinitionText {
    std::string definition;
    std::string log;  // the preprocessor's errors and warnings as they go to the log
    std::shared_ptr<const DefinitionSource> source;
};

// Owned by one opening, merge or insertion of a saved network and gone with it, so that an edited definition
// is seen by the next. Where the library has declared its preprocessor pure, it is run once for each
// operator, and several at a time; each box then reads the same text for itself. Without that there is
// nothing here, and each box has its own run.
class DefinitionTexts {
  public:
    enum class Sharing {
        kAsDeclared,  // by the library
        kAlways,      // for who compares what a run gives, and makes no box of it
    };
    // Both outlive it.
    DefinitionTexts(const COpRegistry& registry, Site& site, Sharing sharing = Sharing::kAsDeclared);
    DefinitionTexts(const DefinitionTexts&) = delete;
    DefinitionTexts& operator=(const DefinitionTexts&) = delete;
    // Ends what still runs.
    ~DefinitionTexts();

    // One run serves all boxes of an operator.
    bool AreShared() const;

    // Has the preprocessor started for operators that will be asked for, in this order. Names that the
    // library does not have start nothing.
    void Expect(const std::vector<std::string_view>& operatorNames);

    // Waits for the operator's run, if need be. Nothing where the box has to have a run of its own: nothing
    // is shared, the program is to end, or the shared run failed, so that the box's own tells why.
    const DefinitionText* Find(const COpEntry& entry);

    // Forgets everything: another library is in use.
    void Clear();

    // What starts a run that leaves its output and its errors in two files.
    static ProgramCall Call(const Site& site, const COpEntry& entry, const std::string& outputPath,
                            const std::string& errorPath);
    // Where the output and the errors of the last definition lie that was read.
    static std::string OutputPath(const Site& site);
    static std::string ErrorPath(const Site& site);

  private:
    struct Run {
        std::string outputPath;
        std::string errorPath;
        std::string operatorPath;
        int64_t begun = 0;
        bool isOver = false;
        std::optional<DefinitionText> text;
    };

    size_t Enqueue(const COpEntry& entry);
    void Finish(size_t number);

    const COpRegistry& m_registry;
    Site& m_site;
    const Sharing m_sharing;
    std::unique_ptr<CommandQueue> m_queue;
    std::vector<Run> m_runs;                           // by their number in the queue
    std::unordered_map<std::string, size_t> m_byPath;  // runs by the operator's file
};

}  // namespace tavrin
