// SPDX-License-Identifier: Apache-2.0
// Who is told when something happens.
#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tavrin {

// Belongs to whoever tells. A listener is told for as long as its subscription is kept, which may outlive the
// list; those that come or go while others are told are heeded from the next time on.
template <typename... Words>
class Listeners {
  public:
    using Listener = std::function<void(Words...)>;
    using Subscription = std::shared_ptr<const Listener>;

    // Listeners are told in the order in which they came.
    [[nodiscard]] Subscription Add(Listener listener) {
        auto subscription = std::make_shared<const Listener>(std::move(listener));
        std::erase_if(m_all, [](const auto& known) { return known.expired(); });
        m_all.push_back(subscription);
        return subscription;
    }

    void Tell(Words... words) const {
        const auto all = m_all;
        for (const auto& listener : all) {
            if (const auto known = listener.lock()) (*known)(words...);
        }
    }

  private:
    std::vector<std::weak_ptr<const Listener>> m_all;
};

}  // namespace tavrin
