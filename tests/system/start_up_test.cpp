// The first steps of loading the library: its source files' own initialisers.

#include <algorithm>
#include <sstream>

#include "tests/system/unit_fixture.h"

namespace {

using namespace system_test;
using testing::AnyOf;
using testing::Each;
using Steps = std::vector<std::string>;

/// First steps of one source file: the streams, then the object adapter if it uses CORBA objects, then the monitor
/// service if it uses DDS entities.
const Steps PLAIN_FILE{"streams"};
const Steps CORBA_FILE{"streams", "poa"};
const Steps DDS_FILE{"streams", "poa", "monitor"};

class StartUpTest : public testing::Test {
protected:
  StartUpTest() {
    const Ending ending = unit_.start().run_to_end({"start_up_probe", "/opt/unit/lib/libradalt_hardware.so"});
    EXPECT_THAT(ending, ExitedWith(0));
    std::istringstream lines(ending.out);
    for (std::string line; std::getline(lines, line);) {
      if (line.rfind("BASE_HARDWARE::", 0) != 0) {
        steps_.push_back(line);
      }
    }
  }

  /// The steps of each source file, in the order of the files.
  std::vector<Steps> files() const {
    std::vector<Steps> files;
    for (const std::string& step : steps_) {
      if (step == "streams" || files.empty()) {
        files.emplace_back();
      }
      if (step != "mutex" && step != "object") {
        files.back().push_back(step);
      }
    }
    return files;
  }

  SimulatedUnit unit_;
  Steps steps_;
};

TEST_F(StartUpTest, MutexesAreMadeFirst) {
  const auto streams = std::find(steps_.begin(), steps_.end(), "streams");
  ASSERT_NE(streams, steps_.begin());
  EXPECT_THAT(Steps(steps_.begin(), streams), Each("mutex"));
}

TEST_F(StartUpTest, EachFileBeginsWithStreamsThenObjectAdapterThenMonitorService) {
  std::vector<Steps> all = files();
  EXPECT_EQ(all.front(), Steps()) << "the mutexes";
  all.erase(all.begin());
  EXPECT_THAT(all, Each(AnyOf(PLAIN_FILE, CORBA_FILE, DDS_FILE)));
  EXPECT_GE(std::count(all.begin(), all.end(), DDS_FILE), 3);
}

TEST_F(StartUpTest, TheObjectIsMadeByAFileThatHasBegunSo) {
  ASSERT_EQ(std::count(steps_.begin(), steps_.end(), "object"), 1);
  EXPECT_EQ(steps_.back(), "object");
  EXPECT_EQ(files().back(), DDS_FILE);
}

}  // namespace
