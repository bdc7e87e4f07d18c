#pragma once

#include <memory>

#include <orbsvcs/CosNamingC.h>

#include "tests/doubles/child_process.h"
#include "tests/doubles/temporary_folder.h"

namespace doubles {

/// A loopback port on which no process listens.
unsigned free_port();

/// A naming service in a process of its own, on a loopback port of its own; ended by the destructor.
class NamingService {
public:
  /// Returns once it answers this process's ORB, which is started if necessary. Throws std::runtime_error if it does
  /// not start.
  NamingService();
  NamingService(const NamingService&) = delete;
  NamingService& operator=(const NamingService&) = delete;

  unsigned port() const { return port_; }
  /// Throws CORBA::SystemException.
  CosNaming::NamingContext_var root() const;

private:
  void start();
  /// Waits until it answers; false if it has ended or ten seconds have passed.
  bool comes_to_answer() const;

  TemporaryFolder folder_;
  unsigned port_ = 0;
  std::unique_ptr<ChildProcess> process_;
};

}  // namespace doubles
