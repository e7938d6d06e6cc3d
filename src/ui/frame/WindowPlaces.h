// Where the windows stood when the program ended, and back.
#pragma once

#include <string>

class QWidget;

namespace tavrin {

class Profile;

// What of a window comes back besides its position.
struct RestoreParts {
    bool size = true;
    bool visible = true;
};

// Five integers for each window: NAME.x, .y, .width, .height and .visible, in device-independent pixels.
class WindowPlaces {
  public:
    // A window is brought back at least this far from the right and bottom edges of the screen. Nothing
    // keeps it from the left and the top.
    static constexpr int kKeptOnScreen = 100;

    explicit WindowPlaces(Profile& profile) : m_profile(profile) {}

    // A window of which nothing was stored yet stays where and as it is, hidden if it was to come back with
    // its visibility. Showing does not activate.
    void RestoreWindow(QWidget& window, const std::string& name, RestoreParts parts);
    // Stores nothing for a minimized window.
    void SaveWindow(const QWidget& window, const std::string& name);

  private:
    Profile& m_profile;
};

}  // namespace tavrin
