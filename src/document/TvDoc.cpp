#include "document/TvDoc.h"

#include "base/Files.h"
#include "base/Paths.h"
#include "document/DocumentReader.h"
#include "document/DocumentWriter.h"
#include "site/Site.h"
#include "text/Archive.h"

namespace tavrin {

namespace {

// A template for the user to overwrite.
constexpr const char* kHelpTemplate =
    "    T I T L E   O F   S H A D E R\r\n"
    "    Your notice of ownership\r\n"
    "\r\n"
    "VARIABLES\r\n"
    "    VARNAME1 - short description\r\n"
    "    VARNAME2 - another short description\r\n"
    "\r\n"
    "DESCRIPTION\r\n"
    "    Your indepth description of the shader goes here.\r\n"
    "    This text is saved as part of your shader's tavrn file,\r\n"
    "    so it can be made available to others who use the shader.\r\n"
    "\r\n"
    "AUTHOR\r\n"
    "    Your name <your mail address>";

// A switch of the site: any number but 0 is on, as documents have no other.
int SwitchOf(const Settings& settings, const char* key) {
    int value = 0;
    settings.GetSettingInt(key, value);
    return value != 0 ? 1 : 0;
}

}  // namespace

void CTvDoc::DeleteContents() {
    const Site& site = m_host.GetSite();
    if (m_beforeDelete) m_beforeDelete();
    m_boxes.clear();
    toolbar = site.toolButtons;
    showiconimages = SwitchOf(site.settings, "desk.showiconimages");
    showvarnames = SwitchOf(site.settings, "desk.showvarnames");
    lock = SwitchOf(site.settings, "desk.lock");
    std::string word;
    linetype = site.settings.GetSettingToken("desk.linetype", word) && word == "trace" ? 1 : 0;
    drawlinesoverboxes = 0;
    offset[0] = offset[1] = 0;
    zoom[0] = zoom[1] = 0.5F;
    zoomFactor = 1;
    m_renderOptions = m_host.AppVariables();
    exportOptions = m_host.ExportDefaults();
    customshaderhelp = kHelpTemplate;
    m_modified = false;
    m_cutShort = false;
}

bool CTvDoc::Open(const std::string& path) {
    std::string error;
    auto archive = CArchive::Open(path, error);
    if (!archive) {
        m_host.GetSite().report.Alert("unable to open %s for reading: %s", path.c_str(), error.c_str());
        return false;
    }
    DeleteContents();
    m_path = path;
    DocumentReader reader(*this, *archive, m_host);
    m_cutShort = !reader.Read() || reader.HasLostText();
    return true;
}

bool CTvDoc::Load(CArchive& archive) { return DocumentReader(*this, archive, m_host).Read(); }

bool CTvDoc::ReadDeskOnly(CArchive& archive) { return DocumentReader(*this, archive, m_host).ReadDeskOnly(); }

std::string CTvDoc::Store() {
    SortBoxesByWid();
    return WriteDocument(*this, m_host);
}

std::string CTvDoc::Snapshot() {
    std::vector<BoxList::iterator> stack;
    stack.reserve(m_boxes.size());
    for (auto box = m_boxes.begin(); box != m_boxes.end(); ++box) stack.push_back(box);
    BringIntoOrder();
    std::string text = WriteDocument(*this, m_host);
    for (const auto& box : stack) m_boxes.splice(m_boxes.end(), m_boxes, box);
    return text;
}

bool CTvDoc::Save(const std::string& path, std::string& error) {
    if (!ReplaceFile(path, Store(), error)) return false;
    m_path = path;
    m_modified = false;
    m_cutShort = false;
    return true;
}

std::string CTvDoc::TitleOf(const std::string& path) {
    return path.empty() ? "Untitled.tvn" : PathFile(path);
}

}  // namespace tavrin
