#include "control/service/clients.h"

namespace control::service {

std::vector<std::shared_ptr<Client>> Clients::all() const {
  std::vector<std::shared_ptr<Client>> all;
  for (Client* each : all_) {
    if (auto client = each->weak_from_this().lock()) {
      all.push_back(std::move(client));
    }
  }
  return all;
}

void Clients::end_all() {
  for (const auto& each : all()) {
    each->end();
  }
}

void Clients::close_all() {
  for (const auto& each : all()) {
    each->close();
  }
}

}  // namespace control::service
