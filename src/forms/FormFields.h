// SPDX-License-Identifier: Apache-2.0
// The widgets with edit boxes.
#pragma once

#include <array>
#include <string>

#include "forms/FormWidget.h"
#include "forms/PresetList.h"

namespace tavrin {

// Base of the fields of one option with a list of presets.
class CFormPresetField : public CFormOption {
  public:
    bool forcefloat = false;  // whole numbers are stored with one decimal
    PresetList presets;

    // The user chose a line of the list; presets other than the caption are read as if entered.
    void ChoosePreset(int index, FormHost& host);
    const std::string& InfoTitle() const { return presets.Caption(); }

  protected:
    // What the edit boxes give together once they hold what the line says.
    virtual std::string PresetValue(const std::string& line) const = 0;
};

// "xfield": one value.
class CFormXField : public CFormPresetField {
  public:
    std::string text;

    void Accept(FormVisitor& visitor) override { visitor.Visit(*this); }

  protected:
    void Show(const std::string& value) override { text = value; }
    std::optional<std::string> Take(const std::string& value) override;
    std::string PresetValue(const std::string& line) const override;
};

// "xyfield": two values in one option.
class CFormXYField : public CFormPresetField {
  public:
    std::string xText;
    std::string yText;
    std::string separatorLabel;  // shown between the two boxes
    char separator = ',';        // joins the two in the option; the boxes never show it

    // The user changed one of the boxes. Together they are one text that is split like any other value.
    void ReadBoxes(const std::string& x, const std::string& y, FormHost& host) { Read(x + ',' + y, host); }

    void Accept(FormVisitor& visitor) override { visitor.Visit(*this); }

  protected:
    void Show(const std::string& value) override;
    std::optional<std::string> Take(const std::string& value) override;
    std::string PresetValue(const std::string& line) const override;
};

// "xyzfield": three options side by side.
class CFormXYZField : public CFormWidget {
  public:
    struct Axis {
        std::string envname;  // an axis without a name stores nothing
        std::string text;
        PresetList presets;
    };
    std::array<Axis, 3> axes;  // x, y and z
    std::string headingLabel;
    bool forcefloat = false;  // for all three

    // The user changed a box: all three are stored, in their order.
    void ReadBoxes(const std::array<std::string, 3>& texts, FormHost& host);
    void ChoosePreset(size_t axis, int index, FormHost& host);
    const std::string& InfoTitle() const { return headingLabel; }

    void Accept(FormVisitor& visitor) override { visitor.Visit(*this); }
    void OptionChanged(const std::string& name, const std::string& value) override;
    void LoadDefaults(FormHost& host) override;
    void Finish(const FormDraft& draft, FormHost& host, Report& report) override;
    std::vector<std::string> Faults(const FormDraft& draft) const override;

  private:
    void StoreAll(FormHost& host);
};

// "stringinput": a text, perhaps the path of a file.
class CFormStringInput : public CFormOption {
  public:
    std::string label;
    std::string text;
    bool file = false;    // shows the "File..." button
    std::string lastDir;  // where its file dialog opens

    // The user chose a file; its path becomes the text as it is.
    void TakeFile(const std::string& path, FormHost& host);
    const std::string& InfoTitle() const { return label; }

    void Accept(FormVisitor& visitor) override { visitor.Visit(*this); }

  protected:
    void Show(const std::string& value) override { text = value; }
    std::optional<std::string> Take(const std::string& value) override;
};

}  // namespace tavrin
