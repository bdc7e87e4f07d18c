#pragma once

#include <string>
#include <utility>
#include <vector>

#include <tao/PortableServer/PortableServer.h>

/// Access to the unit's ORB and naming service. Each object may be used by one thread at a time; several objects may be
/// used concurrently.
class __attribute__((visibility("default"))) ORB_wrapper_base {
public:
  /// One lookup and its answer.
  struct ClientInfo {
    ClientInfo() = default;
    explicit ClientInfo(std::vector<std::string> naming_path) : path(std::move(naming_path)) {}

    std::vector<std::string> path;                     ///< the naming path, outermost name first
    CORBA::Object_ptr object = CORBA::Object::_nil();  ///< the object found; it belongs to the wrapper that found it
  };

  /// Does no input or output: the ORB is started by the first lookup of the process.
  ORB_wrapper_base();
  /// Releases every object that this wrapper has found.
  ~ORB_wrapper_base();
  ORB_wrapper_base(const ORB_wrapper_base&) = delete;
  ORB_wrapper_base& operator=(const ORB_wrapper_base&) = delete;

  /// Resolves the path of every entry in the naming service and fills in its object. Throws the ORB's CORBA exception
  /// if an entry cannot be resolved; the entries before it are then filled in. Blocks without limit if the naming
  /// service accepts the connection but does not answer.
  void LookupClient(std::vector<ClientInfo>& clients);

private:
  class Found;
  Found* found_;
};
