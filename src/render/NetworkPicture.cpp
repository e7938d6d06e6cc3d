// SPDX-License-Identifier: Apache-2.0
#include "render/NetworkPicture.h"

#include <algorithm>
#include <unordered_map>

#include "document/TvDoc.h"
#include "library/OpButton.h"

namespace tavrin {

namespace {

using Shape = NetworkPicture::Shape;

bool IsShapeOf(const Shape& shape, const COpButton& button) {
    const auto isType = [](const std::string& type, const auto& value) { return type == value->type; };
    return shape.name == button.name && shape.isOutput == button.IsOutput() &&
           shape.isVinput == (button.kind == ButtonKind::kVinput) &&
           std::equal(shape.types.begin(), shape.types.end(), button.values.begin(), button.values.end(),
                      isType);
}

Shape ShapeFrom(const COpButton& button) {
    Shape shape{button.name, button.IsOutput(), button.kind == ButtonKind::kVinput, {}};
    for (const auto& value : button.values) shape.types.push_back(value->type);
    return shape;
}

// Takes a network into a picture that is empty before. Used once.
class Taking {
  public:
    explicit Taking(NetworkPicture& picture) : m_picture(picture) {}

    void Take(const CTvDoc& document) {
        std::vector<const COpBox*> boxes;
        boxes.reserve(document.m_boxes.size());
        for (const auto& box : document.m_boxes) boxes.push_back(box.get());
        // Of a number that a file has twice, the boxes stand in the order in which they were made: the stack
        // is the desk's affair.
        std::sort(boxes.begin(), boxes.end(), [](const COpBox* left, const COpBox* right) {
            return left->wid != right->wid ? left->wid < right->wid : left->Serial() < right->Serial();
        });
        MakeRoom(boxes);
        for (const COpBox* box : boxes) Take(*box);
        for (size_t i = 0; i < boxes.size(); ++i) TakeWires(*boxes[i], m_picture.boxes[i]);
        m_picture.options = document.m_renderOptions;
        m_picture.help = document.customshaderhelp;
    }

  private:
    void MakeRoom(const std::vector<const COpBox*>& boxes) {
        size_t buttons = 0;
        size_t values = 0;
        for (const COpBox* box : boxes) {
            buttons += box->inputs.size() + box->outputs.size();
            for (const auto& input : box->inputs) values += input->values.size();
        }
        m_picture.boxes.reserve(boxes.size());
        m_picture.buttons.reserve(buttons);
        m_picture.values.reserve(values);
        m_firstOutputs.reserve(boxes.size());
    }

    void Take(const COpBox& box) {
        NetworkPicture::Box& taken = m_picture.boxes.emplace_back();
        taken.operatorName = box.filename;
        taken.wid = box.wid;
        taken.place = {box.xypos[0], box.xypos[1]};
        taken.isPlaceholder = box.IsPlaceholder();
        taken.firstButton = NextButton();
        std::vector<uint32_t>& likely = m_likely[box.filename];
        likely.resize(std::max(likely.size(), box.inputs.size() + box.outputs.size()), NetworkPicture::kNone);
        auto place = likely.begin();
        for (const auto& input : box.inputs) Take(*input, *place++);
        m_firstOutputs[&box] = NextButton();
        for (const auto& output : box.outputs) Take(*output, *place++);
        taken.buttonCount = NextButton() - taken.firstButton;
    }

    void Take(const COpButton& button, uint32_t& likely) {
        if (likely == NetworkPicture::kNone || !IsShapeOf(m_picture.shapes[likely], button))
            likely = PlaceOfShape(button);
        NetworkPicture::Button& taken = m_picture.buttons.emplace_back();
        taken.shape = likely;
        taken.box = static_cast<uint32_t>(m_picture.boxes.size() - 1);
        taken.firstValue = static_cast<uint32_t>(m_picture.values.size());
        taken.currentCast = static_cast<uint32_t>(button.currentcast);
        taken.instance = button.instance;
        taken.arg = button.arg;
        taken.argname = button.argname;
        taken.comments = button.comments;
        if (button.IsOutput()) return;
        for (const auto& value : button.values) m_picture.values.push_back(StateOf(*value));
    }

    uint32_t PlaceOfShape(const COpButton& button) {
        Shape shape = ShapeFrom(button);
        const auto [known, isNew] =
            m_shapes.try_emplace(shape.Key(), static_cast<uint32_t>(m_picture.shapes.size()));
        if (isNew) m_picture.shapes.push_back(std::move(shape));
        return known->second;
    }

    // A file may hold a wire to a box that it holds no more.
    void TakeWires(const COpBox& box, const NetworkPicture::Box& taken) {
        for (size_t i = 0; i < box.inputs.size(); ++i) {
            const COpButton* output = box.inputs[i]->connections.First();
            if (output == nullptr) continue;
            const auto source = m_firstOutputs.find(output->owner);
            if (source == m_firstOutputs.end()) continue;
            m_picture.buttons[taken.firstButton + i].feeder =
                source->second + static_cast<uint32_t>(output->owner->IndexOfButton(*output));
        }
    }

    uint32_t NextButton() const { return static_cast<uint32_t>(m_picture.buttons.size()); }

    NetworkPicture& m_picture;
    std::unordered_map<const COpBox*, uint32_t> m_firstOutputs;
    std::unordered_map<std::string, uint32_t> m_shapes;
    // Of the operator's box before this one: mostly they are the same.
    std::unordered_map<std::string, std::vector<uint32_t>> m_likely;
};

}  // namespace

// Names and types hold no line feeds: they are bare tokens.
std::string NetworkPicture::Shape::Key() const {
    std::string key = name + (isOutput ? "\no" : isVinput ? "\nv" : "\ni");
    for (const std::string& type : types) key.append("\n").append(type);
    return key;
}

std::string NetworkPicture::TitleOf(const Box& box) const {
    return box.operatorName + "_" + std::to_string(box.wid);
}

std::string NetworkPicture::DisplayNameOf(const Button& button) const {
    const Shape& shape = ShapeOf(button);
    return shape.isVinput ? shape.name + std::to_string(button.instance) : shape.name;
}

NetworkPicture CaptureNetwork(const CTvDoc& document) {
    NetworkPicture picture;
    Taking(picture).Take(document);
    return picture;
}

}  // namespace tavrin
