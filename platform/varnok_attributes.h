#pragma once

#include "attributesC.h"
#include "attributesTypeSupportImpl.h"

namespace Varnok {

/// A message without payload.
struct DDS_VoidMessage {};

/// Maps the value type of a topic to its attribute sample type.
template <typename T>
struct DDS_Attribute;

template <>
struct DDS_Attribute<bool> {
  using Sample = QTNN_DDS::ATTR_BOOLEAN;
  using TypeSupport = QTNN_DDS::ATTR_BOOLEANTypeSupport;
  using TypeSupport_var = QTNN_DDS::ATTR_BOOLEANTypeSupport_var;
  using TypeSupportImpl = QTNN_DDS::ATTR_BOOLEANTypeSupportImpl;
  using DataWriter = QTNN_DDS::ATTR_BOOLEANDataWriter;
  using DataWriter_var = QTNN_DDS::ATTR_BOOLEANDataWriter_var;
  using DataReader = QTNN_DDS::ATTR_BOOLEANDataReader;
  using DataReader_var = QTNN_DDS::ATTR_BOOLEANDataReader_var;
};

template <>
struct DDS_Attribute<DDS_VoidMessage> {
  using Sample = QTNN_DDS::ATTR_VOID;
  using TypeSupport = QTNN_DDS::ATTR_VOIDTypeSupport;
  using TypeSupport_var = QTNN_DDS::ATTR_VOIDTypeSupport_var;
  using TypeSupportImpl = QTNN_DDS::ATTR_VOIDTypeSupportImpl;
  using DataWriter = QTNN_DDS::ATTR_VOIDDataWriter;
  using DataWriter_var = QTNN_DDS::ATTR_VOIDDataWriter_var;
  using DataReader = QTNN_DDS::ATTR_VOIDDataReader;
  using DataReader_var = QTNN_DDS::ATTR_VOIDDataReader_var;
};

}  // namespace Varnok
