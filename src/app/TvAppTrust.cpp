// SPDX-License-Identifier: Apache-2.0
// What the application takes from whom: documents by who has written them.
#include "app/TvApp.h"
#include "base/Sha256.h"

namespace tavrin {

bool CTvApp::IsOwnText(std::string_view text) const {
    return m_trust.Holds(TrustStore::Kind::kOwnText, Sha256Hex(text));
}

void CTvApp::NoteOwnText(std::string_view text) { m_trust.Add(TrustStore::Kind::kOwnText, Sha256Hex(text)); }

}  // namespace tavrin
