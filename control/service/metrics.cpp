#include "control/service/metrics.h"

#include <unistd.h>

#include <fstream>
#include <sstream>

namespace control::service {
namespace {

/// Bytes of memory that this process occupies; 0 if unknown.
std::uint64_t resident_memory() {
  std::ifstream in("/proc/self/statm");
  std::uint64_t size = 0;
  std::uint64_t resident = 0;
  in >> size >> resident;
  return resident * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

class Text {
public:
  void family(const char* name, const char* type, const char* help) {
    out_ << "# TYPE " << name << ' ' << type << "\n# HELP " << name << ' ' << help << '\n';
  }
  template <typename Value>
  void sample(const std::string& name, Value value) {
    out_ << name << ' ' << value << '\n';
  }
  void gauge(const char* name, const char* help, std::uint64_t value) {
    family(name, "gauge", help);
    sample(name, value);
  }
  void counter(const char* name, const char* help, std::uint64_t value) {
    family(name, "counter", help);
    sample(name + std::string("_total"), value);
  }
  std::string end() {
    out_ << "# EOF\n";
    return out_.str();
  }

private:
  std::ostringstream out_;
};

}  // namespace

std::string metrics_text(const Metrics& metrics, const std::vector<LogSize>& logs, double uptime) {
  Text text;
  text.family("unit_requests", "counter", "HTTP requests answered, by status.");
  for (const auto& [status, count] : metrics.requests) {
    text.sample("unit_requests_total{status=\"" + std::to_string(status) + "\"}", count);
  }
  text.gauge("unit_connections", "Open connections of clients.", metrics.connections);
  text.counter("unit_connections_refused", "Connections beyond the limit.", metrics.connections_refused);
  text.counter("unit_agent_requests", "Requests sent to the agent.", metrics.agent_requests);
  text.gauge("unit_agent_pending", "Requests that the agent has not answered.", metrics.agent_pending);
  text.counter("unit_agent_notices", "Notices received from the agent.", metrics.agent_notices);
  text.counter("unit_agent_unknown_answers", "Answers of the agent to no request or too late.", metrics.agent_unknown);
  text.counter("unit_agent_dropped_bytes", "Bytes of streams that nobody opened.", metrics.agent_dropped_bytes);
  text.family("unit_log_bytes", "counter", "Bytes kept of each log.");
  for (const LogSize& log : logs) {
    text.sample("unit_log_bytes_total{log=\"" + log.name + "\"}", log.bytes);
  }
  text.family("unit_log_dropped_bytes", "counter", "Bytes dropped of each log.");
  for (const LogSize& log : logs) {
    text.sample("unit_log_dropped_bytes_total{log=\"" + log.name + "\"}", log.dropped);
  }
  text.counter("unit_commands", "Commands started.", metrics.commands);
  text.gauge("unit_event_streams", "Clients of the event stream.", metrics.streams);
  text.family("unit_uptime_seconds", "gauge", "Time since the start of the control service.");
  text.sample("unit_uptime_seconds", uptime);
  text.gauge("process_resident_memory_bytes", "Memory that the control service occupies.", resident_memory());
  return text.end();
}

}  // namespace control::service
