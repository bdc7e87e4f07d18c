#pragma once

#include <array>
#include <optional>
#include <string>

#include "simulator/memory/shared_mutex.h"
#include "simulator/memory/text.h"
#include "simulator/model/faults.h"
#include "simulator/model/sysfs_files.h"

namespace simulator::model {

/// The texts that faults keep back from the unit's programs. Part of the unit's model; used by UnitFiles.
class KeptTexts {
public:
  static constexpr std::size_t LONGEST = 4095;

  memory::SharedMutex& mutex() noexcept { return mutex_; }
  std::optional<std::string> text(Point point) const;
  void set_text(Point point, const std::optional<std::string>& text);

private:
  static constexpr std::size_t FILES = 8;
  struct Kept {
    bool exists = false;
    memory::Text<LONGEST + 1> text;
  };

  static std::size_t index(Point point) noexcept;

  memory::SharedMutex mutex_;
  std::array<Kept, FILES> texts_;
};

/// The files of the unit: those of its kernel drivers, and /tmp/MIC284. While a fault is armed at a file, the unit's
/// programs find what the fault puts there, and the file's own text is kept. A text that a program writes over that of
/// a GARBAGE fault is the file's own. Any thread of any process.
class UnitFiles {
public:
  /// `sys`, `tmp`: the folders that the unit sees as /sys and /tmp.
  UnitFiles(const std::string& sys, const std::string& tmp, Faults& faults, KeptTexts& kept)
      : sys_(sys), tmp_(tmp), faults_(faults), kept_(kept) {}

  /// The file's own text; none if there is no such file.
  std::optional<std::string> text(const SysfsFile& file) const;
  /// Sets the file's own text, at most KeptTexts::LONGEST bytes while a fault is armed; none removes the file. Throws
  /// std::system_error.
  void set_text(const SysfsFile& file, const std::optional<std::string>& text);

  /// Arms a fault at a file's point; kind NONE restores the file's own text. Throws std::invalid_argument, with nothing
  /// changed, if the point does not admit the fault or the text is too long to be kept, and std::system_error.
  void arm(Point point, const Fault& fault);

private:
  struct Place {
    Point point;
    const SysfsFile& file;
    const SysfsFiles& folder;
  };

  Place place_of(Point point) const;
  Place place_of(const SysfsFile& file) const;
  std::optional<std::string> own_text(const Place& place, const Fault& fault) const;
  static void put(const Place& place, const Fault& fault, const std::optional<std::string>& own);

  SysfsFiles sys_;
  SysfsFiles tmp_;
  Faults& faults_;
  KeptTexts& kept_;
};

}  // namespace simulator::model
