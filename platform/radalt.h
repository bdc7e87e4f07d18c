#pragma once

#include <cstdint>

/// The radar-altimeter board driver: registers in numbered address spaces, and the board lock.
///
/// Every operation may be called from any thread. Single register accesses are atomic; a sequence of accesses is
/// undisturbed only while its caller holds the board lock, which is shared by all processes that use the driver.
extern "C" {

/// Opens the board. Returns a handle >= 0 for the operations below, or a negative error number if the board cannot be
/// opened. There is no close operation; the handle is valid until the process ends.
int Radalt_Init();

/// Reads the 32-bit register `address` of address space `space` into `*value`.
/// Returns 0 on success, else a non-zero status; `*value` is then unspecified and may be untouched.
int Radalt_Read(int handle, unsigned int space, unsigned int address, unsigned int* value);

/// Writes the 32-bit `value` to register `address` of address space `space`.
/// Returns 0 on success, else a non-zero status; the register is then unchanged.
int Radalt_Write(int handle, unsigned int space, unsigned int address, unsigned int value);

/// Takes the board lock, waiting without limit while another thread or process holds it.
/// Returns 0 once the caller holds it, else a non-zero error number. Not to be taken twice by one holder.
int Radalt_LockGet(int handle);

/// Gives the board lock back. Returns 0, or a non-zero error number if the caller does not hold it.
int Radalt_LockPut(int handle);
}
