#pragma once

// Halcyra::gui::GUIManager, the user interface's window manager. Registered in the naming service as
// "Halcyra"/"local"/"GUIManager". Calls block their caller until the servant answers, ShowDialog with a wait flag until
// the user does; a servant that cannot be reached shows as a CORBA system exception.
#include "gui_managerC.h"
