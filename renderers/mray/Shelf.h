// SPDX-License-Identifier: Apache-2.0
// The things that were used last, to be used again.
#pragma once

#include <cstddef>
#include <list>
#include <utility>

namespace tavrin::mray {

// Item: its key() tells it from the others.
template <typename Item>
class Shelf {
  public:
    explicit Shelf(std::size_t most) : most_(most) {}

    // The item that the key stands for, and whether it is new.  make(list) puts a new
    // one at the front of the list; what it throws leaves the shelf as it is.  The item
    // stays until as many others as there is room for were asked for.
    template <typename Key, typename Make>
    std::pair<Item&, bool> find(const Key& key, const Make& make) {
        for (auto item = items_.begin(); item != items_.end(); ++item) {
            if (item->key() == key) {
                items_.splice(items_.begin(), items_, item);
                return {items_.front(), false};
            }
        }
        make(items_);
        if (items_.size() > most_) {
            items_.pop_back();
        }
        return {items_.front(), true};
    }

    [[nodiscard]] std::size_t size() const { return items_.size(); }

  private:
    std::size_t most_;
    std::list<Item> items_;
};

}  // namespace tavrin::mray
