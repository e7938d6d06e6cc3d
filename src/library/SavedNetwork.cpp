#include "library/SavedNetwork.h"

#include "text/Archive.h"
#include "text/Tokens.h"

namespace tavrin {

bool IsSavedNetwork(const std::string& path) {
    std::string reason;
    std::string token;
    auto archive = CArchive::Open(path, reason);
    return archive && ReadToken(*archive, token) && token == kDocumentKeyword;
}

}  // namespace tavrin
