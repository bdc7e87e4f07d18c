// The source files that contain the engines' start-up calls, read from the library's object files.

#include <gmock/gmock.h>

#include <sstream>

#include "tests/abi/tool_output.h"

namespace {

using testing::Contains;
using testing::IsSupersetOf;

/// The undefined symbols of each object file in a list separated by "|".
std::vector<std::vector<std::string>> undefined_names(const std::string& object_files) {
  std::vector<std::vector<std::string>> names;
  std::istringstream files(object_files);
  for (std::string file; std::getline(files, file, '|');) {
    names.emplace_back();
    for (const std::string& line : abi_test::lines_of("nm -C --undefined-only '" + file + "'")) {
      names.back().push_back(line.substr(line.find("U ") + 2));
    }
  }
  return names;
}

/// A layer of the library and its object files.
struct Layer {
  const char* name;
  const char* object_files;
};

void PrintTo(const Layer& layer, std::ostream* stream) {
  *stream << layer.name;
}

class StartUpCallsTest : public testing::TestWithParam<Layer> {};

TEST_P(StartUpCallsTest, SomeFileOfTheLayerMakesAllThree) {
  EXPECT_THAT(undefined_names(GetParam().object_files),
              Contains(IsSupersetOf({"std::ios_base::Init::Init()", "TAO_POA_Initializer::init()",
                                     "OpenDDS::DCPS::MonitorFactory::service_initialize()"})));
}

INSTANTIATE_TEST_SUITE_P(Layers, StartUpCallsTest,
                         testing::Values(Layer{"base", BASE_OBJECTS}, Layer{"handheld", HANDHELD_OBJECTS},
                                         Layer{"board", BOARD_OBJECTS}),
                         [](const auto& layer) { return layer.param.name; });

}  // namespace
