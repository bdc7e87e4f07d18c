#include "tool/log_lines.h"
#include "tool/connection.h"

#include <algorithm>

namespace tool {

using control::client::Client;
using control::client::Event;
using nlohmann::ordered_json;

bool is_hosts(const std::string& log) {
  return log.rfind("host.", 0) == 0;
}

void LogLines::take_kept(const std::string& log, const std::string& text) {
  logs_[log].position += text.size();
  add(log, text);
}

void LogLines::take(const Event& event) {
  const std::string name = event.data.at("name");
  const std::string text = event.data.at("text");
  const auto from = event.data.at("from").get<std::uint64_t>();
  Log& log = logs_[name];
  const std::uint64_t known = log.position > from ? std::min<std::uint64_t>(log.position - from, text.size()) : 0;
  log.position = std::max(log.position, from + text.size());
  add(name, std::string_view(text).substr(known));
}

void LogLines::finish() {
  for (auto& [name, log] : logs_) {
    const std::string rest = log.lines.rest();
    if (!rest.empty()) {
      show_(name, rest);
    }
  }
}

void LogLines::add(const std::string& name, std::string_view text) {
  for (const std::string& line : logs_[name].lines.add(text)) {
    show_(name, line);
  }
}

void take_kept_host_logs(Client& client, LogLines& lines) {
  for (const ordered_json& log : rows_at(client, "/v1/logs", "logs")) {
    const std::string name = log.at("name");
    if (is_hosts(name)) {
      lines.take_kept(name, client.text("/v1/logs/" + control::client::escaped(name)));
    }
  }
}

}  // namespace tool
