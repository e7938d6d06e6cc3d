// The peers of a button, in the order in which those buttons were made, so that whatever walks them gives
// the same result in every run.
#pragma once

#include <cstddef>
#include <vector>

namespace tavrin {

class COpButton;

// Holds few members as a rule; an output with many grows in order, so that additions stay cheap.
class ConnectionSet {
  public:
    void Insert(COpButton& button);
    void Erase(const COpButton& button);
    bool Contains(const COpButton& button) const;

    bool Empty() const { return m_buttons.empty(); }
    size_t Size() const { return m_buttons.size(); }
    COpButton* First() const { return m_buttons.empty() ? nullptr : m_buttons.front(); }
    COpButton* Last() const { return m_buttons.empty() ? nullptr : m_buttons.back(); }
    std::vector<COpButton*>::const_iterator begin() const { return m_buttons.begin(); }
    std::vector<COpButton*>::const_iterator end() const { return m_buttons.end(); }

  private:
    std::vector<COpButton*> m_buttons;
};

}  // namespace tavrin
