#include "site/Site.h"

#include "base/Paths.h"

namespace tavrin {

std::string Site::LibraryPath(const std::string& path) const { return ResolvePath(path, directories.libDir); }

std::string Site::WorkPath(const std::string& name) const { return JoinPath(directories.workDir, name); }

}  // namespace tavrin
