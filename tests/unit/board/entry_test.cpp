#include <gmock/gmock.h>

#include <dlfcn.h>
#include <semaphore.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <new>

#include <boost/interprocess/exceptions.hpp>
#include <boost/thread/exceptions.hpp>

#include "base/base_hardware.h"
#include "board/hardware.h"
#include "tests/doubles/captured_output.h"
#include "tests/doubles/failing_allocation.h"
#include "tests/doubles/fake_psdriver.h"
#include "tests/doubles/fake_radalt.h"
#include "tests/doubles/fake_varnok.h"

// Each case loads the library in its own child process, which ends with _Exit and reports by its standard error and its
// exit status.

namespace {

bool mutexes_fail = false;
/// The semaphore whose creation fails, counted from 1; 0: none.
unsigned int failing_semaphore = 0;

}  // namespace

/// Replacements of C library functions that can be set to fail.
extern "C" int pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) noexcept {
  if (mutexes_fail) {
    return EAGAIN;
  }
  using Init = int (*)(pthread_mutex_t*, const pthread_mutexattr_t*);
  static const auto real = reinterpret_cast<Init>(dlsym(RTLD_NEXT, "pthread_mutex_init"));
  return real(mutex, attributes);
}

extern "C" int sem_init(sem_t* semaphore, int shared, unsigned int count) noexcept {
  static unsigned int made = 0;
  if (++made == failing_semaphore) {
    errno = ENOSPC;
    return -1;
  }
  using Init = int (*)(sem_t*, int, unsigned int);
  static const auto real = reinterpret_cast<Init>(dlsym(RTLD_NEXT, "sem_init"));
  return real(semaphore, shared, count);
}

namespace {

using doubles::calls;
using doubles::CapturedOutput;
using doubles::FakePsdriver;
using doubles::FakeRadalt;
using testing::Eq;
using testing::ExitedWithCode;

constexpr int AS_EXPECTED = 42;

class EntryDeathTest : public testing::Test {
protected:
  EntryDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

/// Loads the library of this program's build. Uses the C library's own function, because a sanitizer's replacement lets
/// no exception through.
void* load() {
  using Open = void* (*)(const char*, int);
  void* const c_library = dlopen("libc.so.6", RTLD_NOW | RTLD_NOLOAD);
  const auto open = reinterpret_cast<Open>(dlsym(c_library, "dlopen"));
  const auto programs = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const std::string library = programs / "../../lib/libentry_under_test.so";
  void* const loaded = open(library.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!loaded) {
    std::cerr << dlerror() << std::endl;
  }
  return loaded;
}

[[noreturn]] void leave(bool as_expected) {
  std::_Exit(as_expected ? AS_EXPECTED : 1);
}

TEST_F(EntryDeathTest, LoadingMakesTheObjectAndPublishesIt) {
  EXPECT_EXIT(
      {
        FakeRadalt board;
        FakePsdriver driver;
        const bool loaded = load() != nullptr;
        leave(loaded && Hardware && Hardware->GetMaxInterfaces() == 1 && calls().count("init") == 1);
      },
      ExitedWithCode(AS_EXPECTED), Eq(""));
}

TEST_F(EntryDeathTest, TheLoadedObjectHasNoFans) {
  EXPECT_EXIT(
      {
        FakeRadalt board;
        FakePsdriver driver;
        load();
        leave(Hardware->GetFanState(0) == BASE_HARDWARE::FAN_UNKNOWN);
      },
      ExitedWithCode(AS_EXPECTED), Eq("BASE_HARDWARE::GetFanState index err\n"));
}

TEST_F(EntryDeathTest, TheObjectIsPublishedOnlyWhenItsConstructionHasReturned) {
  EXPECT_EXIT(
      {
        FakeRadalt board;
        FakePsdriver driver;
        bool null_until_the_end = false;
        driver.runs_first("SetSwitchInterruptCallback", [&] { null_until_the_end = Hardware == nullptr; });
        load();
        leave(null_until_the_end && Hardware);
      },
      ExitedWithCode(AS_EXPECTED), Eq(""));
}

TEST_F(EntryDeathTest, WithHardwareSetOneLineIsPrintedAndNothingElseHappens) {
  EXPECT_EXIT(
      {
        FakeRadalt board;
        FakePsdriver driver;
        const CapturedOutput output;
        auto* const someone = reinterpret_cast<BASE_HARDWARE*>(&board);
        Hardware = someone;
        const bool loaded = load() != nullptr;
        std::_Exit(loaded && Hardware == someone && calls().all().empty() && output.out().empty() &&
                           output.err() == "so proxy err\n"
                       ? AS_EXPECTED
                       : 1);
      },
      ExitedWithCode(AS_EXPECTED), Eq(""));
}

TEST_F(EntryDeathTest, LoadingTheSameLibraryAgainMakesNoSecondObject) {
  EXPECT_EXIT(
      {
        FakeRadalt board;
        FakePsdriver driver;
        void* const first = load();
        const BASE_HARDWARE* const object = Hardware;
        leave(load() == first && Hardware == object && calls().count("init") == 1);
      },
      ExitedWithCode(AS_EXPECTED), Eq(""));
}

TEST_F(EntryDeathTest, ABoardThatCannotBeOpenedEndsTheHostWithStatusOne) {
  EXPECT_EXIT(
      {
        FakeRadalt board;
        FakePsdriver driver;
        driver.runs_first("SetBatteryRelativeStateOfChargeCallback", [] { std::_Exit(77); });
        board.opens_with(-19);
        load();
        leave(true);
      },
      ExitedWithCode(1), Eq(" HARDWARE::Init  critical error opening device, errno=-19\n"));
}

TEST_F(EntryDeathTest, TheObjectIsNeverDestroyed) {
  EXPECT_EXIT(
      {
        [[maybe_unused]] static auto& board = *new FakeRadalt;
        [[maybe_unused]] static auto& driver = *new FakePsdriver;
        static auto& object = *new doubles::ReleaseWatch(sizeof(HARDWARE));
        load();
        object.ends_process(1);
        std::exit(object.has_begun() && Hardware ? AS_EXPECTED : 2);
      },
      ExitedWithCode(AS_EXPECTED), Eq(""));
}

TEST_F(EntryDeathTest, AnExceptionOfTheConstructionLeavesTheLoadAndHardwareNull) {
  EXPECT_EXIT(
      {
        FakeRadalt board;
        FakePsdriver driver;
        driver.fails("psdriver");
        bool thrown = false;
        try {
          load();
        } catch (const psdriverError&) {
          thrown = true;
        }
        leave(thrown && !Hardware && calls().count("init") == 0);
      },
      ExitedWithCode(AS_EXPECTED), Eq(""));
}

TEST_F(EntryDeathTest, NoMemoryForTheObjectLeavesTheLoadAndHardwareNull) {
  EXPECT_EXIT(
      {
        FakeRadalt board;
        FakePsdriver driver;
        bool thrown = false;
        try {
          const doubles::FailingAllocation failing(1, sizeof(HARDWARE));
          load();
        } catch (const std::bad_alloc&) {
          thrown = true;
        }
        leave(thrown && !Hardware && calls().all().empty());
      },
      ExitedWithCode(AS_EXPECTED), Eq(""));
}

TEST_F(EntryDeathTest, AMutexThatCannotBeMadeLeavesTheLoadAsAThreadResourceError) {
  EXPECT_EXIT(
      {
        FakeRadalt board;
        FakePsdriver driver;
        bool thrown = false;
        try {
          mutexes_fail = true;
          load();
        } catch (const boost::thread_resource_error&) {
          thrown = true;
        }
        leave(thrown && !Hardware && calls().all().empty());
      },
      ExitedWithCode(AS_EXPECTED), Eq(""));
}

class FailingSemaphoreTest : public EntryDeathTest, public testing::WithParamInterface<unsigned int> {};

TEST_P(FailingSemaphoreTest, LeavesTheLoadAsAnInterprocessException) {
  EXPECT_EXIT(
      {
        FakeRadalt board;
        FakePsdriver driver;
        bool thrown = false;
        try {
          failing_semaphore = GetParam();
          load();
        } catch (const boost::interprocess::interprocess_exception& error) {
          thrown = error.get_native_error() == ENOSPC;
        }
        leave(thrown && !Hardware && calls().all().empty());
      },
      ExitedWithCode(AS_EXPECTED), Eq(""));
}

INSTANTIATE_TEST_SUITE_P(EachKind, FailingSemaphoreTest, testing::Range(1U, 8U));

}  // namespace
