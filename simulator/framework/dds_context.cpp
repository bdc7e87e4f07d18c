#include <dcps/dds_start.h>
#include <varnok_dds.h>

#include <exception>

#include "simulator/framework/crossing.h"

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

DDS_Context make_context() {
  DDS_Context context{DDS::DomainParticipantFactory::_nil(), DDS::DomainParticipant::_nil()};
  try {
    context.factory = dcps::start_dds();
    if (!CORBA::is_nil(context.factory)) {
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
