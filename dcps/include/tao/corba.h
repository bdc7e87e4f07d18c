#pragma once

/// The CORBA module, under the path at which TAO keeps it.
#include <omniORB4/CORBA.h>
