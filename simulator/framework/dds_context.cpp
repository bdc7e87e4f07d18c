#include <dcps/dds_start.h>
#include <dcps/write_guard.h>
#include <varnok_dds.h>

#include <exception>
#include <string>

#include "simulator/framework/crossing.h"
#include "simulator/model/json_text.h"

namespace Varnok {
namespace {

using simulator::model::FaultKind;
using simulator::model::Point;

constexpr DDS::DomainId_t UNIT_DOMAIN = 0;

DDS::DomainParticipant_ptr make_participant(DDS::DomainParticipantFactory_ptr factory) {
  if (simulator::framework::cross(Point::DDS_PARTICIPANT, "{}").kind == FaultKind::FAIL) {
    return DDS::DomainParticipant::_nil();
  }
  return factory->create_participant(UNIT_DOMAIN, PARTICIPANT_QOS_DEFAULT, DDS::DomainParticipantListener::_nil(), 0);
}

/// Crosses the interface with a sample.
dcps::WriteOrder order_for_write(const char* topic_name) {
  if (!simulator::framework::watched()) {
    return dcps::WriteOrder::SEND;
  }
  const std::string args = "{\"topic\":" + simulator::model::json_text(topic_name) + "}";
  switch (simulator::framework::cross(Point::DDS_WRITE, args).kind) {
    case FaultKind::FAIL:
      return dcps::WriteOrder::REFUSE;
    case FaultKind::NO_REPLY:
      return dcps::WriteOrder::LOSE;
    case FaultKind::TWICE:
      return dcps::WriteOrder::SEND_TWICE;
    default:
      return dcps::WriteOrder::SEND;
  }
}

DDS_Context make_context() {
  DDS_Context context{DDS::DomainParticipantFactory::_nil(), DDS::DomainParticipant::_nil()};
  try {
    context.factory = dcps::start_dds();
    if (!CORBA::is_nil(context.factory)) {
      dcps::set_write_guard(order_for_write);
      context.participant = make_participant(context.factory);
    }
  } catch (const std::exception&) {
    context.participant = DDS::DomainParticipant::_nil();
  } catch (const CORBA::Exception&) {
    context.participant = DDS::DomainParticipant::_nil();
  }
  return context;
}

/// The process's context. Never destroyed: threads that outlive all file-scope objects may use entities until the
/// process ends.
const DDS_Context& the_context() {
  static const DDS_Context& context = *new DDS_Context(make_context());
  return context;
}

}  // namespace

DDS_BaseObj::DDS_BaseObj() {
  the_context();
}

DDS_BaseObj::~DDS_BaseObj() = default;

const DDS_Context& DDS_BaseObj::DdsBase() const {
  return the_context();
}

}  // namespace Varnok
