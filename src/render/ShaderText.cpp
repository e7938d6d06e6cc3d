// SPDX-License-Identifier: Apache-2.0
#include "render/ShaderText.h"

#include <unordered_set>
#include <utility>

#include "codegen/BoxMerge.h"
#include "document/TvDoc.h"
#include "library/Placeholder.h"
#include "library/TiebackEnds.h"
#include "render/HelpLines.h"
#include "site/Site.h"
#include "text/StoredText.h"

namespace tavrin {

namespace {

constexpr const char* kStars = "************************************************************************";

// The document's help as a comment at the head of the shader, in a language that has comments of more
// than a line.
void AddHelpBanner(CCodeGen& shader, const std::string& help) {
    const std::vector<std::string> lines = HelpLines(help);
    if (shader.m_openComment.empty() || shader.m_closeComment.empty() || lines.empty()) return;
    const auto add = [&shader](std::string line) {
        shader.AddLine(CCodeGen::kGlobalOpen, LineKind::kAppend, std::move(line));
    };
    add(shader.m_openComment);
    add(kStars);
    for (const std::string& line : lines) add(line);
    add(kStars);
    add(shader.m_closeComment);
}

// A file can bring a circle of wires, whose boxes never come into the order.
void WarnOfCircles(const CTvDoc& document, const std::vector<COpBox*>& ordered, Report& report) {
    if (ordered.size() == document.m_boxes.size()) return;
    const std::unordered_set<const COpBox*> generated(ordered.begin(), ordered.end());
    const COpBox* first = nullptr;
    for (const auto& box : document.m_boxes) {
        if (!generated.contains(box.get()) && (first == nullptr || box->wid < first->wid)) first = box.get();
    }
    const size_t others = document.m_boxes.size() - ordered.size() - 1;
    const std::string more = others == 0 ? "" : " and " + std::to_string(others) + " more";
    report.LogLine("WARNING: %s%s %s part of a circle of wires, so no code is generated for %s",
                   first->BoxTitleWid().c_str(), more.c_str(), others == 0 ? "is" : "are",
                   others == 0 ? "it" : "them");
}

// A library may leave a copied box without them.
void WarnOfClones(const std::vector<COpBox*>& boxes, Report& report) {
    for (const COpBox* box : boxes) {
        if (!box->lacksTemplates) continue;
        report.LogLine(
            "WARNING: %s is a copy without templates, so it makes no code until the document is saved and "
            "opened "
            "again",
            box->BoxTitleWid().c_str());
    }
}

template <typename Boxes>
void WarnOfPlaceholders(const Boxes& boxes, Report& report) {
    for (const auto& box : boxes) {
        if (!box->IsPlaceholder()) continue;
        report.LogLine("WARNING: %s is a placeholder, so no code is generated for it: %s",
                       OneLine(box->BoxTitleWid()).c_str(), OneLine(box->placeholder->reason).c_str());
    }
}

// Of boxes of which no more is to be told than that they make no code.
ShaderText GenerateBoxes(std::vector<COpBox*> boxes, const std::string& help, const std::string& shaderName,
                         const Site& site, const CCodeGen& siteCodeGen) {
    CCodeGen shader = siteCodeGen;
    shader.SetVariable("_SHADERNAME_", shaderName);
    AddHelpBanner(shader, help);
    std::erase_if(boxes, [](const COpBox* box) { return box->IsPlaceholder() || box->muted != 0; });
    WarnOfClones(boxes, site.report);
    ShaderText text;
    // Two passes: the name of a fixed value reads another box's variables.
    for (const COpBox* box : boxes) {
        if (box->HasFixedValue()) text.variables.Prepare(*box, site.types);
    }
    TiebackEnds ends;
    BoxMerge merge(shader);
    const NameSource names{text.variables, &site.report, &ends};
    for (const COpBox* box : boxes) box->GenerateCode(merge, site.types, names);
    CCodeGen::Origins origins;
    shader.WriteCode(text.code, &origins);
    text.lines = LineMap(text.code, origins, shader, boxes);
    shader.WriteHints(text.hints);
    return text;
}

}  // namespace

ShaderText GenerateShader(const CTvDoc& document, const std::string& shaderName, const Site& site,
                          const CCodeGen& siteCodeGen) {
    std::vector<COpBox*> boxes = document.OrderBoxes();
    WarnOfCircles(document, boxes, site.report);
    WarnOfPlaceholders(document.m_boxes, site.report);  // those in a circle among them
    return GenerateBoxes(std::move(boxes), document.customshaderhelp, shaderName, site, siteCodeGen);
}

ShaderText GenerateShader(std::vector<COpBox*> boxes, const std::string& help, const std::string& shaderName,
                          const Site& site, const CCodeGen& siteCodeGen) {
    WarnOfPlaceholders(boxes, site.report);
    return GenerateBoxes(std::move(boxes), help, shaderName, site, siteCodeGen);
}

}  // namespace tavrin
