// SPDX-License-Identifier: Apache-2.0
// The fixed layout of documents, to the byte: what stands round the texts and numbers of a document, whoever
// has them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "text/Numbers.h"

namespace tavrin {

// Base of a writer that goes through a document from its beginning to its end. Texts are given as they are to
// stand there.
class DocumentLayout {
  protected:
    static constexpr std::string_view kLineEnd = "\r\n";

    template <typename... Pieces>
    void Line(const Pieces&... pieces) {
        (Put(pieces), ...);
        m_text += kLineEnd;
    }
    void Put(std::string_view text) { m_text += text; }
    void Put(const std::string& text) { m_text += text; }
    void Put(const char* text) { m_text += text; }
    void Put(int number) { m_text += std::to_string(number); }
    void Put(size_t number) { m_text += std::to_string(number); }
    void Put(bool flag) { m_text += flag ? '1' : '0'; }
    void Put(float number) { AppendG(m_text, static_cast<double>(number)); }

    static std::string Fixed(float number) { return FormatF(static_cast<double>(number)); }

    void PutVersion(std::string_view version) { Line("tavrn-version ", version, kLineEnd); }
    void PutLibrary(std::string_view name);
    void PutMuted(std::string_view wids);
    void PutFrame(std::string_view words);
    void BeginSection(std::string_view keyword) { Line(keyword, "\r\n{"); }
    void EndSection() { Line("}\r\n"); }
    void PutToolButton(size_t number, std::string_view operatorName);
    void BeginBoxes() { Line("    # BOXES"); }
    void BeginBox(std::string_view title) { Line("\r\n    # ", title, "\r\n    opbox\r\n    {"); }
    void PutMaxInstances(int number);
    void EndBox() { Line("    }"); }
    void BeginButton(std::string_view kind, std::string_view name, std::string_view displayName,
                     std::string_view cast);
    // Before the keyword of a setting or value of a button.
    void IndentButtonItem() { Put("                    "); }
    void EndButton() { Line("                }\r\n            }\r\n        }"); }
    void BeginConnections() { Line("\r\n    opconnects\r\n    {"); }
    struct WireEnd {
        std::string_view operatorName;
        int wid;
        std::string_view button;
        int position;
    };
    void PutConnection(const WireEnd& source, const WireEnd& target);
    void EndConnections() { Line("    }\r\n\r\n    # DESK STATE"); }
    // The keyword of a setting of the desk, up to its value.
    void PutDeskKeyword(std::string_view keyword);
    void PutRenderOption(std::string_view name, std::string_view value);
    void PutHelp(std::string_view text);

    std::string m_text;  // what has been written

  private:
    static std::string WireEndText(const WireEnd& end);
};

}  // namespace tavrin
