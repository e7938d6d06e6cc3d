// SPDX-License-Identifier: Apache-2.0
// The output of children as it comes into the log.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace tavrin {

class Report;

// Brings pieces of output into the log. Those of a child that runs alone pass as they come. Children that run
// at the same time would cut each other's lines: from then on, and to their end, each one's output comes in
// whole lines behind its label, "[render 2] wrote ...". Main thread only; owned by the commands.
class ChildLog {
  public:
    explicit ChildLog(Report& report) : m_report(report) {}

    // A child whose output is to come, under a number that no other has. The label tells a user which it is;
    // the output of a child without one passes as it comes, whoever else runs.
    void Begin(int id, std::string label);
    void Append(int id, std::string_view piece);
    // Whole lines of somebody who is none of these, which cut nobody's.
    void Note(std::string_view lines);
    // No more output of this child comes.
    void End(int id);

  private:
    struct Stream {
        std::string label;
        bool isLabelled = false;  // another child has been running beside this one
        std::string line;         // what has come of a line, where lines are labelled
    };
    static constexpr int kNobody = 0;

    void EmitLine(int id, const Stream& stream, std::string_view line);

    Report& m_report;
    std::map<int, Stream> m_streams;
    int m_openLine = kNobody;  // the child that has left the log's last line open
};

}  // namespace tavrin
