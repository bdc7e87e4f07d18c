#include "dcps/src/listener_thread.h"

#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <array>
#include <exception>
#include <iostream>
#include <string>

namespace dcps {

namespace {

constexpr dds_attach_t END = 0;

void report_exception(const std::string& text) {
  std::cerr << "dcps: a listener threw an exception" + text + "; no listener is called any more\n" << std::flush;
}

}  // namespace

/// One step of a reader. Nothing of it is left when it is over.
class ListenerThread::Turn {
public:
  Turn(ListenerThread& thread, dds_entity_t reader) : thread_(thread) {
    const std::lock_guard lock(thread_.mutex_);
    const auto found = thread_.sources_.find(reader);
    if (found != thread_.sources_.end()) {
      source_ = found->second;
      thread_.current_ = reader;
    }
  }
  ~Turn() {
    source_.reset();
    const std::lock_guard lock(thread_.mutex_);
    thread_.current_ = 0;
    thread_.turn_over_.notify_all();
  }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

  bool make_step() const { return source_ && source_->step(); }

private:
  ListenerThread& thread_;
  std::shared_ptr<const Source> source_;
};

bool ListenerThread::add(dds_entity_t participant, dds_entity_t reader, dds_entity_t condition, Step step) {
  {
    const std::lock_guard lock(mutex_);
    if (!start(participant)) {
      return false;
    }
    sources_[reader] = std::make_shared<const Source>(Source{condition, std::move(step)});
  }
  const bool attached = dds_waitset_attach(waitset_, reader, reader) == DDS_RETCODE_OK &&
                        (condition == 0 || dds_waitset_attach(waitset_, condition, reader) == DDS_RETCODE_OK);
  if (!attached) {
    remove(reader);
  }
  return attached;
}

bool ListenerThread::start(dds_entity_t participant) {
  if (thread_.joinable()) {
    return true;
  }
  waitset_ = dds_create_waitset(participant);
  end_ = dds_create_guardcondition(participant);
  if (dds_waitset_attach(waitset_, end_, END) != DDS_RETCODE_OK) {
    return false;
  }
  // Signals are handled by the program's own threads.
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  thread_ = std::thread([self = shared_from_this()] { self->run(); });
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  pthread_setname_np(thread_.native_handle(), "dcps.listener");
  return true;
}

void ListenerThread::remove(dds_entity_t reader) {
  std::shared_ptr<const Source> removed;
  std::unique_lock lock(mutex_);
  const auto found = sources_.find(reader);
  if (found == sources_.end()) {
    return;
  }
  removed = std::move(found->second);
  sources_.erase(found);
  dds_waitset_detach(waitset_, reader);
  dds_waitset_detach(waitset_, removed->condition);
  if (thread_.get_id() != std::this_thread::get_id()) {
    turn_over_.wait(lock, [&] { return current_ != reader; });
  }
  lock.unlock();
}

void ListenerThread::stop() {
  std::unique_lock lock(mutex_);
  if (!thread_.joinable()) {
    return;
  }
  stopping_ = true;
  dds_set_guardcondition(end_, true);
  std::thread thread = std::move(thread_);
  lock.unlock();
  if (thread.get_id() == std::this_thread::get_id()) {
    thread.detach();
  } else {
    thread.join();
  }
  dds_delete(waitset_);
  dds_delete(end_);
}

void ListenerThread::run() noexcept {
  try {
    serve();
  } catch (const std::exception& exception) {
    report_exception(std::string(" (") + exception.what() + ")");
  } catch (...) {
    report_exception("");
  }
}

void ListenerThread::serve() {
  std::array<dds_attach_t, 16> triggered;
  std::set<dds_entity_t> again;
  while (!stopping_) {
    const dds_return_t count =
        dds_waitset_wait(waitset_, triggered.data(), triggered.size(), again.empty() ? DDS_INFINITY : 0);
    std::set<dds_entity_t> due;
    due.swap(again);
    for (std::size_t i = 0; i < std::min<std::size_t>(triggered.size(), std::max(count, 0)); ++i) {
      due.insert(static_cast<dds_entity_t>(triggered[i]));
    }
    for (const dds_entity_t reader : due) {
      if (!stopping_ && Turn(*this, reader).make_step()) {
        again.insert(reader);
      }
    }
  }
}

}  // namespace dcps
