#pragma once

#include <cstddef>
#include <memory>
#include <set>
#include <vector>

namespace control::service {

class Client;

/// The connections of clients that are open. The service's thread.
class Clients {
public:
  std::size_t count() const { return all_.size(); }
  /// Asks each to end.
  void end_all();
  /// Closes each.
  void close_all();

private:
  friend class Client;
  std::vector<std::shared_ptr<Client>> all() const;

  std::set<Client*> all_;
};

/// One connection of a client, in whatever use; owned by its pending operations.
class Client : public std::enable_shared_from_this<Client> {
public:
  explicit Client(Clients& clients) : clients_(clients) { clients_.all_.insert(this); }
  virtual ~Client() { leave(); }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  /// Closes the connection as soon as what it owes is sent.
  virtual void end() = 0;
  /// Closes the connection now.
  virtual void close() = 0;

protected:
  /// The connection is closed, even if somebody still refers to this object.
  void leave() { clients_.all_.erase(this); }

private:
  Clients& clients_;
};

}  // namespace control::service
