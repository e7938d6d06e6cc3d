// SPDX-License-Identifier: Apache-2.0
// One terminal of a box.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "library/ConnectionSet.h"
#include "library/LiveObjects.h"
#include "library/Value.h"

namespace tavrin {

class COpBox;
class Report;
class TypeTables;
struct NameSource;

// What a button is, by the numbers that formats have for it.
enum class ButtonKind : int {
    kInput = 1,
    kVinput = 2,  // an input that the user may multiply
    kOutput = 3,
};

// What a button knows of its wires.
struct ButtonWires {
    ConnectionSet connections;
    ConnectionSet namedBy;

    bool operator==(const ButtonWires&) const = default;
};

// Owned by its box. A button is made by the definition reader, as a clone of another, or as a further
// instance of a vinput; its destruction cuts its connections.
// What it is called in code stands in BoxCode.cpp, its wires in ButtonConnections.cpp.
class COpButton : public LiveObject<COpButton> {
  public:
    COpButton(COpBox* box, ButtonKind buttonKind) : owner(box), kind(buttonKind) {}
    // Copies everything, values cloned, but starts with no connections.
    COpButton(const COpButton& other);
    COpButton& operator=(const COpButton&) = delete;
    virtual ~COpButton();

    // What every generation of code reads comes first, so that it lies together.
    COpBox* owner;
    ButtonKind kind;
    int arg = 0;                                    // the button is an argument of the finished shader
    size_t currentcast = 0;                         // index into `values`
    std::string name;                               // from the definition; also the macro name in templates
    std::vector<std::unique_ptr<COpValue>> values;  // one for each cast, in definition order
    ConnectionSet connections;                      // peers; its size is what "connected" means
    std::string tieback;        // outputs: display name of the box's input that this output passes through
    std::string fixedvalue;     // outputs: text that stands for the output
    std::string fixedtext;      // replaces the value of an unconnected input
    std::string vargseparator;  // vinputs: text between the instances' values in the joined macro value
    int instance = 1;           // number among equally named neighbours
    int vinstances = 0;         // vinputs: how many instances a new box starts with
    std::string help;           // lines joined by CR LF
    std::vector<std::string> aliases;  // what the definition says that it was called before
    int disableargflag = 0;            // the user gets no Argument entry
    int disableconnectflag = 0;        // nothing may be connected
    // How the argument is shown.
    std::string argname;  // empty for automatic
    std::string comments;
    int pin = 0;
    int lock = 0;
    int stow = 0;
    // The block that a document has for a button which the definition lacks, and is saved as; null for one of
    // the definition.
    std::shared_ptr<const std::string> stray;

    // The library knows nothing of it: it is stray, or its box is a placeholder. It is shown and can be
    // wired, is saved as it came, and generation passes over it and its wires.
    bool IsUnknown() const;
    bool IsOutput() const { return kind == ButtonKind::kOutput; }
    // The name, with the instance number behind it for a vinput.
    std::string DisplayName() const;
    // What the user is told of it: of a placeholder's button, why there is no more.
    const std::string& HelpText() const;
    // "input", "vinput" or "output".
    std::string_view KindText() const;

    COpValue* FindValue(std::string_view type);
    // The index of the value of that type, or -1. "generic" also finds the first of any generic type.
    int FindCast(std::string_view type) const;
    // The type of the current cast; the empty text for an output that has no type at all.
    const std::string& CurrentType() const;
    // The literal of the current value.
    std::string ValueText() const;
    // Makes a cast current, and that of each button of the box that a castlock pair ties to this one,
    // where that button has the type. An index that is none does nothing.
    void SetCast(size_t index);
    // The type as the target language words it.
    std::string DisplayCastName(size_t index, const TypeTables& types) const;

    // What the button is called in generated code.

    // The name of the button's variable; for an output with a fixed value that value, expanded with the
    // variables of its box; for one tied back to an input whatever feeds that input.
    std::string VariableName(const NameSource& names) const;
    // Empty unless the button is an argument.
    std::string ArgumentName(const NameSource& names) const;
    // What the templates of an input's box get for its name: the variable of what is connected, else the
    // fixed text, else the argument's name, else the literal.
    std::string MacroValue(const NameSource& names) const;
    // The declaration of the button's variable.
    std::string Declaration(const TypeTables& types, const NameSource& names) const;

    // An output that stands for an input of its box: the one that it is tied back to or, if the box is muted,
    // its first input of the output's type. An output without any type takes the first input.
    bool PassesThrough() const { return !tieback.empty() || (IsOfMutedBox() && FirstOfItsType() != nullptr); }
    // The input; null if that is not there, which it is for the definition to say of a tieback.
    const COpButton* PassedInput() const;

    // Connections. There is no record for one: each end holds the other.

    // What feeds an input as far as generation goes: null without a wire, where either end is unknown to the
    // library, and where a muted box has nothing to stand for its output.
    const COpButton* Feeder() const;

    // The two may be wired as far as kinds and flags go.
    bool CanConnect(const COpButton& other) const;
    // Wiring the two would close a cycle: the box that would be fed reaches the one that would feed it.
    bool WouldLoop(const COpButton& other) const;
    // True if `start` is `source`, or any connection downstream of `start` leads there. Ends on networks
    // that hold a cycle as well.
    static bool ReachesForward(const COpBox& source, const COpBox& start);
    // Wires the two; callers have tested. An input gives up its former source. Called on an output for a
    // pair that is wired already, it leaves only the input's side of the connection.
    void Connect(COpButton& other);
    // Cuts all connections.
    void Disconnect();
    // The buttons that hold this one in their `connections`. The same as `connections` but for the one-sided
    // case of Connect.
    const ConnectionSet& NamedBy() const { return m_namedBy; }

    // Both ends of its wires, as they stand.
    ButtonWires Wires() const { return {connections, m_namedBy}; }
    // Puts them back as they stood, at this end alone: for who does so with all buttons that are named in
    // them.
    void SetWires(const ButtonWires& wires);

    // Cuts all wires, at both ends of the one-sided ones too, and makes the button count as gone until it is
    // revived.
    void Park();
    void Unpark() { Revive(); }

  private:
    bool IsOfMutedBox() const;  // as an output
    const COpButton* FirstOfItsType() const;
    void Isolate();
    void AddPeer(COpButton& peer);
    void DropPeer(COpButton& peer);

    ConnectionSet m_namedBy;  // lets the destructor leave no pointer behind
};

}  // namespace tavrin
