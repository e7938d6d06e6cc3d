// SPDX-License-Identifier: Apache-2.0
#include "app/RecoveryCopy.h"

#include "app/RecoverySession.h"
#include "base/Paths.h"

namespace tavrin {

namespace {

class RecoveryCopy : public SafeCopy {
  public:
    explicit RecoveryCopy(const std::string& stateDirectory) : m_session(stateDirectory) {}

    bool Write(const RecoveryOrigin& origin, std::string_view text, std::string& error) {
        return m_session.Write(origin, std::string(text), error);
    }
    void Remove() override { m_session.Discard(); }
    std::string Path() const override { return m_session.CopyPath(); }

  private:
    RecoverySession m_session;
};

}  // namespace

std::unique_ptr<SafeCopy> MakeSafeCopy(const std::string& stateDirectory, const std::string& documentPath,
                                       std::string_view text, std::string& error) {
    auto copy = std::make_unique<RecoveryCopy>(stateDirectory);
    RecoveryOrigin origin;
    origin.documentPath = FullPath(documentPath);
    if (copy->Write(origin, text, error)) return copy;
    if (!copy->Path().empty()) error = copy->Path() + ": " + error;
    copy->Remove();
    return nullptr;
}

}  // namespace tavrin
