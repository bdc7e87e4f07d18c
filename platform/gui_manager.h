#pragma once

// Halcyra::gui::GUIManager, the user interface's window manager. Registered in the naming service as
// "Halcyra"/"local"/"GUIManager". Calls block their caller until the servant answers, ShowDialog with a wait flag until
// the user does; they throw a CORBA system exception if the servant cannot be reached.
#include "gui_managerC.h"
