// SPDX-License-Identifier: Apache-2.0
// Site definitions files, the form in them included; every getter looks at what was stored.
#include "app/SiteFileReader.h"
#include "codegen/CodeGen.h"
#include "forms/FormFrame.h"
#include "forms/FormHost.h"
#include "forms/FormParser.h"
#include "fuzz/FuzzHost.h"

namespace {

class NoHost : public tavrin::FormHost {
  public:
    void SetVariable(const std::string&, const std::string&) override {}
    void AddUnsavedOption(const std::string&) override {}
    std::string GetAppVariable(const std::string&) override { return "1"; }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace tavrin;
    fuzz::FuzzHost host;
    CCodeGen codeGen;
    CExportOptions exports;
    CRenderOptionsEditor form;
    NoHost formHost;
    SiteTargets targets{host.site, codeGen, exports,
                        [&](CArchive& archive) { ReadForm(archive, form, formHost, host.site.report); }};
    CArchive archive = fuzz::ArchiveOf(data, size);
    SiteFileReader(archive, targets).Read();

    const std::string key = "desk.backgroundcolor";
    std::string text;
    float rgb[3] = {0, 0, 0};
    float number = 0;
    int integer = 0;
    host.site.settings.GetSettingRaw(key, text);
    host.site.settings.GetSettingToken(key, text);
    host.site.settings.GetSettingRgb(key, rgb);
    host.site.settings.GetSettingFloat(key, number);
    host.site.settings.GetSettingInt(key, integer);
    form.LoadDefaults(formHost);
    form.BroadcastOption("SIZE", "1,2");
    return 0;
}
