#include "simulator/model/gui.h"

#include <algorithm>
#include <cstdlib>
#include <mutex>

namespace simulator::model {
namespace {

/// The answer of the button with that label in "label,answer|label,answer"; none if there is no such button.
std::optional<std::int32_t> answer_of(const std::string& buttons, const std::string& label) {
  std::size_t begin = 0;
  while (begin < buttons.size()) {
    const std::size_t end = std::min(buttons.find('|', begin), buttons.size());
    const std::string button = buttons.substr(begin, end - begin);
    const std::size_t comma = button.rfind(',');
    if (comma != std::string::npos && button.substr(0, comma) == label) {
      return static_cast<std::int32_t>(std::strtol(button.c_str() + comma + 1, nullptr, 10));
    }
    begin = end + 1;
  }
  return std::nullopt;
}

}  // namespace

std::uint64_t Gui::show(const std::string& title, const std::string& text, const std::string& buttons, bool waits) {
  std::uint64_t id = 0;
  {
    const std::lock_guard guard(mutex_);
    id = ++shown_;
    Slot& slot = slots_[id % DIALOGS_KEPT];
    slot.id = id;
    slot.title = title;
    slot.text = text;
    slot.buttons = buttons;
    slot.size = "";
    slot.waits = waits;
    slot.answered = false;
  }
  changed_.raise();
  return id;
}

const Gui::Slot* Gui::newest(const std::string& title, bool unanswered) const {
  const Slot* found = nullptr;
  for (const Slot& slot : slots_) {
    const bool fits = slot.id != 0 && slot.title.str() == title && !(unanswered && slot.answered);
    if (fits && (found == nullptr || slot.id > found->id)) {
      found = &slot;
    }
  }
  return found;
}

bool Gui::set_size(const std::string& title, const std::string& size) {
  {
    const std::lock_guard guard(mutex_);
    auto* slot = const_cast<Slot*>(newest(title, false));
    if (slot == nullptr) {
      return false;
    }
    slot->size = size;
  }
  changed_.raise();
  return true;
}

void Gui::clear() {
  {
    const std::lock_guard guard(mutex_);
    for (Slot& slot : slots_) {
      slot.id = 0;
    }
  }
  changed_.raise();
}

std::optional<std::int32_t> Gui::wait_answer(std::uint64_t id, std::chrono::milliseconds limit) const {
  std::optional<std::int32_t> answer;
  changed_.wait_until(
      [&] {
        const std::lock_guard guard(mutex_);
        const Slot& slot = slots_[id % DIALOGS_KEPT];
        if (slot.id == id && slot.answered) {
          answer = slot.answer;
        }
        return slot.id != id || slot.answered;
      },
      limit);
  return answer;
}

bool Gui::answer(const std::string& title, const std::string& label) {
  {
    const std::lock_guard guard(mutex_);
    auto* slot = const_cast<Slot*>(newest(title, true));
    const auto answer = slot == nullptr ? std::nullopt : answer_of(slot->buttons.str(), label);
    if (!answer) {
      return false;
    }
    slot->answer = *answer;
    slot->answered = true;
  }
  changed_.raise();
  return true;
}

bool Gui::answer(std::uint64_t id, const std::string& label) {
  {
    const std::lock_guard guard(mutex_);
    Slot& slot = slots_[id % DIALOGS_KEPT];
    const auto answer = slot.id != id || slot.answered ? std::nullopt : answer_of(slot.buttons.str(), label);
    if (!answer) {
      return false;
    }
    slot.answer = *answer;
    slot.answered = true;
  }
  changed_.raise();
  return true;
}

std::vector<Dialog> Gui::dialogs() const {
  const std::lock_guard guard(mutex_);
  std::vector<Dialog> kept;
  for (std::uint64_t id = shown_ > DIALOGS_KEPT ? shown_ - DIALOGS_KEPT + 1 : 1; id <= shown_; ++id) {
    const Slot& slot = slots_[id % DIALOGS_KEPT];
    if (slot.id != id) {
      continue;
    }
    const auto answer = slot.answered ? std::optional(slot.answer) : std::nullopt;
    kept.push_back({id, slot.title.str(), slot.text.str(), slot.buttons.str(), slot.size.str(), slot.waits, answer});
  }
  return kept;
}

bool Gui::wait_shown(const std::string& title, std::chrono::milliseconds limit) const {
  const auto shown = [&] {
    const std::lock_guard guard(mutex_);
    const Slot* slot = newest(title, true);
    return slot != nullptr && slot->waits;
  };
  return changed_.wait_until(shown, limit);
}

}  // namespace simulator::model
