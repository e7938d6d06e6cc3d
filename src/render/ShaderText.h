// SPDX-License-Identifier: Apache-2.0
// The text of a whole shader, made from a network.
#pragma once

#include <string>
#include <vector>

#include "library/CodeNames.h"
#include "render/LineMap.h"

namespace tavrin {

class CCodeGen;
class COpBox;
class CTvDoc;
struct Site;

// A plain value: what one generation has made.
struct ShaderText {
    std::vector<std::string> code;  // before the site's filter script
    std::vector<std::string> hints;
    PreparedVariables variables;  // what fixed values were expanded with
    LineMap lines;                // where those of the code come from
};

// Generates the code of all boxes of the document, in their order, into a copy of the site's templates. Names
// that cannot be formed, and boxes that are left out, are reported; the rest is generated all the same.
ShaderText GenerateShader(const CTvDoc& document, const std::string& shaderName, const Site& site,
                          const CCodeGen& siteCodeGen);

// The same of these boxes, in this order, with that help text at the shader's head.
ShaderText GenerateShader(std::vector<COpBox*> boxes, const std::string& help, const std::string& shaderName,
                          const Site& site, const CCodeGen& siteCodeGen);

}  // namespace tavrin
