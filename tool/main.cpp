// The command line of the simulated unit.

#include <sys/stat.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <memory>

#include "simulator/settings/unit_file.h"
#include "simulator/sysroot/state_folder.h"
#include "tool/commands.h"
#include "tool/errors.h"

namespace {

void add_running(CLI::App& command, tool::RunningUnit& unit) {
  command.add_option("--unit-state", unit.chosen, "state folder of the unit; without it, the only unit that runs");
}

void add_choice(CLI::App& command, tool::UnitChoice& unit) {
  command.add_option("--unit", unit.unit_file, "unit file; without it, the one that comes with the build");
  command.add_option("--state", unit.state, "state folder, kept; without it, a new one that is removed");
}

void add_library(CLI::App& command, tool::UnitChoice& unit) {
  command.add_option("--library", unit.library, "library to load; without it, the build's own");
}

void add_dhcp_server(CLI::App& command, tool::UnitChoice& unit) {
  command.add_flag("--dhcp-server", unit.dhcp_server, "a DHCP server answers on the unit's interface eth0");
}

void add_run(CLI::App& app) {
  CLI::App* command = app.add_subcommand("run", "Runs the library on a fresh unit and shows the unit's state.");
  const auto options = std::make_shared<tool::RunOptions>();
  command->add_flag("--once", options->once, "show it once and leave; else once a second until Ctrl-C");
  command->add_flag("--json", options->json,
                    "show JSON documents, one a line; the library's output goes to standard error");
  add_choice(*command, options->unit);
  add_library(*command, options->unit);
  add_dhcp_server(*command, options->unit);
  command->callback([options] { tool::run(*options); });
}

void add_exec(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("exec", "Runs a command on a fresh unit, without a host; exits with the command's status.");
  const auto options = std::make_shared<tool::ExecOptions>();
  add_choice(*command, options->unit);
  command->add_flag("--services", options->services, "the naming service and the unit's services run");
  command->add_flag("--network", options->network, "there is an interface eth0");
  add_dhcp_server(*command, options->unit);
  command->add_option("--env", options->environment, "NAME=VALUE for the command's environment; may be repeated")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command
      ->add_option("command", options->command,
                   "the command, after \"--\"; programs of the build folder by their path there or inside (/opt/unit)")
      ->required();
  command->positionals_at_end();
  command->callback([options] { throw tool::CommandEnd{tool::exec(*options)}; });
}

void add_shutdown(CLI::App& app) {
  CLI::App* command = app.add_subcommand("shutdown",
                                         "Presses the power switch of a unit, shows its question, takes the answer "
                                         "from standard input and prints what was called.");
  const auto options = std::make_shared<tool::ShutdownOptions>();
  command->add_flag("--running", options->on_running, "on a unit that runs already; else on a fresh one");
  add_running(*command, options->running);
  add_choice(*command, options->unit);
  add_library(*command, options->unit);
  command->add_flag("--json", options->json, "print JSON; the question goes to standard error");
  command->callback([options] { tool::shut_down(*options); });
}

void add_settings(CLI::App& app) {
  const auto options = std::make_shared<tool::SettingOptions>();

  CLI::App* get = app.add_subcommand("get", "Prints a value of a running unit.");
  add_running(*get, options->unit);
  get->add_option("key", options->key, "the setting's name; \"unit list\" lists them")->required();
  get->add_flag("--json", options->json, "print JSON");
  get->callback([options] { tool::get_setting(*options); });

  CLI::App* set = app.add_subcommand("set", "Sets a value of a running unit.");
  add_running(*set, options->unit);
  set->add_option("key", options->key, "the setting's name; \"unit list\" lists them")->required();
  set->add_option("value", options->value, "its new value: JSON where it is some, else text")->required();
  set->callback([options] { tool::set_setting(*options); });

  CLI::App* list = app.add_subcommand("list", "Lists the settings of a unit: name, kind and range, what it is.");
  list->add_flag("--json", options->json, "print JSON");
  list->callback([options] { tool::list_settings(*options); });
}

void add_requests(CLI::App& app) {
  const auto options = std::make_shared<tool::RequestOptions>();

  CLI::App* call = app.add_subcommand("call", "Calls an operation of the hardware object of a running unit.");
  add_running(*call, options->unit);
  call->add_option("operation", options->operation, "its name; \"operations\" lists them")->required();
  call->add_option("arguments", options->arguments, "its arguments: JSON where they are some, else text");
  call->add_flag("--json", options->json, "print JSON");
  call->callback([options] { tool::call_operation(*options); });

  CLI::App* interrupt =
      app.add_subcommand("interrupt", "Raises a switch interrupt of the power-supply controller of a running unit.");
  add_running(*interrupt, options->unit);
  interrupt
      ->add_option("value", options->value,
                   "communication status, decimal or 0x…: 0x100 power switch, 0x40 cover closed")
      ->required();
  interrupt->callback([options] { tool::raise_interrupt(*options); });
}

void add_dialogs(CLI::App& app) {
  const auto options = std::make_shared<tool::DialogOptions>();

  CLI::App* show = app.add_subcommand("dialogs", "Prints the dialogs on the screen of a running unit.");
  add_running(*show, options->unit);
  show->add_flag("--json", options->json, "print JSON");
  show->callback([options] { tool::show_dialogs(*options); });

  CLI::App* answer = app.add_subcommand("answer", "Presses a button of a dialog of a running unit.");
  add_running(*answer, options->unit);
  answer->add_option("title", options->title, "the dialog's title")->required();
  answer->add_option("label", options->label, "the button's label")->required();
  answer->callback([options] { tool::answer_dialog(*options); });
}

/// Stands before words that begin with a bracket while they are parsed: the parser splits a word in brackets at its
/// commas.
constexpr char TAKEN_AS_IT_IS = '\x01';

/// The command line as the parser wants it, last word first.
std::vector<std::string> marked_words(int argc, char** argv) {
  std::vector<std::string> words(argv + 1, argv + argc);
  for (std::string& word : words) {
    if (!word.empty() && word.front() == '[') {
      word.insert(word.begin(), TAKEN_AS_IT_IS);
    }
  }
  std::reverse(words.begin(), words.end());
  return words;
}

void unmark_words(CLI::App& app) {
  for (CLI::App* command : app.get_subcommands({})) {
    for (CLI::Option* option : command->get_options()) {
      option->transform([](const std::string& word) { return word[0] == TAKEN_AS_IT_IS ? word.substr(1) : word; });
    }
  }
}

int complain(int status, const char* what) {
  std::fprintf(stderr, "unit: %s\n", what);
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  // What is made for a unit is for its programs to read, whoever runs them.
  umask(022);
  CLI::App app("Runs the hardware library on a simulated unit, and looks after units that run.", "unit");
  app.require_subcommand(1);
  add_run(app);
  add_exec(app);
  add_shutdown(app);
  add_settings(app);
  add_requests(app);
  add_dialogs(app);
  unmark_words(app);
  try {
    app.parse(marked_words(argc, argv));
    return tool::STATUS_FINE;
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? tool::STATUS_FINE : tool::STATUS_BAD_USAGE;
  } catch (const tool::CommandEnd& end) {
    return end.status;
  } catch (const tool::CommandError& error) {
    return complain(error.status, error.what());
  } catch (const simulator::settings::UnitFileError& error) {
    return complain(tool::STATUS_BAD_USAGE, error.what());
  } catch (const simulator::sysroot::StateFolderError& error) {
    return complain(tool::STATUS_BAD_USAGE, error.what());
  } catch (const std::exception& error) {
    return complain(tool::STATUS_FAILED, error.what());
  }
}
