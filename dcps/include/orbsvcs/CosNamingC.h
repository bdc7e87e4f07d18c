#pragma once

/// CosNaming: the naming service's interfaces, under the path at which TAO keeps them.
#include <omniORB4/Naming.hh>

#include <tao/corba.h>
