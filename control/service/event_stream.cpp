#include "control/service/event_stream.h"

#include <cstdio>

#include "control/service/http_text.h"

namespace control::service {

EventStream::EventStream(Socket socket, Clients& clients, const Limits& limits, Interest interest)
    : RawConnection(std::move(socket), clients, limits), interest_(std::move(interest)), comment_timer_(executor()) {}

EventStream::~EventStream() = default;

void EventStream::begin() {
  Answer answer;
  answer.type = "text/event-stream";
  send(header_of(answer, CHUNKED, false));
  comment_later();
}

void EventStream::event(const std::string& type, const std::string& data) {
  chunk("event: " + type + "\ndata: " + data + "\n\n");
}

void EventStream::end() {
  send("0\r\n\r\n");
  finish();
}

void EventStream::chunk(const std::string& text) {
  if (waiting() + text.size() > limits().stream) {
    cut_off();
    return;
  }
  char size[20];
  std::snprintf(size, sizeof size, "%zx\r\n", text.size());
  send(size + text + "\r\n");
}

void EventStream::comment_later() {
  comment_timer_.expires_after(limits().comment);
  comment_timer_.async_wait([this, weak = weak_from_this()](boost::system::error_code failure) {
    const auto self = weak.lock();
    if (!failure && self != nullptr && open()) {
      chunk(": \n\n");
      comment_later();
    }
  });
}

}  // namespace control::service
