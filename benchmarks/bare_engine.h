#pragma once

#include <dds/dds.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <attributes.h>

namespace benchmarks {

/// Cyclone DDS as it is, without the DCPS API: one participant and what it owns, with the QoS that the library asks
/// for. Failures end the process. One thread at a time; listeners are called on the engine's threads.
class BareEngine {
public:
  using Listener = std::function<void()>;

  BareEngine();
  ~BareEngine();
  BareEngine(const BareEngine&) = delete;
  BareEngine& operator=(const BareEngine&) = delete;

  /// A reliable writer that keeps its last sample, for late joiners as well where `durable`.
  dds_entity_t make_writer(const dds_topic_descriptor_t& type, const std::string& topic, bool durable);
  /// A volatile reader that keeps all samples. `listener` is called once for each sample, after it has been taken.
  dds_entity_t make_reader(const dds_topic_descriptor_t& type, const std::string& topic, Listener listener);

  /// Waits until the writer has that many readers.
  static void wait_for_readers(dds_entity_t writer, unsigned readers);

private:
  dds_entity_t make_topic(const dds_topic_descriptor_t& type, const std::string& topic) const;

  dds_entity_t participant_;
  std::vector<std::unique_ptr<Listener>> listeners_;
};

}  // namespace benchmarks
