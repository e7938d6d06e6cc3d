// SPDX-License-Identifier: Apache-2.0
#include "support/TestSite.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "base/Paths.h"

namespace tavrin::test {

namespace fs = std::filesystem;

TempDir::TempDir() {
    std::string pattern = (fs::temp_directory_path() / "tavrin-test.XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make " + pattern);
    m_path = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

std::string TempDir::operator/(std::string_view name) const { return JoinPath(m_path, name); }

std::string TempDir::Write(std::string_view name, std::string_view text) const {
    const std::string path = *this / name;
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

TestSite::TestSite() : site(report, Environment::FromProcess(), queue) {
    report.SetSink(&sink);
    site.directories.tavrnDir = SourcePath("installation");
    site.directories.libName = "mray";
    site.directories.libDir = SourcePath("installation/mray");
    site.directories.workDir = directory / "work";
    fs::create_directories(site.directories.workDir);
    site.commands.SetWorkDir(site.directories.workDir);
    site.environment.Set("TAVRN_LIB", site.directories.libDir);
    site.environment.Set("TAVRN_WORKDIR", site.directories.workDir);
    const std::string path = site.environment.Get("PATH").value_or("");
    site.environment.Set("PATH", SourcePath("installation/bin") + ":" + path);
}

CArchive ArchiveOf(std::string_view text, std::string path) {
    return CArchive::FromText(std::move(path), std::string(text));
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string SourcePath(std::string_view relative) { return JoinPath(TAVRIN_SOURCE_DIR, relative); }
std::string BuildPath(std::string_view relative) { return JoinPath(TAVRIN_BINARY_DIR, relative); }

}  // namespace tavrin::test
