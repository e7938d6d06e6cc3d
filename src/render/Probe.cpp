// SPDX-License-Identifier: Apache-2.0
#include "render/Probe.h"

#include <unordered_set>

#include "document/BoxOrder.h"
#include "library/OpRegistry.h"
#include "library/Placeholder.h"
#include "render/ArgInfo.h"
#include "render/ProbeNetwork.h"
#include "site/Site.h"
#include "text/NearestNames.h"
#include "text/OutOfMemory.h"

namespace tavrin {

namespace {

std::string NameOf(const COpButton& output) {
    return output.owner->BoxTitleWid() + " " + output.DisplayName();
}

bool IsInCircle(const COpBox& box) {
    std::vector<const COpBox*> waiting{&box};
    std::unordered_set<const COpBox*> seen;
    while (!waiting.empty()) {
        const COpBox& next = *waiting.back();
        waiting.pop_back();
        for (const auto& output : next.outputs) {
            for (const COpButton* input : output->connections) {
                if (input->owner == &box) return true;
                if (seen.insert(input->owner).second) waiting.push_back(input->owner);
            }
        }
    }
    return false;
}

// What of the output itself is in the way, as the end of a sentence.
std::string FaultOf(const COpButton& output) {
    if (output.owner->IsPlaceholder())
        return "its box is a placeholder, of which no code is made: " + output.owner->placeholder->reason;
    if (output.stray != nullptr)
        return "its operator has no such output any more; delete its box and add a new one";
    if (!output.IsOutput()) return "it is an input; choose an output";
    if (output.owner->lacksTemplates)
        return "its box is a copy without templates, which makes no code until the document is saved and "
               "opened again";
    if (output.CurrentType().empty())
        return "its operator gives it no type that could be seen; choose another output";
    if (output.CurrentType() == type_words::kString)
        return "a string has no picture; choose an output of another type";
    if (IsInCircle(*output.owner)) return "its box stands in a circle of wires; cut one of them";
    return {};
}

const COpBox* FindBox(const CTvDoc& document, std::string_view boxTitleWid) {
    for (const auto& box : document.m_boxes) {
        if (box->BoxTitleWid() == boxTitleWid) return box.get();
    }
    return nullptr;
}

std::string NoBox(const CTvDoc& document, std::string_view name) {
    if (document.m_boxes.empty()) return "the desk is empty";
    std::vector<std::string> names;
    for (const auto& box : document.m_boxes) names.push_back(box->BoxTitleWid());
    const std::string nearest = JoinNames(NearestNames(name, names));
    return "there is no box " + std::string(name) + (nearest.empty() ? "" : "; there is " + nearest);
}

std::string NoOutput(const COpBox& box, std::string_view name) {
    if (box.outputs.empty()) return box.BoxTitleWid() + " has no outputs";
    std::vector<std::string> names;
    for (const auto& output : box.outputs) names.push_back(output->DisplayName());
    const std::vector<std::string> nearest = NearestNames(name, names);
    return box.BoxTitleWid() + " has no output " + std::string(name) + "; there is " +
           JoinNames(nearest.empty() ? names : nearest);
}

}  // namespace

Probe::Probe(CTvDoc& document, DocumentHost& host)
    : m_document(document),
      m_host(host),
      m_changes(document.edits.Observe([this](const Change& change) { OnChange(change); })) {}

Probe::~Probe() = default;

std::string Probe::Name() const {
    const COpButton* output = Output();
    return output == nullptr ? "" : NameOf(*output);
}

bool Probe::Show(COpButton& output) {
    const std::string problem = WhyNot(output);
    if (problem.empty()) {
        Set(output);
    } else {
        m_host.GetSite().report.Alert("%s", problem.c_str());
    }
    return problem.empty();
}

void Probe::Set(COpButton& output) {
    m_output = LiveRef<COpButton>(output);
    m_isSet = true;
    m_box = output.owner->BoxTitleWid();
    m_button = output.DisplayName();
    afterChange.Tell();
}

void Probe::End() {
    if (!m_isSet) return;
    m_isSet = false;
    m_output = {};
    afterChange.Tell();
}

void Probe::Toggle(COpButton& output) {
    if (Output() == &output) {
        End();
    } else {
        Show(output);
    }
}

void Probe::OnChange(const Change& change) {
    if (!m_isSet || Output() != nullptr) return;
    if (change.replaced || !FollowTo(change.came)) End();
}

// A box that was brought up to date has left its number to the one that came for it.
bool Probe::FollowTo(const std::vector<COpBox*>& boxes) {
    for (const COpBox* box : boxes) {
        if (box->BoxTitleWid() != m_box) continue;
        for (const auto& output : box->outputs) {
            if (output->DisplayName() != m_button || !FaultOf(*output).empty()) continue;
            Set(*output);
            return true;
        }
    }
    return false;
}

void Probe::OperatorsReloaded() {
    if (m_isSet) afterChange.Tell();
}

std::string Probe::WhyNot(const COpButton& output) {
    std::string problem;
    NetworkFor(output, problem);
    return problem;
}

// Null, with the problem, if there is none that takes the output.
ProbeNetwork* Probe::NetworkFor(const COpButton& output, std::string& problem) {
    problem = FaultOf(output);
    if (problem.empty()) {
        ReadNetworks();
        const std::string& type = output.CurrentType();
        for (const bool isExact : {true, false}) {
            for (auto network = m_networks.rbegin(); network != m_networks.rend(); ++network) {
                if (!(*network)->Problem().empty()) continue;
                if (isExact ? (*network)->Prefers(type) : (*network)->Takes(type)) return network->get();
            }
        }
        problem = WhyNoNetwork(type);
    }
    problem = NameOf(output) + " cannot be shown: " + problem;
    return nullptr;
}

std::string Probe::WhyNoNetwork(const std::string& type) const {
    const Site& site = m_host.GetSite();
    const std::string& library = site.directories.libName;
    if (m_networks.empty()) {
        return "the library " + library +
               " names no network that shows outputs; a line \"probe FILE\" of its tavrn.def does";
    }
    std::string text =
        "no probe network of the library " + library + " takes the type " + site.types.TranslateType(type);
    for (const auto& network : m_networks) {
        if (!network->Problem().empty()) text += "; " + network->Problem();
    }
    return text;
}

void Probe::ReadNetworks() {
    Site& site = m_host.GetSite();
    const uint64_t operators = m_host.Registry().Clears();
    if (operators != m_operators || site.directories.libDir != m_library) m_networks.clear();
    m_operators = operators;
    m_library = site.directories.libDir;
    const std::vector<std::string> paths = site.ProbePaths();
    m_networks.resize(paths.size());
    for (size_t i = 0; i < paths.size(); ++i) {
        auto& network = m_networks[i];
        if (network == nullptr || network->Path() != paths[i] || !network->IsCurrent())
            network = std::make_unique<ProbeNetwork>(paths[i], m_host);
    }
}

std::optional<ProbeShader> Probe::Generate(const std::string& shaderName, const CCodeGen& siteCodeGen) {
    COpButton* output = Output();
    if (output == nullptr) return std::nullopt;
    Site& site = m_host.GetSite();
    std::string problem;
    ProbeNetwork* network = NetworkFor(*output, problem);
    if (network == nullptr) {
        site.report.Alert("%s", problem.c_str());
        End();
        return std::nullopt;
    }
    const ProbeNetwork::Wire wire(*network, *output, m_document);
    const std::string& help = m_document.customshaderhelp;
    ProbeShader shader;
    shader.text = GenerateShader(wire.boxes, help, shaderName, site, siteCodeGen);
    shader.argInfo = WriteArgInfo(help, UnconnectedInputs(InOrderOfTitles(wire.boxes)), shader.text.variables,
                                  site.report, &shader.arguments);
    return shader;
}

// Names of both may hold dots.
COpButton* Probe::Find(const CTvDoc& document, std::string_view words, std::string& error) {
    const COpBox* box = nullptr;
    std::string_view wanted;
    for (size_t dot = words.find('.'); dot != std::string_view::npos; dot = words.find('.', dot + 1)) {
        const COpBox* named = FindBox(document, words.substr(0, dot));
        if (named == nullptr) continue;
        box = named;
        wanted = words.substr(dot + 1);
        for (const auto& output : box->outputs) {
            if (output->DisplayName() == wanted) return output.get();
        }
    }
    error = box == nullptr ? NoBox(document, words.substr(0, words.rfind('.'))) : NoOutput(*box, wanted);
    return nullptr;
}

}  // namespace tavrin
