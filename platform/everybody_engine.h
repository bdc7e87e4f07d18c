#pragma once

// Varnok::EverybodyEng::Interfaces, the engine that speaks for all engines of the unit. Registered in the naming
// service as "Halcyra"/"local"/"EVERYBODYENG"/"1". Calls block their caller until the servant answers; they throw a
// CORBA system exception if the servant cannot be reached.
#include "everybody_engineC.h"
