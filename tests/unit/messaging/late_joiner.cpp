#include <iostream>

#include "tests/unit/messaging/attribute_topic.h"

/// Joins the topic with that name and prints the first value that it receives.
int main(int argc, char* argv[]) {
  if (argc != 2) {
    return 2;
  }
  AttributeReader<BooleanAttribute> reader(argv[1]);
  const auto samples = reader.take(1);
  if (samples.empty()) {
    return 1;
  }
  std::cout << (samples.front().value ? "true" : "false") << std::endl;
  return 0;
}
