#pragma once

#include <dds/dds.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <attributes.h>

namespace benchmarks {

/// Cyclone DDS without the DCPS API: one participant and its entities, with the library's QoS. Failures end the
/// process. One thread at a time.
class BareEngine {
public:
  using Listener = std::function<void()>;
  /// The thread that calls a reader's listener: the engine's receiving thread, or one that waits on a waitset.
  enum class Caller { ENGINE, WAITSET };

  BareEngine();
  ~BareEngine();
  BareEngine(const BareEngine&) = delete;
  BareEngine& operator=(const BareEngine&) = delete;

  /// A reliable writer that keeps its last sample, also for late readers if `durable`.
  dds_entity_t make_writer(const dds_topic_descriptor_t& type, const std::string& topic, bool durable);
  /// A volatile reader that keeps all samples. `listener` is called once per sample, after it has been taken.
  dds_entity_t make_reader(const dds_topic_descriptor_t& type, const std::string& topic, Listener listener,
                           Caller caller);

  /// Waits until the writer has that many readers.
  static void wait_for_readers(dds_entity_t writer, unsigned readers);

private:
  dds_entity_t make_topic(const dds_topic_descriptor_t& type, const std::string& topic) const;
  void start_thread(dds_entity_t reader, Listener& listener) const;

  dds_entity_t participant_;
  std::vector<std::unique_ptr<Listener>> listeners_;
};

}  // namespace benchmarks
