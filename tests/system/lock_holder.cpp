// Another program of the unit that uses the board: takes the board lock, reports it, and keeps it until it is killed.

#include <unistd.h>

#include <iostream>

#include "radalt.h"

int main() {
  const int handle = Radalt_Init();
  std::cout << "lock " << Radalt_LockGet(handle) << std::endl;
  for (;;) {
    pause();
  }
}
