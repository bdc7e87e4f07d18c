# The DDS and CORBA engine behind messaging/ and the simulator. Both engines provide
#   dcps                                    the target to link for the DCPS API and CORBA
#   dcps_corba_interfaces(<target> <idl>…)  adds the stubs and skeletons of each IDL file (<stem>C.h, <stem>S.h)
#   dcps_topic_types(<target> <idl>…)       adds the types and type supports of each IDL file
#                                           (<stem>C.h, <stem>TypeSupportImpl.h)
set(DCPS "" CACHE STRING "DDS and CORBA engine: OpenDDS or Cyclone; empty takes OpenDDS where it is found")
set_property(CACHE DCPS PROPERTY STRINGS "" OpenDDS Cyclone)

if(NOT DCPS)
  find_package(OpenDDS CONFIG QUIET)
  if(OpenDDS_FOUND OR (DEFINED ENV{DDS_ROOT} AND DEFINED ENV{ACE_ROOT} AND DEFINED ENV{TAO_ROOT}))
    set(dcps_engine OpenDDS)
  else()
    set(dcps_engine Cyclone)
  endif()
elseif(DCPS MATCHES "^(OpenDDS|Cyclone)$")
  set(dcps_engine ${DCPS})
else()
  message(FATAL_ERROR "DCPS is \"${DCPS}\"; it must be OpenDDS, Cyclone or empty")
endif()

message(STATUS "DDS and CORBA engine: ${dcps_engine}")
include(Engine${dcps_engine})
