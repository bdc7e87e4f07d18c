#include "dcps/src/thread_role.h"

namespace dcps {

namespace {

thread_local int user_calls = 0;
thread_local int engine_calls = 0;

}  // namespace

UserCall::UserCall() {
  ++user_calls;
}
UserCall::~UserCall() {
  --user_calls;
}
bool UserCall::on_this_thread() {
  return user_calls > 0;
}

EngineCall::EngineCall() {
  ++engine_calls;
}
EngineCall::~EngineCall() {
  --engine_calls;
}

void delete_in_cyclone(dds_entity_t cyclone, DDS::Entity_ptr entity, const std::shared_ptr<Delivery>& delivery) {
  if (engine_calls > 0) {
    const DDS::Entity_var kept = DDS::Entity::_duplicate(entity);
    delivery->post([cyclone, kept, delivery] { delete_in_cyclone(cyclone, kept.in(), delivery); });
    return;
  }
  const UserCall call;
  dds_delete(cyclone);
}

}  // namespace dcps
