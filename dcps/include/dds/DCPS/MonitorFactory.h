#pragma once

namespace OpenDDS::DCPS {

/// The DDS monitor service: it reports nothing here, as with OpenDDS when its monitor library is not loaded.
class __attribute__((visibility("default"))) MonitorFactory {
public:
  /// Returns 0. Any thread, any time, static initialisation included; a second call does nothing.
  static int service_initialize();
};

/// Each source file that includes this header makes the call once, while it is being initialised.
[[maybe_unused]] static int OpenDDS_Requires_MonitorFactory_Initializer = MonitorFactory::service_initialize();

}  // namespace OpenDDS::DCPS
