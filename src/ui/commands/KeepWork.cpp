// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/KeepWork.h"

#include <QApplication>
#include <algorithm>
#include <utility>

#include "app/Workspace.h"
#include "base/Files.h"
#include "base/Paths.h"
#include "ui/base/Text.h"
#include "ui/commands/CommandActions.h"
#include "ui/dialogs/FileDialogs.h"
#include "ui/dialogs/Messages.h"
#include "ui/frame/StatusBox.h"

namespace tavrin {

namespace {

constexpr int kTimeToRead = 10;  // seconds, of where a render was kept
constexpr size_t kMostNamed = 10;

}  // namespace

KeepWork::KeepWork(Needs needs)
    : m_needs(std::move(needs)), m_work(m_needs.work), m_keeper(m_work.session, m_work.app) {}

void KeepWork::AddTo(CommandActions& commands) {
    commands.On(CommandId::kKeepRender, {[this] {
                                             if (const auto number = Wanted()) Keep(*number);
                                         },
                                         [this] {
                                             const auto number = Wanted();
                                             return number && CanKeep(*number);
                                         }});
}

// What the user has selected, else the newest.
std::optional<int> KeepWork::Wanted() const {
    if (const auto selected = m_needs.currentRender()) return selected;
    const RenderRecord* newest = m_work.session.records.Newest();
    return newest == nullptr ? std::nullopt : std::optional(newest->number);
}

bool KeepWork::Keep(int number) {
    if (const std::string hindrance = m_keeper.Hindrance(number); !hindrance.empty()) {
        m_needs.statusBox.SetStatus("Render " + std::to_string(number) + " " + hindrance, kTimeToRead);
        return false;
    }
    const std::string directory = m_keeper.DirectoryOf(number);
    return Tell(number, directory.empty() ? KeepWhereTheUserSays(number) : m_keeper.Keep(number, directory));
}

std::optional<std::string> KeepWork::KeepWhereTheUserSays(int number) {
    // The picture window asks at any time, also while another dialog waits for its answer.
    if (QApplication::activeModalWidget() != nullptr) return std::nullopt;
    const std::string& extension = m_work.app.GetSite().docExt;
    FileDialogRequest request;
    request.title = "Keep Render";
    request.filters = {"Tavrin Documents (*" + Shown(extension) + ")"};
    request.directory = m_work.app.GetSite().directories.docBrowserDir;
    request.file = m_keeper.StemOf(number) + extension;
    request.extension = Shown(extension).mid(1);
    const auto chosen = AskFileToSave(&m_needs.frame, request);
    if (!chosen) return std::nullopt;
    const std::string picture = m_keeper.PictureBeside(number, chosen->path);
    // The dialog has asked about the document alone.
    if (!picture.empty() && PathExists(picture) &&
        !AskWarning(&m_needs.frame, Shown(picture + " is there already.  Replace it?"))) {
        return std::nullopt;
    }
    return m_keeper.KeepAs(number, chosen->path);
}

bool KeepWork::Tell(int number, const std::optional<std::string>& path) {
    if (!path) return false;
    m_needs.statusBox.SetStatus("Kept render " + std::to_string(number) + " as " + *path, kTimeToRead);
    return true;
}

bool KeepWork::SettleRenders() {
    int asks = 0;
    m_work.app.GetSite().settings.GetSettingInt("history.askatend", asks);
    if (asks == 0) return true;
    const std::vector<int> numbers = m_keeper.Unsaved();
    if (numbers.empty()) return true;
    std::string text = numbers.size() == 1 ? "A render is" : std::to_string(numbers.size()) + " renders are";
    text += " not kept, and no file holds what was rendered:\n";
    for (size_t i = 0; i < std::min(numbers.size(), kMostNamed); ++i) {
        const RenderRecord* record = m_work.session.records.Find(numbers[i]);
        text += "\n  " + RenderHistory::EntryText(record->number, record->name);
    }
    if (numbers.size() > kMostNamed)
        text += "\n  and " + std::to_string(numbers.size() - kMostNamed) + " more";
    switch (AskKeepRenders(&m_needs.frame, Shown(text + "\n\nKeep them beside their documents?"))) {
        case KeepAnswer::kKeepAll:
            return KeepAll(numbers);
        case KeepAnswer::kDiscard:
            return true;
        case KeepAnswer::kCancel:
            break;
    }
    return false;
}

// Those of documents without a file go to one place, for which the user is asked once.
bool KeepWork::KeepAll(const std::vector<int>& numbers) {
    std::string chosen;
    for (const int number : numbers) {
        std::string directory = m_keeper.DirectoryOf(number);
        if (directory.empty()) directory = chosen;
        const auto path = directory.empty() ? KeepWhereTheUserSays(number) : m_keeper.Keep(number, directory);
        if (!Tell(number, path)) return false;
        if (directory.empty()) chosen = PathDir(*path);
    }
    return true;
}

}  // namespace tavrin
