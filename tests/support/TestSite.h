// SPDX-License-Identifier: Apache-2.0
// What unit tests build on: a directory that goes away, a report that is collected, a site to work in.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/MainThreadQueue.h"
#include "site/Site.h"
#include "text/Archive.h"
#include "text/Report.h"

namespace tavrin::test {

// A fresh directory, removed with all that is in it at the end.
class TempDir {
  public:
    TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    ~TempDir();

    const std::string& Path() const { return m_path; }
    std::string operator/(std::string_view name) const;
    // Writes a file below the directory, making directories as needed; its path.
    std::string Write(std::string_view name, std::string_view text) const;

  private:
    std::string m_path;
};

// Collects every alert as it is raised and all of the log.
class CollectingSink : public ReportSink {
  public:
    void OnAlert(const std::string& text, const std::string& file) override {
        alerts.push_back(text);
        files.push_back(file);
    }
    void OnLog(std::string_view text) override { log += text; }

    std::string LastAlert() const { return alerts.empty() ? std::string() : alerts.back(); }

    std::vector<std::string> alerts;
    std::vector<std::string> files;  // what each alert would open
    std::string log;
};

// A site whose reports are collected, with a work directory of its own. The library is the one of the
// source tree unless a test sets another.
class TestSite {
  public:
    TestSite();

    TempDir directory;
    CollectingSink sink;
    Report report;
    PlainQueue queue;
    Site site;
};

CArchive ArchiveOf(std::string_view text, std::string path = "test.txt");
std::string ReadFile(const std::string& path);
std::string SourcePath(std::string_view relative);  // in the source tree
std::string BuildPath(std::string_view relative);   // in the build tree

}  // namespace tavrin::test
