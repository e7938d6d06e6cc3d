// SPDX-License-Identifier: Apache-2.0
// One operator instance. A definition and an instance are one class: every box has read its operator's
// definition itself, and owns its own copy of everything in it.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "codegen/CodeGen.h"
#include "library/LiveObjects.h"
#include "library/OpButton.h"

namespace tavrin {

class BoxMerge;
class COpRegistry;
class CArchive;
class DefinitionTexts;
class Report;
class TypeTables;
struct COpEntry;
struct DefinitionSource;
struct DefinitionText;
struct NameSource;
struct Placeholder;
struct Site;

// Where the desk has laid a box out, in desk units: x to the right, y upward. Made anew from the box's
// anchor, buttons and texts whenever one of them or the zoom changes; never saved.
struct BoxLayout {
    float left = 0;
    float bottom = 0;  // of the body; the title stands on top of it
    float titleHeight = 0;
    float width = 0;
    float bodyHeight = 0;
    float leftColumnWidth = 0;  // the inputs
    float rightColumnWidth = 0;
};

// Owned by exactly one list: the document's network, the desk's pending or clipboard boxes, or, parked, a
// step of the document's history. Its definition is read in BoxDefinition.cpp, its code made in BoxCode.cpp.
class COpBox : public LiveObject<COpBox> {
  public:
    COpBox() = default;
    // Clones every button, without connections; `wid` and `selected` are 0. Templates and castlock pairs
    // are not copied: a clone has none until its document is saved and read again, or until it takes them.
    COpBox(const COpBox& other);
    COpBox& operator=(const COpBox&) = delete;
    virtual ~COpBox() = default;

    // Runs the operator's definition through the library's preprocessor and reads the result, or reads what
    // the boxes of one operation share of that. On failure false, the cause reported, the box as far as it
    // got: its owner destroys it.
    bool Define(const std::string& operatorName, const COpRegistry& registry, Site& site,
                DefinitionTexts* texts = nullptr);

    // The same for a name that no operator has, if the definition of one says that it was called so. Nothing
    // is reported of that.
    bool DefineByAlias(const std::string& operatorName, const COpRegistry& registry, Site& site,
                       DefinitionTexts* texts = nullptr);

    // Reads a preprocessed definition. Relative files of template clauses lie in `libraryDir`. With the path
    // of the operator's file, messages tell it, and the line of it where the preprocessor does.
    bool ReadDefinition(CArchive& archive, const std::string& libraryDir, Report& report,
                        const std::string& operatorPath = {});
    // Reads what one run over an operator's file has given; failures go to `report`.
    bool ReadText(const COpEntry& entry, const DefinitionText& text, Site& site, Report& report);

    // Takes what a clone is left without from the box that it was made of.
    void TakeTemplates(const COpBox& original);

    std::string filename;  // operator name and title
    int wid = 0;           // number on the desk; 0 until it is admitted
    std::string iconimg;
    float xypos[2] = {0, 0};  // anchor in desk units
    int size[2] = {0, 0};     // least width and height in desk units; 0 lets the texts decide
    float color[3] = {0, 0, 0};
    std::string icontext;
    std::string boxhelp;                // lines joined by CR LF
    std::vector<std::string> aliases;   // what the definition says that it was called before
    std::vector<std::string> keywords;  // by which the operator is found as well; a clone has none
    int maxinstances = 0;               // how many the desk may hold; 0 means any number
    // Makes no code: each output stands for an input of its type, as COpButton::PassedInput has it.
    int muted = 0;
    std::multimap<std::string, std::string> castlock;  // names of buttons whose casts move together
    CCodeGen codegen;
    bool lacksTemplates = false;                     // a clone, of a box whose definition has some
    std::vector<std::unique_ptr<COpButton>> inputs;  // inputs and vinputs, top to bottom
    std::vector<std::unique_ptr<COpButton>> outputs;
    std::vector<std::string> vinputNames;  // those of the definition, whether an instance is left or not
    // What it was read from; a clone has its original's. Null for one that no preprocessor's run gave.
    std::shared_ptr<const DefinitionSource> source;
    // What the box stands for whose operator cannot be had; null for a real one. Clones share it.
    std::shared_ptr<const Placeholder> placeholder;
    int selected = 0;
    BoxLayout layout;  // a clone starts with none

    bool IsPlaceholder() const { return placeholder != nullptr; }
    // The name of the box in menus, comments and generated variable names: title, "_", number.
    std::string BoxTitleWid() const;

    // By display name, inputs first, of those that the definition knows; nothing if there is none.
    COpButton* FindButton(std::string_view displayName);
    const COpButton* FindButton(std::string_view displayName) const;
    // Clones an input right before or right after itself and renumbers; the clone.
    COpButton* CopyButton(COpButton& button, bool above);
    // Takes an input out and renumbers; null if it is none of the box's. Its wires stand until it is
    // destroyed or parked.
    std::unique_ptr<COpButton> TakeButton(COpButton& button);
    // Destroys it instead.
    void DeleteButton(COpButton& button) { TakeButton(button); }
    // Numbers equally named neighbours among the inputs 1, 2, 3.
    void RenumberInputs();
    // The position among the inputs or, for an output, among the outputs.
    size_t IndexOfButton(const COpButton& button) const;
    int CountInputsNamed(std::string_view name) const;  // of those
    void ClearButtons();

    // Cuts all wires of the box and makes it count as gone, with its buttons, until it is revived. Whoever
    // parks it owns it, in none of the lists above.
    void Park();
    void Unpark();

    // Code generation, by which nothing of the box changes.

    // Sets the macro variables that every template can use on an expander, in their order.
    void PrepareVariables(CMex& expander, const TypeTables& types) const;
    // Has an output whose name the box's variables are needed for.
    bool HasFixedValue() const;
    // Expands the box's templates and merges them into the working copy. The variables of all boxes with a
    // fixed value have been prepared in `names`.
    void GenerateCode(BoxMerge& merge, const TypeTables& types, const NameSource& names) const;

  private:
    bool DefineFrom(const COpEntry& entry, const COpRegistry& registry, Site& site, DefinitionTexts* texts);
    void ForgetDefinition();
};

}  // namespace tavrin
