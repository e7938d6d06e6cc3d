// SPDX-License-Identifier: Apache-2.0
// The top level of a document and its smaller sections.
#include "document/DocumentReader.h"

#include <utility>

#include "document/DeskFrame.h"
#include "document/ExportOptions.h"
#include "library/SavedNetwork.h"
#include "text/Numbers.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

constexpr std::string_view kMutedKeyword = "tavrn-muted";
constexpr std::string_view kFrameKeyword = "tavrn-frame";

}  // namespace

DocumentForm ReadDocument(CArchive archive) { return DocumentReader(std::move(archive)).Read(); }

std::string NoDocumentMessage(const DocumentForm& form) {
    const bool isEmpty = Trim(form.Text()).empty();
    return form.Path() + " is no Tavrin document: it " +
           (isEmpty ? "is empty" : "holds none of the words that a document is made of") +
           "; it was not opened, and what is on the desk stays";
}

DocumentForm ReadDesk(CArchive archive) { return DocumentReader(std::move(archive)).ReadDeskAlone(); }

DocumentReader::DocumentReader(CArchive archive) : m_form(std::move(archive)), m_archive(*m_form.m_source) {}

DocumentForm DocumentReader::Read() {
    std::string_view keyword;
    bool hasWords = false;
    while (Next(keyword)) {
        hasWords = true;
        if (!ReadSection(keyword)) break;
    }
    m_form.m_isComments = !hasWords && !Trim(m_archive.Text()).empty();
    return std::move(m_form);
}

DocumentForm DocumentReader::ReadDeskAlone() {
    std::string_view token;
    while (Next(token)) {
        if (token == kMutedKeyword && !ReadWord(&MutedRecord::wids)) break;
        if (token == kFrameKeyword && !ReadFrame()) break;
        if (token != "opdesk") continue;
        ReadOpDesk();
        break;
    }
    return std::move(m_form);
}

bool DocumentReader::ReadSection(std::string_view keyword) {
    if (keyword == kDocumentKeyword) return ReadWord(&VersionRecord::version);
    if (keyword == "tavrn-renderer") return ReadWord(&LibraryRecord::name);
    if (keyword == kMutedKeyword) return ReadWord(&MutedRecord::wids);
    if (keyword == kFrameKeyword) return ReadFrame();
    if (keyword == "toolbar") return ReadToolbar();
    if (keyword == "opdesk") return ReadOpDesk();
    if (keyword == "renderoptions") return ReadRenderOptions();
    if (keyword == "exportoptions") {
        ReadExportOptions();
        return true;
    }
    if (keyword == "customshaderhelp") return ReadHelp();
    return true;  // an unknown word, and the words of its block after it
}

template <typename Record>
bool DocumentReader::ReadWord(std::string_view Record::*word) {
    Record section{Begun(), {}};
    if (!Operand(section.*word)) return false;
    End(section);
    m_form.sections.emplace_back(section);
    return true;
}

// One that says nothing ends no reading, but what it may have been is not to be lost unasked.
bool DocumentReader::ReadFrame() {
    FrameRecord frame{Begun(), {}};
    if (!Operand(frame.words)) return false;
    End(frame);
    if (!FrameOf(frame.words)) {
        AddError(ReadingError::Kind::kPassedOver, "this is no frame and no note: it was passed over");
    } else if (m_frames == kMostFrames) {
        AddError(ReadingError::Kind::kPassedOver, "more than " + std::to_string(kMostFrames) +
                                                      " frames and notes: the others were passed over");
        ++m_frames;  // told once
    } else if (m_frames < kMostFrames) {
        ++m_frames;
        m_form.sections.emplace_back(frame);
    }
    return true;
}

bool DocumentReader::ReadToolbar() {
    const DocumentRecord begun = Begun();
    if (!Expect("{")) return false;
    auto& toolbar = AddSection<ToolbarRecord>(begun);
    std::string_view token;
    while (Operand(token)) {
        if (token == "}") {
            End(toolbar);
            return true;
        }
        if (token != "button") return Unexpected();
        if (!Operand(token)) return false;
        FieldScanner scanner(token);
        if (!scanner.Int() || !scanner.Literal("=")) continue;
        if (const auto name = scanner.Word()) toolbar.operators.push_back(*name);
    }
    return false;
}

bool DocumentReader::ReadRenderOptions() {
    const DocumentRecord begun = Begun();
    if (!Expect("{")) return false;
    auto& section = AddSection<RenderOptionsRecord>(begun);
    std::string_view token;
    while (Operand(token)) {
        if (token == "}") {
            End(section);
            return true;
        }
        if (token != "setenv") return Unexpected();
        RenderOptionRecord option{Begun(), {}, {}};
        if (!Operand(option.name) || !Operand(option.value)) return false;
        End(option);
        section.options.push_back(option);
    }
    return false;
}

// Reading goes on behind an unknown option, with what follows it as words between sections.
void DocumentReader::ReadExportOptions() {
    const DocumentRecord begun = Begun();
    auto& section = AddSection<ExportOptionsRecord>(begun);
    std::string_view key;
    bool isOpen = Next(key);  // the brace, whatever it is
    bool isKnown = true;
    while (isOpen && isKnown) {
        isOpen = Next(key);
        if (!isOpen || key == "}") break;
        ExportOptionRecord option{Begun(), key, {}};
        m_archive.ReadLine(option.line);
        End(option);
        isKnown = IsExportOption(key);
        if (isKnown)
            section.options.push_back(option);
        else
            AddError(ReadingError::Kind::kPassedOver, "unknown export option: " + std::string(key));
    }
    if (!isOpen) EndsInside("exportoptions");
    End(section);
}

// The markers that protect the text's own indentation and braces come off in the reading. Where the text ends
// first, nothing is told.
bool DocumentReader::ReadHelp() {
    const DocumentRecord begun = Begun();
    if (!Expect("{")) return false;
    std::string_view restOfLine;
    m_archive.ReadLine(restOfLine);
    auto& help = AddSection<HelpRecord>(begun);
    if (!ReadTextBlock(m_archive, help.text)) return Stop({});
    End(help);
    return true;
}

bool DocumentReader::Next(std::string_view& token) {
    if (!SkipToToken(m_archive)) return false;
    m_tokenBegin = m_archive.Position();
    if (!ReadToken(m_archive, token, m_token)) return false;
    if (token.data() == m_token.data()) token = m_form.m_decoded.emplace_back(m_token);
    return true;
}

bool DocumentReader::Operand(int& number) {
    std::string_view token;
    if (!Operand(token)) return false;
    number = ParseInt(token);
    return true;
}

bool DocumentReader::Operands(std::span<float> numbers, size_t& read) {
    for (float& number : numbers) {
        std::string_view token;
        if (!Operand(token)) return false;
        number = ParseFloat(token);
        ++read;
    }
    return true;
}

bool DocumentReader::Expect(std::string_view text) {
    std::string_view token;
    if (!Operand(token)) return false;
    return token == text || Unexpected();
}

bool DocumentReader::Stop(std::string message) {
    AddError(ReadingError::Kind::kStop, std::move(message));
    return false;
}

void DocumentReader::AddError(ReadingError::Kind kind, std::string message) {
    m_form.errors.push_back({kind, m_tokenBegin, m_archive.LineNumber(), std::move(message)});
}

void DocumentReader::EndsInside(std::string_view section) {
    AddError(ReadingError::Kind::kPassedOver,
             "the file ends inside the section \"" + std::string(section) + "\"");
}

DocumentRecord DocumentReader::Begun() const { return {m_tokenBegin, m_tokenBegin}; }

// What ended the token has been passed as well, and is none of it.
size_t DocumentReader::TokenEnd() const {
    const std::string_view text = m_archive.Text();
    size_t end = m_archive.Position();
    while (end > m_tokenBegin && EndsToken(text[end - 1])) --end;
    return end;
}

}  // namespace tavrin
