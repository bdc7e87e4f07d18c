#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace control::client {

struct ApiError : std::runtime_error {
  int status;
  std::string where;
  std::string expected;
};
struct ConnectionError : std::runtime_error {};
struct NoSuchUnit : std::runtime_error {};
struct LaunchError : std::runtime_error {
  int status;
};

struct FoundUnit {
  std::string name;
  std::filesystem::path folder;
  pid_t supervisor;
};
std::vector<FoundUnit> list_units();
FoundUnit find_unit(const std::string& name);

class Client {
public:
  explicit Client(const std::filesystem::path& socket);
  using Wait = std::function<void(int descriptor)>;
  void wait_with(Wait wait);
  nlohmann::ordered_json get(const std::string& target);
  nlohmann::ordered_json send(const std::string& method, const std::string& target, const nlohmann::json& body);
  std::string text(const std::string& target);
};
std::string escaped(const std::string& path_or_query_part);

struct Event {
  std::string type;
  nlohmann::json data;
};
class EventStream {
public:
  EventStream(const std::filesystem::path& socket, const std::string& target);
  std::optional<Event> next(std::chrono::milliseconds limit);
  int descriptor();
};
class Command {
public:
  Command(const std::filesystem::path& socket, const nlohmann::json& request);
  int descriptor() const;
  struct Message {
    enum Kind { OUT, ERR, CONTROL } kind;
    std::string bytes;
    nlohmann::json control;
  };
  std::optional<Message> next(std::chrono::milliseconds limit);
  void input(std::string_view bytes);
  void end_input();
  void resize(int rows, int columns);
  void signal(int number);
};

struct Launched {
  FoundUnit unit;
  int lifeline;
};
Launched start_unit(const nlohmann::json& launch);

}  // namespace control::client
