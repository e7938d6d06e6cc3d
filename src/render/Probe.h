// SPDX-License-Identifier: Apache-2.0
// One output that stands for the picture: what the network would look like if that output were all of it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Listeners.h"
#include "document/TvDoc.h"
#include "render/ShaderText.h"

namespace tavrin {

class CCodeGen;
class ProbeNetwork;

// What is generated for a probed output. A plain value.
struct ProbeShader {
    ShaderText text;
    std::string argInfo;                        // of the boxes that it is generated of
    std::vector<ArgumentLines> arguments = {};  // where they stand in it
};

// Owned by the workspace. The output goes to the picture through a saved network that the library names, by
// its type; of two that take it the one named last. That network never comes to the document: it is read into
// one of its own, where its open input takes the output for as long as a generation lasts, and of the
// document nothing changes, neither box nor wire, number nor text. Networks are read when they are needed
// first, and again once their file or the library is another.
//
// The open input is the argument named "probe"; where there is none, the one input that nothing feeds and
// that may be wired, if it is the only one.
//
// It ends with its box, and nothing brings it back, but a box that was brought up to date stands for the one
// before. Failures are reported before an operation returns false or nothing.
class Probe {
  public:
    // Both outlive it.
    Probe(CTvDoc& document, DocumentHost& host);
    ~Probe();
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;

    // From now on the output stands for the picture, instead of another one. False, alerted, if it cannot be
    // shown; what was shown before stays.
    bool Show(COpButton& output);
    void End();
    // Ends it for the output that is shown, and shows any other.
    void Toggle(COpButton& output);
    // Null while none is shown, and once its box has gone.
    COpButton* Output() const { return m_output.Get(); }
    // "Noise_3 result"; empty while none is shown.
    std::string Name() const;

    // Told when another output is shown, when none is any more, and when the networks by which it is shown
    // may be others.
    Listeners<> afterChange;
    // The operators were scanned again.
    void OperatorsReloaded();

    // Why an output cannot be shown and what to do about it; empty if it can.
    std::string WhyNot(const COpButton& output);

    // The shader of the output that is shown; nothing while none is. Where it can be shown no longer, that is
    // alerted, and it ends.
    std::optional<ProbeShader> Generate(const std::string& shaderName, const CCodeGen& siteCodeGen);

    // The output that "BOX.OUTPUT" means, box by title and number. Null if there is none, and `error` then
    // says what there is.
    static COpButton* Find(const CTvDoc& document, std::string_view words, std::string& error);

  private:
    void OnChange(const Change& change);
    bool FollowTo(const std::vector<COpBox*>& boxes);
    void Set(COpButton& output);
    ProbeNetwork* NetworkFor(const COpButton& output, std::string& problem);
    std::string WhyNoNetwork(const std::string& type) const;
    void ReadNetworks();

    CTvDoc& m_document;
    DocumentHost& m_host;
    LiveRef<COpButton> m_output;
    bool m_isSet = false;
    std::string m_box;     // title and number of what is shown
    std::string m_button;  // its display name
    std::vector<std::unique_ptr<ProbeNetwork>> m_networks;
    uint64_t m_operators = 0;  // the scan that they were read after
    std::string m_library;     // that scan's
    Edits::Subscription m_changes;
};

}  // namespace tavrin
