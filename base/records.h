#pragma once

#include <cstdint>
#include <string>

/// The records of the lists that the hardware hands to its host. Plain values: copied member by member, owned by the
/// vector that holds them, not shared.

/// One row of the version list.
struct VERSIONSDATA {
  std::string version;  ///< the value shown: a card identifier, a revision, a version text
  std::string name;     ///< the row's label, for example "RF Card ID"
};

/// One row of the temperature list.
struct TEMPERATUREDATA {
  float temperature;  ///< degrees Celsius; 0 if the label says that the reading is not valid
  std::string name;   ///< the row's label, for example "Battery Temperature"
};

/// One fan. No unit fills it; a unit with fans defines the meaning of the two words.
struct FANDATA {
  std::uint32_t word1;
  std::uint32_t word2;
  std::string name;  ///< the fan's label
};
