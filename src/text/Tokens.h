// SPDX-License-Identifier: Apache-2.0
// The primitives with which every text format of the system is read. None of them reports an error
// unless it says so: a failed read is a result of false, and its caller decides what that means.
#pragma once

#include <string>
#include <string_view>

#include "text/Archive.h"

namespace tavrin {

class Report;

// Delivers the next token: a run of characters other than blanks, tabs and line ends. '#' outside quotes
// starts a comment to the end of the line. A double quote opens a run in which blanks and '#' are text;
// the closing quote always ends the token, so a token may be empty. A backslash takes the next character
// literally, quotes and backslashes among them, but protects neither '#' nor white space outside quotes.
// A line feed that ends a token or a comment stays unread: the rest of the line is always the rest of
// the token's own line. False at the end of the file.
bool ReadToken(CArchive& archive, std::string& token);

// The same token without a copy of it: a view of the archive's text where the token stands there as it is,
// else of `store`, which it is then put together in.
bool ReadToken(CArchive& archive, std::string_view& token, std::string& store);

// Passes over white space and comments, up to the first byte of the next token. A backslash before one of
// them protects nothing, so it may stand before more of them. False at the end of the file.
bool SkipToToken(CArchive& archive);

// Reads a token that must be "{". Anything else is alerted as "expected opening brace"; the end of the
// file is not. False in both cases.
bool ReadOpeningBrace(CArchive& archive, Report& report);

// The next line of a brace block as a key and the rest, comments cut at the first '#' (in quotes too),
// one pair of quotes taken off the value. False at a line that is exactly "}" and at the end of the file.
bool ReadKeyValueLine(CArchive& archive, std::string& key, std::string& value);

// Lines up to one that is exactly "}", each trimmed, without leading empty ones, joined by CR LF. A '>'
// that begins a line is dropped: it protects indentation and braces. False if the file ends first, with
// the lines read so far in `text`.
bool ReadTextBlock(CArchive& archive, std::string& text);

// "false" gives 0, "true" gives 1, anything else its leading decimal number, 0 if there is none.
int ParseBool(std::string_view text);

// The text in double quotes, each double quote and backslash in it preceded by a backslash.
std::string QuoteString(std::string_view text);

// Takes one double quote off both ends if both are there; undoes no backslashes. A text of a single
// double quote becomes empty.
std::string StripQuotes(std::string_view text);

// Without the blanks, tabs and line ends at both ends, or at the right end alone.
std::string_view Trim(std::string_view text);
std::string_view TrimRight(std::string_view text);

bool EndsToken(char c);  // a blank, tab, carriage return or line feed: what separates tokens
bool IsBlank(char c);    // a blank, tab, carriage return, line feed, vertical tab or form feed

// ASCII letters to lower case; the rule for every comparison without regard to case.
std::string ToLower(std::string_view text);

// Brings a file into the log, such as the errors of a child: each line feed becomes CR LF. `text` is
// emptied; false if the file cannot be read.
bool ReadFileToText(const std::string& path, std::string& text);

}  // namespace tavrin
