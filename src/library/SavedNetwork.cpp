// SPDX-License-Identifier: Apache-2.0
#include "library/SavedNetwork.h"

#include "text/Archive.h"
#include "text/Tokens.h"

namespace tavrin {

OperatorText KindOf(CArchive& operatorFile) {
    std::string token;
    if (!ReadToken(operatorFile, token)) return OperatorText::kEmpty;
    operatorFile.Rewind();
    return token == kDocumentKeyword ? OperatorText::kNetwork : OperatorText::kDefinition;
}

bool IsSavedNetwork(const std::string& path) {
    std::string reason;
    auto archive = CArchive::Open(path, reason);
    return archive && KindOf(*archive) == OperatorText::kNetwork;
}

}  // namespace tavrin
