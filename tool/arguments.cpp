#include "tool/arguments.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

#include "tool/errors.h"
#include "tool/nearest.h"
#include "tool/text.h"

namespace tool {

/// Sorts words into options and operands.
class Parser {
public:
  explicit Parser(const Command& command) : command_(command), options_(command.options) {
    options_.push_back(help_option());
    arguments_.command_ = command.name;
    for (const Option& option : options_) {
      arguments_.values_[option.name];
    }
    for (const Operand& operand : command.operands) {
      arguments_.values_[operand.name];
    }
  }

  Arguments parse(const std::vector<std::string>& words) {
    words_ = words;
    bool options_ended = false;
    for (at_ = 0; at_ < words_.size(); ++at_) {
      const std::string& word = words_[at_];
      if (!is_utf8(word)) {
        throw UsageError("argument " + std::to_string(at_ + 1) + ": not valid UTF-8: " + printable(clipped(word, 40)));
      }
      if (!options_ended && word == "--") {
        options_ended = true;
      } else if (options_ended || !is_option(word)) {
        operands_.push_back(word);
        options_ended = options_ended || command_.passes_on;
      } else if (word[1] == '-') {
        take_long(word.substr(2));
      } else {
        take_letters(word.substr(1));
      }
    }
    // Help is given however the rest looks.
    if (!arguments_.has("help")) {
      share_out_operands();
    }
    return arguments_;
  }

private:
  /// "-" stands for a file, "-5" is a number.
  static bool is_option(const std::string& word) {
    return word.size() > 1 && word[0] == '-' && word[1] != '.' &&
           std::isdigit(static_cast<unsigned char>(word[1])) == 0;
  }

  void take_long(const std::string& text) {
    const std::size_t sign = text.find('=');
    const std::string name = text.substr(0, sign);
    const auto found =
        std::find_if(options_.begin(), options_.end(), [&name](const Option& each) { return each.name == name; });
    if (found == options_.end()) {
      std::vector<std::string> names;
      for (const Option& each : options_) {
        names.push_back("--" + each.name);
      }
      throw UsageError("unknown option --" + name + did_you_mean("--" + name, names) + see_help());
    }
    if (sign == std::string::npos) {
      take(*found, "--" + name, std::nullopt);
    } else if (found->value.empty()) {
      throw UsageError("--" + name + ": takes no value");
    } else {
      take(*found, "--" + name, text.substr(sign + 1));
    }
  }

  /// One or several letters; the last may have a value, in the same word or the next.
  void take_letters(std::string letters) {
    while (!letters.empty()) {
      const char letter = letters[0];
      letters.erase(0, 1);
      const auto found = std::find_if(options_.begin(), options_.end(),
                                      [letter](const Option& each) { return each.letter == letter; });
      if (found == options_.end()) {
        throw UsageError(std::string("unknown option -") + letter + see_help());
      }
      const bool with_value = !found->value.empty() && !letters.empty();
      take(*found, std::string("-") + letter, with_value ? std::optional(letters) : std::nullopt);
      if (with_value) {
        return;
      }
    }
  }

  void take(const Option& option, const std::string& form, std::optional<std::string> value) {
    std::vector<std::string>& values = arguments_.values_[option.name];
    if (!values.empty() && !option.repeatable && !option.value.empty()) {
      throw UsageError(form + ": given twice");
    }
    if (!option.value.empty() && !value) {
      if (at_ + 1 == words_.size()) {
        throw UsageError(form + ": " + option.value + " is missing");
      }
      value = words_[++at_];
      if (!is_utf8(*value)) {
        throw UsageError(form + ": not valid UTF-8: " + printable(clipped(*value, 40)));
      }
    }
    values.push_back(value.value_or(""));
  }

  /// Gives each operand its words: the required ones first, the rest from the left.
  void share_out_operands() {
    std::size_t needed = 0;
    for (const Operand& operand : command_.operands) {
      needed += operand.count == Count::ONE || operand.count == Count::SOME ? 1 : 0;
    }
    std::size_t spare = operands_.size() > needed ? operands_.size() - needed : 0;
    auto next = operands_.begin();
    for (const Operand& operand : command_.operands) {
      const bool required = operand.count == Count::ONE || operand.count == Count::SOME;
      const bool greedy = operand.count == Count::ANY || operand.count == Count::SOME;
      if (required && next == operands_.end()) {
        throw UsageError(operand.name + " is missing" + see_help());
      }
      const std::size_t more = greedy                                ? spare
                               : operand.count == Count::AT_MOST_ONE ? std::min<std::size_t>(1, spare)
                                                                     : 0;
      const auto end = next + static_cast<std::ptrdiff_t>(more + (required ? 1 : 0));
      arguments_.values_[operand.name].assign(next, end);
      spare -= more;
      next = end;
    }
    if (next != operands_.end()) {
      throw UsageError("unexpected argument \"" + printable(clipped(*next, 40)) + "\"" + see_help());
    }
  }

  std::string see_help() const { return "; see \"unit " + command_.name + " --help\""; }

  const Command& command_;
  std::vector<Option> options_;
  Arguments arguments_;
  std::vector<std::string> words_;
  std::size_t at_ = 0;
  std::vector<std::string> operands_;
};

Arguments Arguments::parse(const Command& command, const std::vector<std::string>& words) {
  return Parser(command).parse(words);
}

std::optional<std::string> Arguments::value(const std::string& name) const {
  const std::vector<std::string>& values = all(name);
  return values.empty() ? std::nullopt : std::optional(values.back());
}

const std::vector<std::string>& Arguments::all(const std::string& name) const {
  const auto found = values_.find(name);
  if (found == values_.end()) {
    throw std::logic_error(command_ + " does not describe " + name);
  }
  return found->second;
}

}  // namespace tool
