#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/memory/shared_mutex.h"
#include "simulator/memory/signal.h"
#include "simulator/memory/text.h"

namespace simulator::model {

/// One dialog box on the unit's screen.
struct Dialog {
  std::uint64_t id = 0;  ///< counted from 1 for each unit
  std::string title;
  std::string text;
  std::string buttons;                 ///< "label,answer" pairs separated by '|'; empty: no buttons
  std::string size;                    ///< size word last set; empty: none
  bool waits = false;                  ///< the caller waits for the answer
  std::optional<std::int32_t> answer;  ///< answer of the chosen button, if any
};

/// The dialogs on the unit's screen. The last 16 are kept; longer texts are truncated (title, size and buttons to 127
/// bytes, text to 1023). Part of the unit's model; any thread of any process.
class Gui {
public:
  static constexpr std::size_t DIALOGS_KEPT = 16;

  /// Shows a dialog and returns its id.
  std::uint64_t show(const std::string& title, const std::string& text, const std::string& buttons, bool waits);
  /// Sizes the newest dialog of that title; false if there is none.
  bool set_size(const std::string& title, const std::string& size);
  /// Removes all dialogs from the screen, as the end of the user interface's process does.
  void clear();
  /// Waits for the dialog's answer; none if `limit` passes first or the dialog is no longer kept.
  std::optional<std::int32_t> wait_answer(std::uint64_t id, std::chrono::milliseconds limit) const;

  /// Presses the button with that label on the newest unanswered dialog of that title; false if there is none.
  bool answer(const std::string& title, const std::string& label);
  /// Presses the button with that label on that dialog; false if it is not kept, is answered or has no such button.
  bool answer(std::uint64_t id, const std::string& label);
  /// The dialogs kept, oldest first.
  std::vector<Dialog> dialogs() const;
  /// Waits until an unanswered dialog of that title waits for its answer; false if `limit` passes first.
  bool wait_shown(const std::string& title, std::chrono::milliseconds limit) const;

  /// Raised when a dialog is shown, sized or answered.
  memory::Signal& changed() noexcept { return changed_; }

private:
  struct Slot {
    std::uint64_t id = 0;
    memory::Text<128> title;
    memory::Text<1024> text;
    memory::Text<128> buttons;
    memory::Text<128> size;
    bool waits = false;
    bool answered = false;
    std::int32_t answer = 0;
  };

  const Slot* newest(const std::string& title, bool unanswered) const;

  mutable memory::SharedMutex mutex_;
  mutable memory::Signal changed_;
  std::uint64_t shown_ = 0;
  std::array<Slot, DIALOGS_KEPT> slots_;
};

}  // namespace simulator::model
