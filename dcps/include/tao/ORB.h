#pragma once

/// CORBA::ORB and CORBA::ORB_init, under the path at which TAO keeps them.
#include <tao/corba.h>
