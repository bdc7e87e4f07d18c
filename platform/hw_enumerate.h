#pragma once

// Varnok::HwEnumerate_Able, the engine that starts and stops the engines that hold hardware. Registered in the naming
// service as "Halcyra"/"local"/"HWENUM_ABLE"/"1". Calls block their caller until the servant answers; a servant that
// cannot be reached shows as a CORBA system exception.
#include "hw_enumerateC.h"
