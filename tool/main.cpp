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
  command.add_option("--unit-state", unit.chosen, "state folder of the unit (default: the only running unit)");
}

void add_choice(CLI::App& command, tool::UnitChoice& unit) {
  command.add_option("--unit", unit.unit_file, "unit file (default: the one in the build folder)");
  command.add_option("--state", unit.state, "state folder to keep (default: temporary)");
}

void add_library(CLI::App& command, tool::UnitChoice& unit) {
  command.add_option("--library", unit.library, "library to load (default: the one in the build folder)");
}

void add_dhcp_server(CLI::App& command, tool::UnitChoice& unit) {
  command.add_flag("--dhcp-server", unit.dhcp_server, "run a DHCP server for the unit's interface eth0");
}

void add_run(CLI::App& app) {
  CLI::App* command = app.add_subcommand("run", "Runs the library on a new unit and shows the unit's state.");
  const auto options = std::make_shared<tool::RunOptions>();
  command->add_flag("--once", options->once, "show the state once and exit (default: every second until Ctrl-C)");
  command->add_flag("--json", options->json,
                    "print one JSON document per line; the library's output goes to standard error");
  add_choice(*command, options->unit);
  add_library(*command, options->unit);
  add_dhcp_server(*command, options->unit);
  command->callback([options] { tool::run(*options); });
}

void add_exec(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("exec", "Runs a command on a new unit without a host; exits with the command's status.");
  const auto options = std::make_shared<tool::ExecOptions>();
  add_choice(*command, options->unit);
  command->add_flag("--services", options->services, "run the naming service and the unit's services");
  command->add_flag("--network", options->network, "create the interface eth0");
  add_dhcp_server(*command, options->unit);
  command->add_option("--env", options->environment, "NAME=VALUE for the command's environment; repeatable")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command
      ->add_option("command", options->command,
                   "command, after \"--\"; programs of the build folder by their path there or inside (/opt/unit)")
      ->required();
  command->positionals_at_end();
  command->callback([options] { throw tool::CommandEnd{tool::exec(*options)}; });
}

void add_shutdown(CLI::App& app) {
  CLI::App* command = app.add_subcommand("shutdown",
                                         "Presses the power switch of a unit, shows its question, reads the answer "
                                         "from standard input and prints the recorded calls.");
  const auto options = std::make_shared<tool::ShutdownOptions>();
  command->add_flag("--running", options->on_running, "use the running unit (default: a new one)");
  add_running(*command, options->running);
  add_choice(*command, options->unit);
  add_library(*command, options->unit);
  command->add_flag("--json", options->json, "print one JSON document; the question goes to standard error");
  command->callback([options] { tool::shut_down(*options); });
}

void add_settings(CLI::App& app) {
  const auto options = std::make_shared<tool::SettingOptions>();

  CLI::App* get = app.add_subcommand("get", "Prints a setting of a running unit.");
  add_running(*get, options->unit);
  get->add_option("key", options->key, "setting; \"unit list\" lists them")->required();
  get->add_flag("--json", options->json, "print JSON");
  get->callback([options] { tool::get_setting(*options); });

  CLI::App* set = app.add_subcommand("set", "Changes a setting of a running unit.");
  add_running(*set, options->unit);
  set->add_option("key", options->key, "setting; \"unit list\" lists them")->required();
  set->add_option("value", options->value, "new value, parsed as JSON if valid, else taken as text")->required();
  set->callback([options] { tool::set_setting(*options); });

  CLI::App* list = app.add_subcommand("list", "Lists the settings of a unit: name, type, range, description.");
  list->add_flag("--json", options->json, "print JSON");
  list->callback([options] { tool::list_settings(*options); });
}

void add_requests(CLI::App& app) {
  const auto options = std::make_shared<tool::RequestOptions>();

  CLI::App* call = app.add_subcommand("call", "Calls an operation of the hardware object of a running unit.");
  add_running(*call, options->unit);
  call->add_option("operation", options->operation, "operation; \"operations\" lists them")->required();
  call->add_option("arguments", options->arguments, "arguments, each parsed as JSON if valid, else taken as text");
  call->add_flag("--json", options->json, "print JSON");
  call->callback([options] { tool::call_operation(*options); });

  CLI::App* interrupt =
      app.add_subcommand("interrupt", "Raises a switch interrupt of a running unit's power-supply controller.");
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
  answer->add_option("title", options->title, "title of the dialog")->required();
  answer->add_option("label", options->label, "label of the button")->required();
  answer->callback([options] { tool::answer_dialog(*options); });
}

/// Prefix of words that begin with a bracket during parsing: the parser would split a word in brackets at its commas.
constexpr char TAKEN_AS_IT_IS = '\x01';

/// The command line as the parser expects it: last word first.
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
  // The unit's programs may run as another user and must be able to read its files.
  umask(022);
  CLI::App app("Runs the hardware library on a simulated unit and controls running units.", "unit");
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
