// SPDX-License-Identifier: Apache-2.0
// Marks that processes carry, by which a child is found again with all that it has started.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

#include "base/FileDescriptor.h"

namespace tavrin {

// A tag is an empty file in memory, whose name says whose child it is. A child inherits it as a descriptor,
// and what it starts inherits it in turn, whatever becomes of process groups, parents and environments; the
// system lists it for every process. A process that begins a session of its own (setsid) has gone its own
// way, and with it what it starts: it is not found. Where the system has no such files there are no tags, and
// nothing is found.

// The descriptor that a tagged process has it as: above those that shells and scripts take by number.
inline constexpr int kTagDescriptor = 31;

// The name of a tag: that of one child, numbered by the program; with no number, what all of a program's
// begin with.
std::string TagName(pid_t program, int number);
std::string TagNames(pid_t program);

// The tag itself, to be given to a child that is started; none if it cannot be made.
FileDescriptor MakeTag(const std::string& name);

// The processes of `session` that carry this tag or, for TagNames, one of these. The caller itself is none of
// them.
std::vector<pid_t> TaggedProcesses(const std::string& name, pid_t session);

// Sends each a signal; false if there was none.
bool SignalTagged(const std::string& name, pid_t session, int signal);

// The memory in bytes that a process has to itself, in the machine or in its swap; 0 if it is gone.
uint64_t OwnMemory(pid_t process);

// The program that a process runs, as it was called, without its directory; empty if it is gone.
std::string ProgramOf(pid_t process);

}  // namespace tavrin
