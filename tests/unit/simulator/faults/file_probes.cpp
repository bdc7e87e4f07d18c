#include <filesystem>
#include <fstream>

#include "simulator/settings/settings.h"
#include "tests/unit/simulator/faults/pairs_unit.h"
#include "tests/unit/simulator/faults/probe.h"

namespace fault_pairs {
namespace {

using simulator::model::FaultKind;
using simulator::model::Point;

/// Reads a file, or writes and reads it.
class FileProbe final : public Probe {
public:
  FileProbe(PairsUnit& unit, std::string name, std::string path, bool writes)
      : unit_(unit), name_(std::move(name)), path_(std::move(path)), writes_(writes) {
    std::filesystem::create_directories(std::filesystem::path(path_).parent_path());
  }

  void set_value(int value) override {
    if (!writes_) {
      simulator::settings::set_setting(unit_.model(), "sysfs." + name_, std::to_string(value) + "\n");
    }
  }

  Outcome call(FaultKind) override {
    const bool is_written = !writes_ || static_cast<bool>(std::ofstream(path_) << 1);
    std::ifstream file(path_);
    std::string word;
    file >> word;
    return {!is_written || !file.is_open(), {word}};
  }

private:
  PairsUnit& unit_;
  const std::string name_;
  const std::string path_;
  const bool writes_;
};

}  // namespace

std::unique_ptr<Probe> make_file_probe(PairsUnit& unit, Point point) {
  if (row_of(point).crossing != simulator::model::Crossing::FILE) {
    return nullptr;
  }
  const std::string name(name_of(point).substr(std::string_view("file.").size()));
  // A fault that changes a text does not bite on a file that is written before it is read.
  const bool writes = !row_of(point).kinds.has(FaultKind::GARBAGE);
  for (const auto& file : simulator::model::sysfs_files()) {
    if (file.name == name) {
      return std::make_unique<FileProbe>(unit, name, unit.file("sys/" + std::string(file.path)), writes);
    }
  }
  return std::make_unique<FileProbe>(unit, name, unit.file("tmp/" + name), writes);
}

}  // namespace fault_pairs
