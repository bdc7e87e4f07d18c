// Joins the results of the benchmark programs into one JSON document and prints their table:
// benchmark_report <joined> <results>…

#include <algorithm>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "benchmarks/comparison.h"

namespace {

using benchmarks::Aim;
using nlohmann::json;
using Row = std::vector<std::string>;

std::string formatted(const char* format, double value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

/// "12.3 ns", "450.0 us", "1.24 ms", "812 KiB".
std::string amount(double value, const std::string& unit) {
  if (unit == "B") {
    return formatted("%.0f KiB", value / 1024);
  }
  if (value < 1e3) {
    return formatted("%.1f ns", value);
  }
  return value < 1e6 ? formatted("%.1f us", value / 1e3) : formatted("%.2f ms", value / 1e6);
}

Row row_of(const json& benchmark) {
  const auto number = [&](const char* name) { return benchmark.at(name).get<double>(); };
  const std::string unit = benchmark.at("label");
  const auto kind = static_cast<Aim::Kind>(benchmark.at("aim_kind").get<int>());
  std::string compared = formatted("%.2f", number("compared"));
  std::string aim = formatted("%.2f", number("aim"));
  if (kind == Aim::Kind::EXCESS_AT_MOST) {
    compared = "+" + amount(number("compared"), unit);
    aim = "+" + amount(number("aim"), unit);
  }
  const bool has_aim = kind != Aim::Kind::RATIO_WITHOUT_AIM;
  const std::string name = benchmark.at("name");
  return {name.substr(0, name.find('/')),
          amount(number("figure"), unit),
          amount(number("baseline"), unit),
          compared,
          has_aim ? (kind == Aim::Kind::RATE_AT_LEAST ? ">= " : "<= ") + aim : "",
          has_aim ? (number("met") != 0 ? "yes" : "no") : ""};
}

void print(const std::vector<Row>& rows) {
  std::vector<std::size_t> widths(rows.front().size(), 0);
  for (const Row& row : rows) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], row[column].size());
    }
  }
  for (const Row& row : rows) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      const std::string& text = row[column];
      std::cout << (column == 0 ? "| " : " | ") << text << std::string(widths[column] - text.size(), ' ');
    }
    std::cout << " |\n";
    if (&row == &rows.front()) {
      for (const std::size_t width : widths) {
        std::cout << '|' << std::string(width + 2, '-');
      }
      std::cout << "|\n";
    }
  }
}

/// Empty if no benchmark of the program was requested.
json read(const char* path) {
  std::ifstream file(path);
  if (!file) {
    throw std::runtime_error(std::string(path) + ": cannot be read");
  }
  return file.peek() == std::ifstream::traits_type::eof() ? json::object() : json::parse(file);
}

void report(const char* joined_path, const std::vector<const char*>& paths) {
  json joined;
  for (const char* path : paths) {
    const json results = read(path);
    if (results.empty()) {
      continue;
    }
    joined["context"] = results.at("context");
    for (const json& benchmark : results.at("benchmarks")) {
      joined["benchmarks"].push_back(benchmark);
    }
  }
  if (joined.empty()) {
    throw std::runtime_error("no results");
  }
  joined["context"].erase("executable");
  std::ofstream(joined_path) << joined.dump(2) << '\n';

  std::vector<Row> rows{{"Figure", "Measured", "Against", "Compared", "Aim", "Met"}};
  for (const json& benchmark : joined["benchmarks"]) {
    rows.push_back(row_of(benchmark));
  }
  const json& machine = joined["context"];
  for (const char* what : {"cpu", "cores", "kernel", "compiler", "build_type", "engine"}) {
    std::cout << what << ": " << machine.at(what).get<std::string>() << '\n';
  }
  std::cout << '\n';
  print(rows);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: benchmark_report <joined> <results>...\n";
    return 2;
  }
  try {
    report(argv[1], {argv + 2, argv + argc});
  } catch (const std::exception& error) {
    std::cerr << "benchmark_report: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
