#include "simulator/memory/shared_mutex.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <thread>

namespace {

using simulator::memory::SharedMutex;

/// A checked mutex in memory that the test shares with its child processes.
class SharedMutexTest : public ::testing::Test {
protected:
  ~SharedMutexTest() override { ::munmap(memory_, sizeof(SharedMutex)); }

  void* memory_ = ::mmap(nullptr, sizeof(SharedMutex), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  SharedMutex& lock_ = *new (memory_) SharedMutex(SharedMutex::Kind::CHECKED);
};

/// A child process that takes the mutex, reports it, and then waits to be killed.
pid_t child_that_holds(SharedMutex& lock) {
  int ready[2];
  EXPECT_EQ(::pipe(ready), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const char taken = lock.take() == 0 ? 'y' : 'n';
    ::_exit(::write(ready[1], &taken, 1) == 1 ? (::pause(), 0) : 1);
  }
  char taken = 0;
  EXPECT_EQ(::read(ready[0], &taken, 1), 1);
  EXPECT_EQ(taken, 'y');
  ::close(ready[0]);
  ::close(ready[1]);
  return child;
}

TEST_F(SharedMutexTest, IsGrantedAfterItsHolderWasKilled) {
  const pid_t child = child_that_holds(lock_);
  ASSERT_EQ(::kill(child, SIGKILL), 0);
  ::waitpid(child, nullptr, 0);
  EXPECT_EQ(lock_.take(), 0);
  EXPECT_EQ(lock_.give(), 0);
  EXPECT_EQ(lock_.take(), 0);
  EXPECT_EQ(lock_.give(), 0);
}

TEST_F(SharedMutexTest, IsGrantedToOneWhoWaitsWhenItsHolderIsKilled) {
  const pid_t child = child_that_holds(lock_);
  int taken = -1;
  std::thread waiter([&] {
    taken = lock_.take();
    lock_.give();
  });
  ASSERT_EQ(::kill(child, SIGKILL), 0);
  ::waitpid(child, nullptr, 0);
  waiter.join();
  EXPECT_EQ(taken, 0);
}

TEST_F(SharedMutexTest, IsRefusedToItsHolder) {
  EXPECT_EQ(lock_.take(), 0);
  EXPECT_EQ(lock_.take(), EDEADLK);
  EXPECT_EQ(lock_.give(), 0);
}

TEST_F(SharedMutexTest, IsNotTakenBackFromOneWhoDoesNotHoldIt) {
  EXPECT_EQ(lock_.give(), EPERM);
  std::thread([&] { EXPECT_EQ(lock_.take(), 0); }).join();
}

TEST_F(SharedMutexTest, KeepsThreadsApart) {
  int counted = 0;
  const auto count = [&] {
    for (int round = 0; round < 1000; ++round) {
      ASSERT_EQ(lock_.take(), 0);
      ++counted;
      ASSERT_EQ(lock_.give(), 0);
    }
  };
  std::thread one(count);
  std::thread other(count);
  one.join();
  other.join();
  EXPECT_EQ(counted, 2000);
}

}  // namespace
