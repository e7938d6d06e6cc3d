// SPDX-License-Identifier: Apache-2.0
#include "document/DocumentFormWriter.h"

#include <utility>

#include "document/DocumentForm.h"
#include "document/DocumentLayout.h"
#include "text/StoredText.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

class FormWriter : private DocumentLayout {
  public:
    explicit FormWriter(const DocumentForm& form) : m_form(form) {}

    std::string Write() {
        // The text begins and ends with the same comment, which is no record.
        std::string header;
        if (m_form.Text().starts_with('#'))
            header = std::string(TrimRight(m_form.Text().substr(0, m_form.Text().find('\n')))) + "\r\n\r\n";
        Put(header);
        for (const SectionRecord& section : m_form.sections)
            std::visit([this](const auto& record) { WriteRecord(record); }, section);
        Put(header);
        return std::move(m_text);
    }

  private:
    void WriteRecord(const VersionRecord& record) { PutVersion(TokenText(record.version)); }
    void WriteRecord(const LibraryRecord& record) { PutLibrary(record.name); }
    void WriteRecord(const MutedRecord& record) { PutMuted(record.wids); }
    void WriteRecord(const FrameRecord& record) { PutFrame(record.words); }
    void WriteRecord(const HelpRecord& record) { PutHelp(record.text); }

    void WriteRecord(const ToolbarRecord& toolbar) {
        BeginSection("toolbar");
        for (size_t i = 0; i < toolbar.operators.size(); ++i) PutToolButton(i, toolbar.operators[i]);
        EndSection();
    }

    void WriteRecord(const RenderOptionsRecord& section) {
        BeginSection("renderoptions");
        for (const RenderOptionRecord& option : section.options)
            PutRenderOption(TokenText(option.name), option.value);
        EndSection();
    }

    // Their lines end in LF alone.
    void WriteRecord(const ExportOptionsRecord& section) {
        BeginSection("exportoptions");
        for (const ExportOptionRecord& option : section.options)
            Put("    " + std::string(option.key) + " " + OneLine(option.line) + "\n");
        EndSection();
    }

    void WriteRecord(const DeskRecord& desk) {
        BeginSection("opdesk");
        BeginBoxes();
        WriteItems<BoxRecord>(desk);
        BeginConnections();
        WriteItems<ConnectionRecord>(desk);
        EndConnections();
        WriteItems<DeskSettingRecord>(desk);
        EndSection();
    }

    template <typename Record>
    void WriteItems(const DeskRecord& desk) {
        for (const auto& item : desk.items) {
            if (const auto* record = std::get_if<Record>(&item)) WriteRecord(*record);
        }
    }

    void WriteRecord(const BoxRecord& box) {
        const std::string name = TokenText(box.operatorName);
        const BoxSettingRecord* wid = box.LastSetting("wid");
        const BoxSettingRecord* place = box.LastSetting("xypos");
        const BoxSettingRecord* most = box.LastSetting("opboxdefs");
        BeginBox(OneLine(box.operatorName) + "_" + std::to_string(wid == nullptr ? 0 : wid->integer));
        Line("        filename ", name);
        if (wid != nullptr) Line("        wid ", wid->integer);
        if (place != nullptr && place->IsWhole()) {
            Put("        xypos");
            WriteFixed(place->numbers.data(), place->numberCount);
            Line(kLineEnd);
        }
        if (most != nullptr) PutMaxInstances(most->integer);
        for (const ButtonRecord& button : box.buttons) WriteRecord(button);
        EndBox();
    }

    void WriteRecord(const ButtonRecord& button) {
        BeginButton(button.kind, TokenText(button.name), TokenText(button.fullName), button.cast);
        WriteSetting("pin", button.pin);
        WriteSetting("stow", button.stow);
        WriteSetting("lock", button.lock);
        WriteSetting("arg", button.arg);
        WriteSetting("argname", button.argname);
        WriteSetting("comments", button.comments);
        for (const ValueRecord& value : button.values) WriteRecord(value);
        EndButton();
    }

    void WriteSetting(const char* keyword, std::optional<int> number) {
        if (!number) return;
        IndentButtonItem();
        Line(keyword, " ", *number);
    }
    void WriteSetting(const char* keyword, std::optional<std::string_view> text) {
        if (!text) return;
        IndentButtonItem();
        Line(keyword, " ", QuoteString(*text));
    }

    void WriteRecord(const ValueRecord& value) {
        if (!value.IsWhole()) return;
        IndentButtonItem();
        if (IsGenericType(value.type)) return Line(m_form.TextOf(value));  // a line and no tokens
        Put(value.type);
        if (value.type == type_words::kString) return Line(" ", QuoteString(value.text));
        for (size_t i = 0; i < value.numberCount; ++i) {
            Put(" ");
            Put(value.numbers[i]);
        }
        if (value.integer) Put(" " + std::to_string(*value.integer));
        Line();
    }

    void WriteRecord(const ConnectionRecord& connection) {
        const auto end = [](const ConnectionRecord::End& own) {
            return WireEnd{own.operatorName, own.wid, own.button, own.position};
        };
        PutConnection(end(connection.source), end(connection.target));
    }

    void WriteRecord(const DeskSettingRecord& setting) {
        if (!setting.IsWhole()) return;
        PutDeskKeyword(setting.keyword);
        if (setting.keyword == "linetype") return Line(setting.flag == 1 ? "trace" : "direct");
        if (!setting.HasNumbers()) return Line(setting.flag);
        m_text.pop_back();  // the column's last blank, which stands before each number
        WriteFixed(setting.numbers.data(), setting.numberCount);
        Line();
    }

    void WriteFixed(const float* numbers, size_t count) {
        for (size_t i = 0; i < count; ++i) Put(" " + Fixed(numbers[i]));
    }

    const DocumentForm& m_form;
};

}  // namespace

std::string WriteForm(const DocumentForm& form) { return FormWriter(form).Write(); }

}  // namespace tavrin
