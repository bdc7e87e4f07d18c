#include <condition_variable>
#include <future>
#include <mutex>
#include <thread>

#include "tests/doubles/fake_dds.h"
#include "tests/unit/handheld/handheld_under_test.h"
#include "tests/unit/handheld/timed_waits.h"
#include "tests/unit/handheld/user_interface.h"
#include "varnok_errors.h"

// Done-loading messages that arrive while the object is still being constructed.

namespace {

using doubles::calls;
using doubles::FakeDds;
using doubles::ParticipantInUse;
using doubles::ScriptedReader;
using testing::ElementsAre;
using testing::IsEmpty;

const char LED_CALL[] = "SetSystemLEDStatus 12 0";

/// Counts the ends of the threads that have called on_this_thread().
class ThreadEnds {
public:
  void on_this_thread() {
    thread_local Signal signal;
    signal.ends = this;
  }
  /// False after ten seconds.
  bool wait_for(unsigned int number) {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(10), [&] { return number_ >= number; });
  }

private:
  struct Signal {
    ~Signal() {
      const std::lock_guard<std::mutex> lock(ends->mutex_);
      ++ends->number_;
      ends->changed_.notify_all();
    }
    ThreadEnds* ends = nullptr;
  };

  std::mutex mutex_;
  std::condition_variable changed_;
  unsigned int number_ = 0;
};

class EarlyMessageTest : public HandheldSurroundings {
protected:
  EarlyMessageTest() {
    dds_.runs_last("create_datareader", [this] { start_ups_.on_this_thread(); });
  }

  /// To be called while the object is being constructed: publishes a message; when this returns, a thread of the engine
  /// waits with it for the driver.
  void message_comes() {
    ASSERT_TRUE(start_ups_.wait_for(++objects_));
    std::promise<void> waiting;
    bool seen = false;
    const std::thread::id constructing = std::this_thread::get_id();
    user_interface_.wait_for_listener();
    const doubles::WatchedTimedWaits watched([&](std::chrono::nanoseconds) {
      if (std::this_thread::get_id() != constructing && !seen) {
        seen = true;
        waiting.set_value();
      }
    });
    user_interface_.done_loading();
    ASSERT_EQ(waiting.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready);
  }

  UserInterface user_interface_;
  FakeDds dds_;
  ParticipantInUse in_use_{dds_.participant()};
  ThreadEnds start_ups_;
  unsigned int objects_ = 0;
  doubles::CapturedOutput output_;
};

TEST_F(EarlyMessageTest, WaitsForTheDriverAndSetsTheLedOnTheDeliveryThread) {
  std::thread::id setter;
  driver_.runs_first("psdriver", [this] { message_comes(); });
  driver_.runs_first("SetSystemLEDStatus", [&] { setter = std::this_thread::get_id(); });
  {
    const PlainHandheld unit;
    ASSERT_TRUE(calls().wait_for(LED_CALL));
  }
  EXPECT_EQ(calls().count(LED_CALL), 1U);
  EXPECT_NE(setter, std::this_thread::get_id());
}

TEST_F(EarlyMessageTest, EachOfSeveralSetsTheLed) {
  driver_.runs_first("psdriver", [this] {
    message_comes();
    user_interface_.done_loading();
    user_interface_.done_loading();
  });
  {
    const PlainHandheld unit;
    ASSERT_TRUE(calls().wait_for(LED_CALL, 3));
  }
  EXPECT_EQ(calls().count(LED_CALL), 3U);
}

TEST_F(EarlyMessageTest, AnExceptionOfItsEventGoesToTheDeliveryAndNotOutOfTheConstructor) {
  driver_.fails("SetSystemLEDStatus");
  doubles::run_first_in_sends([] { throw std::runtime_error("log full"); });
  std::future<void> delivery;
  driver_.runs_first("psdriver", [&] {
    ASSERT_TRUE(start_ups_.wait_for(1));
    const DDS::DataReaderListener_var listener = dds_.reader_listener();
    delivery = std::async(std::launch::async, [listener] {
      const DDS::DataReader_var reader = new ScriptedReader(DDS::RETCODE_OK, true, DDS::ALIVE_INSTANCE_STATE);
      listener->on_data_available(reader.in());
    });
  });
  std::unique_ptr<PlainHandheld> unit;
  EXPECT_NO_THROW(unit = std::make_unique<PlainHandheld>());
  EXPECT_THROW(delivery.get(), std::runtime_error);
}

/// A construction that fails while a message waits, followed by one that succeeds.
class FailedConstructionTest : public EarlyMessageTest {
protected:
  void expect_nothing_of_it_survives() {
    EXPECT_EQ(calls().count(LED_CALL), 0U);
    EXPECT_THAT(doubles::sent_events(), IsEmpty());
    calls().clear();
    FakeDds dds;
    const ParticipantInUse in_use(dds.participant());
    dds.runs_last("create_datareader", [this] { start_ups_.on_this_thread(); });
    driver_.runs_first("psdriver", [this] { message_comes(); });
    {
      const PlainHandheld next;
      ASSERT_TRUE(calls().wait_for(LED_CALL));
    }
    EXPECT_EQ(calls().count(LED_CALL), 1U) << "the early message is gone with its object";
  }
};

TEST_F(FailedConstructionTest, ADriverThatCannotBeMadeLetsTheMessageGo) {
  driver_.runs_first("psdriver", [&] {
    message_comes();
    throw psdriverError("psdriver");
  });
  EXPECT_THROW(PlainHandheld(), psdriverError);
  expect_nothing_of_it_survives();
}

TEST_F(FailedConstructionTest, AnyExceptionOfTheDriverLetsTheMessageGo) {
  driver_.runs_first("psdriver", [&] {
    message_comes();
    throw 42;
  });
  EXPECT_THROW(PlainHandheld(), int);
  expect_nothing_of_it_survives();
}

TEST_F(FailedConstructionTest, APublisherThatCannotBeMadeLetsTheMessageGo) {
  dds_.refuses("create_publisher").runs_first("create_publisher", [this] { message_comes(); });
  EXPECT_THROW(PlainHandheld(), Varnok::Connection_errors::Not_Connected);
  expect_nothing_of_it_survives();
}

TEST_F(FailedConstructionTest, AWriterThatCannotBeMadeLetsTheMessageGo) {
  dds_.refuses("create_datawriter").runs_first("create_datawriter", [this] { message_comes(); });
  EXPECT_THROW(PlainHandheld(), Varnok::Connection_errors::Not_Connected);
  expect_nothing_of_it_survives();
}

TEST_F(EarlyMessageTest, AnObjectThatFailsAfterItsDriverIsMadeStillLetsTheMessageSetTheLed) {
  struct Derived : PlainHandheld {
    Derived() { throw std::out_of_range("derived"); }
  };
  driver_.runs_first("psdriver", [this] { message_comes(); });
  EXPECT_THROW(Derived(), std::out_of_range);
  EXPECT_EQ(calls().count(LED_CALL), 1U) << "the destruction of the subscriber waits for the message";
}

}  // namespace
