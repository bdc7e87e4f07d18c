#pragma once

#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "control/client/client.h"
#include "tool/screen_layout.h"
#include "tool/unit_state.h"

namespace tool {

/// What a live view knows about its unit.
struct LiveUnit {
  std::string name;
  std::optional<nlohmann::ordered_json> state;     ///< as read last; none before the first time
  std::optional<nlohmann::ordered_json> question;  ///< the dialog that waits
  std::string operation;                           ///< the operation that has not answered yet; empty: none
  std::chrono::seconds silence{0};                 ///< for how long
  std::deque<std::string> output;                  ///< the host's last lines

  /// Lines that must be seen: how long an operation has not answered, the dialog that waits and the command to answer
  /// it. Empty if all is well.
  std::vector<std::string> notices() const;
};

/// Shows a unit as it changes.
class View {
public:
  View() = default;
  virtual ~View() = default;
  View(const View&) = delete;
  View& operator=(const View&) = delete;

  /// A state has been read.
  virtual void state(const LiveUnit& unit) = 0;
  /// A second has passed, or a dialog has come or gone.
  virtual void notice(const LiveUnit& unit) = 0;
  /// The host wrote a line.
  virtual void output(const LiveUnit& unit, const std::string& log, const std::string& line) = 0;
  /// The terminal has another size.
  virtual void resized(const LiveUnit& unit) = 0;
  /// Ctrl-Z.
  virtual void suspend(const LiveUnit& unit) = 0;
};

/// A full screen.
std::unique_ptr<View> screen_view();
/// Lines: the whole state once, then what changes; the host's output and notices on standard error.
std::unique_ptr<View> line_view();
/// One JSON document per state on standard output; the rest as line_view().
std::unique_ptr<View> json_view();

/// The host has ended by itself.
struct HostEnded {
  nlohmann::ordered_json host;
};

/// Reads the unit's state every second and shows it until a termination signal arrives (returns) or the host ends
/// (throws HostEnded). Main thread only.
void show_live(const control::client::FoundUnit& unit, View& view);

}  // namespace tool
