// SPDX-License-Identifier: Apache-2.0
#include "render/SourceText.h"

#include <algorithm>

namespace tavrin {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Goes through one line, from its beginning to its end.
class Scan {
  public:
    Scan(const SourceWords& words, std::string_view line, std::vector<SourceSpan>* spans)
        : m_words(words), m_line(line), m_spans(spans) {}

    OpenMarks Run(OpenMarks open) {
        if (open > 0 && open <= m_words.AllMarks().size() && !Close(open, 0, 0)) return open;
        if (open == 0) TakeDirective();
        while (m_at < m_line.size()) {
            const char c = m_line[m_at];
            if (m_words.BeginsMarks(c)) {
                const OpenMarks found = MarksHere();
                if (found > 0) {
                    if (!Close(found, m_at, m_words.AllMarks()[found - 1].open.size())) return found;
                    continue;
                }
            }
            if (m_words.IsLetter(c)) {
                TakeWord();
            } else if (c == '.' && m_words.HasNumbers() && m_at + 1 < m_line.size() &&
                       IsDigit(m_line[m_at + 1])) {
                TakeNumber();
            } else {
                ++m_at;
            }
        }
        return 0;
    }

  private:
    void Add(size_t begin, size_t end, SourceClass kind) {
        if (m_spans != nullptr && kind != SourceClass::kPlain && begin < end)
            m_spans->push_back({begin, end, kind});
    }

    OpenMarks MarksHere() const {
        const auto& all = m_words.AllMarks();
        for (size_t i = 0; i < all.size(); ++i) {
            if (m_line.substr(m_at).starts_with(all[i].open)) return i + 1;
        }
        return 0;
    }

    // Takes what begins at `begin`, `inside` bytes of which are the opening mark, up to the closing one.
    // False if that is to come in another line.
    bool Close(OpenMarks which, size_t begin, size_t inside) {
        const SourceWords::Marks& marks = m_words.AllMarks()[which - 1];
        size_t at = begin + inside;
        bool isClosed = false;
        while (at < m_line.size() && !isClosed && !marks.close.empty()) {
            if (marks.escape == 0) {
                const size_t found = m_line.find(marks.close, at);
                isClosed = found != std::string_view::npos;
                at = isClosed ? found + marks.close.size() : m_line.size();
            } else if (m_line[at] == marks.escape) {
                at += 2;
            } else {
                isClosed = m_line.substr(at).starts_with(marks.close);
                at += isClosed ? marks.close.size() : 1;
            }
        }
        m_at = isClosed ? at : m_line.size();
        Add(begin, m_at, marks.kind);
        return isClosed || !marks.overLines;
    }

    void TakeDirective() {
        const std::string& mark = m_words.Directive();
        const size_t first = m_line.find_first_not_of(" \t");
        if (mark.empty() || first == std::string_view::npos || !m_line.substr(first).starts_with(mark))
            return;
        m_at = first + mark.size();
        while (m_at < m_line.size() && (m_line[m_at] == ' ' || m_line[m_at] == '\t')) ++m_at;
        while (m_at < m_line.size() && m_words.IsLetter(m_line[m_at])) ++m_at;
        Add(first, m_at, SourceClass::kDirective);
    }

    void TakeWord() {
        if (m_words.HasNumbers() && IsDigit(m_line[m_at])) return TakeNumber();
        const size_t begin = m_at;
        while (m_at < m_line.size() && m_words.IsLetter(m_line[m_at])) ++m_at;
        if (m_spans != nullptr) Add(begin, m_at, m_words.ClassOf(m_line.substr(begin, m_at - begin)));
    }

    // With its suffix; a sign belongs to it behind the letter of an exponent.
    void TakeNumber() {
        const size_t begin = m_at;
        const bool isHex = m_line.substr(begin).starts_with("0x") || m_line.substr(begin).starts_with("0X");
        while (m_at < m_line.size()) {
            const char c = m_line[m_at];
            const char before = m_at > begin ? m_line[m_at - 1] : ' ';
            const bool isSign = (c == '+' || c == '-') && !isHex && (before == 'e' || before == 'E') &&
                                m_at + 1 < m_line.size() && IsDigit(m_line[m_at + 1]);
            if (!isSign && c != '.' && !m_words.IsLetter(c)) break;
            ++m_at;
        }
        Add(begin, m_at, SourceClass::kNumber);
    }

    const SourceWords& m_words;
    std::string_view m_line;
    std::vector<SourceSpan>* m_spans;
    size_t m_at = 0;
};

}  // namespace

OpenMarks ScanSourceLine(const SourceWords& words, std::string_view line, OpenMarks open,
                         std::vector<SourceSpan>* spans) {
    return Scan(words, line, spans).Run(open);
}

SourceText::SourceText(std::string text, const SourceWords& words)
    : m_text(std::move(text)), m_words(words), m_open{0} {
    for (size_t at = 0; at < m_text.size();) {
        m_starts.push_back(at);
        const size_t end = std::min(m_text.find('\n', at), m_text.size());
        m_longest = std::max(m_longest, end - at);
        at = end + 1;
    }
}

std::string_view SourceText::Line(size_t line) const {
    const size_t begin = m_starts[line];
    const size_t behind = line + 1 < m_starts.size() ? m_starts[line + 1] : m_text.size();
    std::string_view found = std::string_view(m_text).substr(begin, behind - begin);
    if (found.ends_with('\n')) found.remove_suffix(1);
    if (found.ends_with('\r')) found.remove_suffix(1);
    return found;
}

std::vector<SourceSpan> SourceText::SpansOf(size_t line) {
    while (m_open.size() <= line) {
        const size_t last = m_open.size() - 1;
        m_open.push_back(ScanSourceLine(m_words, Line(last), m_open[last], nullptr));
    }
    std::vector<SourceSpan> spans;
    ScanSourceLine(m_words, Line(line), m_open[line], &spans);
    return spans;
}

SourceText::Shared SourceText::SharedWith(const SourceText& before) const {
    const size_t most = std::min(LineCount(), before.LineCount());
    Shared shared;
    while (shared.begin < most && Line(shared.begin) == before.Line(shared.begin)) ++shared.begin;
    while (shared.end < most - shared.begin &&
           Line(LineCount() - 1 - shared.end) == before.Line(before.LineCount() - 1 - shared.end)) {
        ++shared.end;
    }
    return shared;
}

size_t SourceText::PlaceOf(size_t line, const SourceText& before) const {
    if (LineCount() == 0) return 0;
    if (line < before.LineCount()) {
        const Shared shared = SharedWith(before);
        const size_t toEnd = before.LineCount() - line;
        if (line >= shared.begin && toEnd <= shared.end) return LineCount() - toEnd;
    }
    return std::min(line, LineCount() - 1);
}

}  // namespace tavrin
