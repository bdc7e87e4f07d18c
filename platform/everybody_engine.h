#pragma once

// Varnok::EverybodyEng::Interfaces, the engine that speaks for all engines of the unit. Registered in the naming
// service as "Halcyra"/"local"/"EVERYBODYENG"/"1". Calls block their caller until the servant answers; a servant that
// cannot be reached shows as a CORBA system exception.
#include "everybody_engineC.h"
