// Settings that units may provide.

#include <cstddef>

#include "host/operation.h"

namespace host {
namespace {

using nlohmann::json;

template <void (BASE_HARDWARE::*Operation)(int)>
json set_number(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(1);
  (hardware.*Operation)(arguments.number(0, "setting"));
  return json::object();
}

template <void (BASE_HARDWARE::*Operation)(double)>
json set_real(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(1);
  (hardware.*Operation)(arguments.real(0, "value"));
  return json::object();
}

template <double (BASE_HARDWARE::*Operation)()>
json real(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(0);
  return {{"result", (hardware.*Operation)()}};
}

template <void (BASE_HARDWARE::*Operation)()>
json act(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(0);
  (hardware.*Operation)();
  return json::object();
}

json alarm_annunciator_state(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(1);
  hardware.AlarmAnnunciatorState(arguments.flag(0, "on"));
  return json::object();
}

/// The status reading belongs to the engine framework and does not exist in this process. The operations, which no unit
/// provides, get the address of a dummy and do not access it.
template <void (BASE_HARDWARE::*Operation)(const std::string&, bool, Varnok::EngineReadingString_i&)>
json copy_files(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(2);
  const std::string path = arguments.text(0, "path");
  const bool to_media = arguments.flag(1, "to_media");
  alignas(std::max_align_t) static unsigned char stand_in[256] = {};
  (hardware.*Operation)(path, to_media, reinterpret_cast<Varnok::EngineReadingString_i&>(stand_in));
  return json::object();
}

json set_cpu_usage_attr(BASE_HARDWARE& hardware, const Arguments& arguments) {
  arguments.at_most(1);
  arguments.null(0, "usage");
  hardware.SetCpuUsageAttr(nullptr);
  return json::object();
}

}  // namespace

const std::vector<Operation>& setting_operations() {
  using B = BASE_HARDWARE;
  static const std::vector<Operation> operations = {
      {"SetRefOscillator", "setting: number", set_number<&B::SetRefOscillator>},
      {"AlarmAnnunciatorState", "on: flag", alarm_annunciator_state},
      {"SetQM2760LoopBandwidth", "setting: number", set_number<&B::SetQM2760LoopBandwidth>},
      {"ReadBusVoltages", "", act<&B::ReadBusVoltages>},
      {"SetAutoTuneThreshold", "value: real", set_real<&B::SetAutoTuneThreshold>},
      {"SetAutoTuneChannelSpacing", "value: real", set_real<&B::SetAutoTuneChannelSpacing>},
      {"SetAutoTuneStartFreq", "value: real", set_real<&B::SetAutoTuneStartFreq>},
      {"SetAutoTuneStopFreq", "value: real", set_real<&B::SetAutoTuneStopFreq>},
      {"CopyScreenSettings", "path: text, to_media: flag", copy_files<&B::CopyScreenSettings>},
      {"CopyScripts", "path: text, to_media: flag", copy_files<&B::CopyScripts>},
      {"SetCurrentlyActive", "setting: number", set_number<&B::SetCurrentlyActive>},
      {"SetRs232BaudRate", "setting: number", set_number<&B::SetRs232BaudRate>},
      {"SetRs232Parity", "setting: number", set_number<&B::SetRs232Parity>},
      {"SetRs232DataBits", "setting: number", set_number<&B::SetRs232DataBits>},
      {"SetRs232StopBits", "setting: number", set_number<&B::SetRs232StopBits>},
      {"SetRs232FlowControl", "setting: number", set_number<&B::SetRs232FlowControl>},
      {"SetRs232Echo", "setting: number", set_number<&B::SetRs232Echo>},
      {"SetCpuUsageAttr", "usage: null", set_cpu_usage_attr},
      {"SetTime", "", act<&B::SetTime>},
      {"GetThreshold", "", real<&B::GetThreshold>},
      {"GetStartFreq", "", real<&B::GetStartFreq>},
      {"GetStopFreq", "", real<&B::GetStopFreq>},
      {"GetBW", "", real<&B::GetBW>},
  };
  return operations;
}

}  // namespace host
