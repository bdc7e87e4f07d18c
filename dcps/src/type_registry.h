#pragma once

#include <map>
#include <mutex>
#include <string>
#include <variant>

#include <dds/DCPS/TypeSupportImpl.h>

namespace dcps {

/// The types registered with each participant. Thread-safe.
///
/// A participant is known by its instance handle, so that a stand-in that forwards to a real participant registers with
/// that one; a stand-in that has no handle is known by its address.
class TypeRegistry {
public:
  static TypeRegistry& instance();

  DDS::ReturnCode_t add(DDS::DomainParticipant_ptr participant, const std::string& name,
                        OpenDDS::DCPS::TypeSupportImpl& type);
  DDS::ReturnCode_t remove(DDS::DomainParticipant_ptr participant, const std::string& name,
                           OpenDDS::DCPS::TypeSupportImpl& type);
  /// Forgets all types of the participant.
  void remove_all(DDS::DomainParticipant_ptr participant);
  /// Nil: no type of that name is registered.
  Reference<OpenDDS::DCPS::TypeSupportImpl> find(DDS::DomainParticipant_ptr participant, const std::string& name);

private:
  using Key = std::variant<DDS::InstanceHandle_t, DDS::DomainParticipant_ptr>;
  using Types = std::map<std::string, Reference<OpenDDS::DCPS::TypeSupportImpl>>;

  static Key key_of(DDS::DomainParticipant_ptr participant);

  std::mutex mutex_;
  std::map<Key, Types> participants_;
};

}  // namespace dcps
