// SPDX-License-Identifier: Apache-2.0
// Forms, from behind the keyword of their section.
#include "forms/FormFrame.h"
#include "forms/FormHost.h"
#include "forms/FormParser.h"
#include "fuzz/FuzzHost.h"

namespace {

class MapHost : public tavrin::FormHost {
  public:
    void SetVariable(const std::string& name, const std::string& value) override { m_values[name] = value; }
    void AddUnsavedOption(const std::string&) override {}
    std::string GetAppVariable(const std::string& name) override { return m_values[name]; }
    const std::map<std::string, std::string>& Values() const { return m_values; }

  private:
    std::map<std::string, std::string> m_values;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace tavrin;
    Report report;
    CRenderOptionsEditor form;
    MapHost host;
    CArchive archive = fuzz::ArchiveOf(data, size);
    ReadForm(archive, form, host, report);
    form.LoadDefaults(host);
    const auto values = host.Values();
    for (const auto& [name, value] : values) form.BroadcastOption(name, value + ",x");
    return 0;
}
