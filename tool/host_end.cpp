#include "tool/host_end.h"
#include "tool/connection.h"

#include <stdlib.h>
#include <string.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include "tool/errors.h"
#include "tool/host_output.h"
#include "tool/line_buffer.h"
#include "tool/output.h"

namespace tool {
namespace fs = std::filesystem;

using control::client::Client;
using nlohmann::ordered_json;

namespace {

constexpr std::size_t LINES_SHOWN = 10;

/// Copies every log of the unit to a new folder and returns its path.
std::string kept_logs(Client& client) {
  std::string folder = (fs::temp_directory_path() / "unit-failed-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) {
    throw CommandError(STATUS_FAILED, folder + ": " + strerror(errno));
  }
  for (const ordered_json& log : rows_at(client, "/v1/logs", "logs")) {
    const std::string name = log.at("name");
    std::ofstream file(fs::path(folder) / fs::path(name).filename());
    file << client.text("/v1/logs/" + control::client::escaped(name));
  }
  return folder;
}

void show_last_lines(Client& client, const std::string& log) {
  for (const std::string& line : last_lines(client.text("/v1/logs/" + log), LINES_SHOWN)) {
    show_host_line(line);
  }
}

}  // namespace

bool host_has_ended(const ordered_json& host) {
  return host.value("state", "") == "exited";
}

std::string end_of_host(const ordered_json& host) {
  if (host.contains("signal") && host["signal"].is_number_integer()) {
    const int number = host["signal"];
    const char* const description = sigdescr_np(number);
    return "killed by signal " + std::to_string(number) +
           (description == nullptr ? "" : " (" + std::string(description) + ")");
  }
  if (host.contains("status") && host["status"].is_number_integer()) {
    return "exited with status " + host["status"].dump();
  }
  return "ended";
}

void report_host_end(Client& client, const ordered_json& host, const std::string& state, bool with_output) {
  try {
    if (with_output) {
      show_last_lines(client, "host.out");
      show_last_lines(client, "host.err");
    }
    const std::string logs = state.empty() ? kept_logs(client) : state;
    complain("run: host " + end_of_host(host) + "; logs: " + logs);
  } catch (const std::exception& error) {
    complain("run: host " + end_of_host(host) + "; logs are lost: " + error.what());
  }
}

std::vector<std::string> last_lines(const std::string& text, std::size_t count) {
  LineBuffer buffer;
  std::vector<std::string> lines = buffer.add(text);
  const std::string rest = buffer.rest();
  if (!rest.empty()) {
    lines.push_back(rest);
  }
  if (lines.size() > count) {
    lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(count));
  }
  return lines;
}

}  // namespace tool
