#pragma once

// Varnok::HwEnumerate_Able, the engine that starts and stops the engines that hold hardware. Registered in the naming
// service as "Halcyra"/"local"/"HWENUM_ABLE"/"1". Calls block their caller until the servant answers; they throw a
// CORBA system exception if the servant cannot be reached.
#include "hw_enumerateC.h"
