#pragma once

/// Finds the unit's remote services by their naming paths and refreshes the holders of driver_link.h. A lookup that
/// fails is reported by one line on standard error and keeps the holder's last value; nothing is thrown. An object of
/// another type leaves the holder nil. Called on the power-supply driver's thread.

/// The GUI manager, into `GuiManagerPtr`.
void FindGuiManagerInstance();
/// The everybody engine, into `EverBdyPtr`.
void FindEverybodyEngine();
/// The hardware enumeration engine, into `EnumEngPtr`.
void FindHwEnumerationEngine();
