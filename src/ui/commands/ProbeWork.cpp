// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/ProbeWork.h"

#include <utility>

#include "app/Workspace.h"
#include "ui/desk/DeskPane.h"

namespace tavrin {

ProbeWork::ProbeWork(Needs needs)
    : m_needs(std::move(needs)), m_changes(m_needs.work.probe.afterChange.Add([this] {
          m_needs.desk.Repaint();
          m_needs.hasChanged();
      })) {}

}  // namespace tavrin
