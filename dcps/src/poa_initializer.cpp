#include <tao/PortableServer/PortableServer.h>

int TAO_POA_Initializer::init() {
  // omniORB carries its object adapter in the library itself; being linked is all it takes.
  return 0;
}
