// SPDX-License-Identifier: Apache-2.0
// Mending what a check has found, where it is clear what to do.
#pragma once

#include <string>

#include "render/NetworkCheck.h"

namespace tavrin {

class COpDesk;
class CTvDoc;

// What the user is offered, such as "Delete Noise_3"; empty where there is nothing to offer.
std::string MendText(const Finding& finding);

// Does it, as one edit. False, with nothing changed, where the network is no longer what the finding says, or
// is locked; and where nothing can be offered. A box that is to be added comes under the mouse, as from a
// menu; what hinders it is alerted there.
bool MendNetwork(const Finding& finding, CTvDoc& document, COpDesk& desk);

}  // namespace tavrin
