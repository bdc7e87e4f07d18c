#include "simulator/model/unit_files.h"

#include <mutex>
#include <stdexcept>

namespace simulator::model {
namespace {

constexpr Point FIRST_FILE = Point::FILE_FPGA_VER;
constexpr SysfsFile MIC284{"MIC284", "MIC284", "output of i2c_read"};

constexpr std::size_t number_of(Point point) noexcept {
  return static_cast<std::size_t>(point);
}

}  // namespace

std::size_t KeptTexts::index(Point point) noexcept {
  static_assert(number_of(Point::COUNT) - number_of(FIRST_FILE) == FILES);
  return number_of(point) - number_of(FIRST_FILE);
}

std::optional<std::string> KeptTexts::text(Point point) const {
  const Kept& kept = texts_[index(point)];
  return kept.exists ? std::optional(kept.text.str()) : std::nullopt;
}

void KeptTexts::set_text(Point point, const std::optional<std::string>& text) {
  Kept& kept = texts_[index(point)];
  kept.exists = text.has_value();
  kept.text = text.value_or("");
}

UnitFiles::Place UnitFiles::place_of(Point point) const {
  const std::string_view name = name_of(point).substr(std::string_view("file.").size());
  for (const SysfsFile& file : sysfs_files()) {
    if (file.name == name) {
      return {point, file, sys_};
    }
  }
  return {point, MIC284, tmp_};
}

UnitFiles::Place UnitFiles::place_of(const SysfsFile& file) const {
  return place_of(point_named("file." + std::string(file.name)).value());
}

std::optional<std::string> UnitFiles::own_text(const Place& place, const Fault& fault) const {
  std::optional<std::string> seen = place.folder.text(place.file);
  switch (fault.kind) {
    case FaultKind::FAIL:
      return seen ? seen : kept_.text(place.point);
    case FaultKind::GARBAGE:
      return seen == wrong_text(fault) ? kept_.text(place.point) : seen;
    case FaultKind::STUCK:
      return kept_.text(place.point);
    default:
      return seen;
  }
}

void UnitFiles::put(const Place& place, const Fault& fault, const std::optional<std::string>& own) {
  switch (fault.kind) {
    case FaultKind::FAIL:
      return place.folder.block(place.file);
    case FaultKind::GARBAGE:
      return place.folder.set_text(place.file, wrong_text(fault));
    case FaultKind::STUCK:
      return;
    default:
      return place.folder.set_text(place.file, own);
  }
}

std::optional<std::string> UnitFiles::text(const SysfsFile& file) const {
  const Place place = place_of(file);
  const std::lock_guard guard(kept_.mutex());
  return own_text(place, faults_.armed_at(place.point));
}

void UnitFiles::set_text(const SysfsFile& file, const std::optional<std::string>& text) {
  const Place place = place_of(file);
  const std::lock_guard guard(kept_.mutex());
  put(place, faults_.armed_at(place.point), text);
  kept_.set_text(place.point, text);
}

void UnitFiles::arm(Point point, const Fault& fault) {
  Faults::check(point, fault);
  const Place place = place_of(point);
  const std::lock_guard guard(kept_.mutex());
  const std::optional<std::string> own = own_text(place, faults_.armed_at(point));
  if (own && own->size() > KeptTexts::LONGEST) {
    throw std::invalid_argument(std::string(name_of(point)) + ": the file holds more than " +
                                std::to_string(KeptTexts::LONGEST) + " bytes");
  }
  kept_.set_text(point, own);
  // A stuck file shows its own text of this moment.
  put(place, fault.kind == FaultKind::STUCK ? Fault{} : fault, own);
  faults_.arm(point, fault);
}

}  // namespace simulator::model
