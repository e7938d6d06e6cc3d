// SPDX-License-Identifier: Apache-2.0
// The one reader of the format of documents. It is deliberately no mirror of the writer: sections may come in
// any order, indentation and blank lines mean nothing, and unknown words between sections are passed over.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "document/DocumentForm.h"

namespace tavrin {

// Reads a text from its beginning to its end, or to the first error that the format calls an end. Nothing is
// reported: the form holds the errors.
DocumentForm ReadDocument(CArchive archive);

// What the user is told of a file whose form is no document's.
std::string NoDocumentMessage(const DocumentForm& form);

// Reads only the first desk section, wherever in the text its keyword stands, and which boxes are muted, and
// the frames and notes, if that stands before it; a form without a desk section if it stands nowhere.
DocumentForm ReadDesk(CArchive archive);

// At work behind these. The desk's section is in DeskSectionReader.cpp, a box's buttons are in
// ButtonSectionReader.cpp. Operations that return false have put the error that stops the reading into the
// form.
class DocumentReader {
  public:
    explicit DocumentReader(CArchive archive);

    // One of the two, once.
    DocumentForm Read();
    DocumentForm ReadDeskAlone();

  private:
    bool ReadSection(std::string_view keyword);
    template <typename Record>
    bool ReadWord(std::string_view Record::*word);
    bool ReadFrame();
    bool ReadToolbar();
    bool ReadRenderOptions();
    void ReadExportOptions();
    bool ReadHelp();

    bool ReadOpDesk();
    bool ReadDeskItem(DeskRecord& desk, std::string_view keyword);
    bool ReadDeskSetting(DeskRecord& desk, std::string_view keyword);
    bool ReadOpBox(DeskRecord& desk);
    bool ReadBoxItem(BoxRecord& box, std::string_view keyword);
    bool ReadConnects(DeskRecord& desk);
    bool ReadConnection(std::string_view source, ConnectionRecord& connection);
    bool ScanEnd(std::string_view text, ConnectionRecord::End& end);

    bool ReadOpBoxButton(BoxRecord& box, std::string_view kind);
    bool ReadButtonBlock(ButtonRecord& button);
    bool ReadButtonItem(ButtonRecord& button, std::string_view keyword);
    bool ReadText(ButtonRecord& button, std::string_view keyword);
    bool ReadNumbers(ButtonRecord& button, const NumberType& type);
    bool ReadGeneric(ButtonRecord& button, std::string_view keyword);

    // The next token, as a view that lives as long as the form; false at the end of the text.
    bool Next(std::string_view& token);
    bool Operand(std::string_view& token) { return Next(token) || Unexpected(); }
    bool Operand(int& number);
    // Left empty where there is none.
    template <typename Value>
    bool Operand(std::optional<Value>& value) {
        Value read{};
        if (!Operand(read)) return false;
        value = read;
        return true;
    }
    // `read` counts those that there are.
    bool Operands(std::span<float> numbers, size_t& read);
    bool Expect(std::string_view text);
    bool Stop(std::string message);
    bool Unexpected() { return Stop("unexpected input"); }
    void AddError(ReadingError::Kind kind, std::string message);
    // The text is cut: what came before its end counts, and reading has come to that end.
    void EndsInside(std::string_view section);

    // A record that begins with the token read last.
    DocumentRecord Begun() const;
    // What was read last is the record's end.
    void End(DocumentRecord& record) const { record.end = TokenEnd(); }
    size_t TokenEnd() const;
    template <typename Record>
    Record& AddSection(const DocumentRecord& begun) {
        return std::get<Record>(m_form.sections.emplace_back(Record{begun, {}}));
    }

    DocumentForm m_form;
    CArchive& m_archive;
    size_t m_frames = 0;      // how many there are so far
    std::string m_token;      // of a token that has to be put together
    size_t m_tokenBegin = 0;  // of the token read last
};

}  // namespace tavrin
