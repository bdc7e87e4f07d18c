#include <signal.h>
#include <unistd.h>

#include <map>

#include "tool/host_output.h"
#include "tool/live_view.h"
#include "tool/output.h"
#include "tool/terminal.h"

namespace tool {
namespace {

class ScreenView : public View {
public:
  void state(const LiveUnit& unit) override { draw(unit); }
  void notice(const LiveUnit& unit) override { draw(unit); }
  void output(const LiveUnit& unit, const std::string&, const std::string&) override { draw(unit); }
  void resized(const LiveUnit& unit) override { draw(unit); }
  void suspend(const LiveUnit& unit) override {
    screen_.suspend();
    draw(unit);
  }

private:
  void draw(const LiveUnit& unit) const {
    Picture picture;
    picture.title = unit.name + "   Ctrl-C stops it";
    picture.notices = unit.notices();
    if (unit.state) {
      picture.sections = sections_of(*unit.state);
    }
    picture.output = {unit.output.begin(), unit.output.end()};
    screen_.show(laid_out(picture, terminal_size(STDOUT_FILENO)));
  }

  Screen screen_;
};

/// Shows output and notices as lines on standard error.
class StreamView : public View {
public:
  void notice(const LiveUnit& unit) override {
    // Each notice once, not every second: an operation that hangs is told from its name alone.
    const std::string question = unit.question ? unit.question->at("id").dump() : "";
    const std::vector<std::string> lines = unit.notices();
    const bool hangs = !unit.operation.empty() && !lines.empty() && lines[0].rfind(unit.operation + ":", 0) == 0;
    if (hangs && hanging_ != unit.operation) {
      complain(lines[0]);
    } else if (!hangs && !hanging_.empty()) {
      complain(hanging_ + ": answered");
    }
    hanging_ = hangs ? unit.operation : "";
    if (question != question_ && !question.empty()) {
      for (std::size_t i = hangs ? 1 : 0; i < lines.size(); ++i) {
        complain(lines[i]);
      }
    }
    question_ = question;
  }
  void output(const LiveUnit&, const std::string&, const std::string& line) override { show_host_line(line); }
  void resized(const LiveUnit&) override {}
  void suspend(const LiveUnit&) override { raise(SIGSTOP); }

private:
  std::string hanging_;
  std::string question_;
};

class LineView : public StreamView {
public:
  void state(const LiveUnit& unit) override {
    const std::vector<Section> sections = sections_of(*unit.state);
    if (shown_.empty()) {
      print(as_text(sections));
    }
    for (const Section& section : sections) {
      for (const auto& [name, value] : section.rows) {
        std::string& shown = shown_[section.title + ": " + name];
        if (!first_ && shown != value) {
          print(name + ": " + value + '\n');
        }
        shown = value;
      }
    }
    first_ = false;
    flush_output();
  }

private:
  bool first_ = true;
  std::map<std::string, std::string> shown_;
};

class JsonView : public StreamView {
public:
  void state(const LiveUnit& unit) override {
    print_json(*unit.state);
    flush_output();
  }
};

}  // namespace

std::unique_ptr<View> screen_view() {
  return std::make_unique<ScreenView>();
}

std::unique_ptr<View> line_view() {
  return std::make_unique<LineView>();
}

std::unique_ptr<View> json_view() {
  return std::make_unique<JsonView>();
}

}  // namespace tool
