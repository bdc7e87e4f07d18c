// A process that reads boolean attributes: reading_process TOPIC… Writes one line with the number of its readers once
// each of them has a writer. Exits at the end of its input.

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

#include "benchmarks/bare_engine.h"

namespace {

bool has_writer(dds_entity_t reader) {
  dds_subscription_matched_status_t status{};
  return dds_get_subscription_matched_status(reader, &status) == DDS_RETCODE_OK && status.current_count > 0;
}

}  // namespace

int main(int argc, char** argv) {
  benchmarks::BareEngine engine;
  std::vector<dds_entity_t> readers;
  for (int topic = 1; topic < argc; ++topic) {
    readers.push_back(engine.make_reader(
        Varnok_QTNN_DDS_ATTR_BOOLEAN_desc, argv[topic], [] {}, benchmarks::BareEngine::Caller::ENGINE));
  }
  for (const dds_entity_t reader : readers) {
    while (!has_writer(reader)) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
  dprintf(STDOUT_FILENO, "%zu\n", readers.size());
  char end = 0;
  while (read(STDIN_FILENO, &end, 1) > 0) {
  }
}
