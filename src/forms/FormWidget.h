// SPDX-License-Identifier: Apache-2.0
// The widgets of the render options form, as data. Windows show them and hand them what the user enters;
// every rule about values is here.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "forms/FormGrid.h"
#include "forms/FormVisitor.h"

namespace tavrin {

class FormHost;
class Report;

// What the body of a widget says beside the widget's own fields. Bodies are only collected while they are
// read, so the order of their lines does not matter.
struct FormDraft {
    std::string value;     // the initial value or state
    bool unsaved = false;  // the option is not written into documents
};

// An action that a widget may send to the application. Without a target nothing is sent.
struct FormAction {
    std::string to;
    std::string message;
    std::string argument;
    bool isHeld = false;  // it runs a command that the user has not agreed to: see FormCommands.h

    bool IsSet() const { return !to.empty(); }
};

// Owned by its frame.
class CFormWidget {
  public:
    CFormWidget() = default;
    CFormWidget(const CFormWidget&) = delete;
    CFormWidget& operator=(const CFormWidget&) = delete;
    virtual ~CFormWidget() = default;

    std::string help;  // text of the "Info..." button, lines joined by CR LF

    // Set by the window that shows the widget: called when the widget's state changed by anything but
    // the window's own controls.
    std::function<void()> refresh;

    virtual void Accept(FormVisitor& visitor) = 0;

    // An option changed elsewhere: shown if it is the widget's own, and not stored.
    virtual void OptionChanged(const std::string& /*name*/, const std::string& /*value*/) {}
    // Takes the default of the widget's option and stores it as if the user had entered it.
    virtual void LoadDefaults(FormHost& /*host*/) {}

    // The body of the widget has been read whole.
    virtual void Finish(const FormDraft& /*draft*/, FormHost& /*host*/, Report& /*report*/) {}
    // After that: what its author should know of the widget, one sentence for each fault.
    virtual std::vector<std::string> Faults(const FormDraft& /*draft*/) const { return {}; }
    // The widget is about to be destroyed while the program goes on.
    virtual void Removed(FormHost& /*host*/) {}

  protected:
    void Refresh() const {
        if (refresh) refresh();
    }
};

// Base of the widgets that are bound to one option. Without a name they still store their initial value,
// under the empty name, but nothing that the user enters.
class CFormOption : public CFormWidget {
  public:
    std::string envname;

    // The user entered this: taken, and stored if there is a name to store it under.
    void Read(const std::string& value, FormHost& host);

    void OptionChanged(const std::string& name, const std::string& value) override;
    void LoadDefaults(FormHost& host) override;
    void Finish(const FormDraft& draft, FormHost& host, Report& report) override;
    std::vector<std::string> Faults(const FormDraft& draft) const override;

  protected:
    // Without a name the widget would be good for nothing.
    virtual bool NeedsName() const { return true; }
    // Takes a value as it is, for display.
    virtual void Show(const std::string& value) = 0;
    // Takes a value by the widget's rules. The text to be stored for it; nothing if the value is none of
    // the widget's, which then stays as it was.
    virtual std::optional<std::string> Take(const std::string& value) = 0;
};

}  // namespace tavrin
