// Another program of the unit that uses the board: takes the board lock, says so, and keeps it until it is ended.

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
