#pragma once

#include <memory>

#include <dds/dds.h>

#include <dds/DdsDcpsInfrastructureC.h>

namespace dcps {

struct CycloneQosDeleter {
  void operator()(dds_qos_t* qos) const { dds_delete_qos(qos); }
};
using CycloneQos = std::unique_ptr<dds_qos_t, CycloneQosDeleter>;

/// Sets every policy that DCPS entities have here; the defaults of the others are the same on both sides.
CycloneQos to_cyclone(const DDS::DataWriterQos& qos);
CycloneQos to_cyclone(const DDS::DataReaderQos& qos);

}  // namespace dcps
