#include "control/service/agent_link.h"

#include <sys/socket.h>
#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/asio/write.hpp>

#include "control/service/member_text.h"
#include "simulator/channel/document.h"

namespace control::service {
namespace {

namespace asio = boost::asio;
namespace channel = simulator::channel;
using nlohmann::json;
using Failure = boost::system::error_code;

constexpr int CODES[] = {400, 404, 409, 500, 504};

RequestError senseless() {
  return {502, "the unit's agent gave a senseless answer"};
}

std::optional<std::string> text_or_none(const json& document, const char* name) {
  const auto found = document.find(name);
  return found == document.end() || found->is_null() ? std::nullopt : std::optional(found->get<std::string>());
}

/// The error in an answer of the agent.
RequestError error_in(const json& error) {
  try {
    const int code = error.at("code").get<int>();
    if (std::find(std::begin(CODES), std::end(CODES), code) == std::end(CODES)) {
      return senseless();
    }
    return {code, error.at("what").get<std::string>(), text_or_none(error, "where"), text_or_none(error, "expected")};
  } catch (const json::exception&) {
    return senseless();
  }
}

}  // namespace

AgentLink::AgentLink(asio::io_context& context, int descriptor, const Limits& limits, Metrics& metrics,
                     AgentListener& listener)
    : context_(context),
      socket_(context, asio::generic::stream_protocol(AF_UNIX, 0), descriptor),
      limits_(limits),
      metrics_(metrics),
      listener_(listener) {}

void AgentLink::start() {
  read();
}

void AgentLink::request(const std::string& verb, const json& with, std::optional<std::chrono::milliseconds> limit,
                        OnReply on_reply) {
  if (ended_) {
    throw RequestError(503, "the unit has ended");
  }
  if (pending_.size() >= limits_.pending || backlog_ >= limits_.to_agent) {
    throw RequestError(503, "too many requests wait for the unit");
  }
  const std::uint64_t id = last_id_ + 1;
  const std::string text = json{{"id", id}, {"do", verb}, {"with", with}}.dump();
  if (text.size() > channel::LARGEST_TO_AGENT) {
    throw RequestError(413, "request is too large", "body");
  }
  last_id_ = id;
  Pending pending{std::move(on_reply), nullptr};
  if (limit) {
    pending.timer = std::make_unique<asio::steady_timer>(context_, *limit);
    pending.timer->async_wait([this, id](Failure failure) {
      if (!failure) {
        answer(id, {RequestError(504, "the unit's agent did not answer in time"), {}, {}});
      }
    });
  }
  pending_.emplace(id, std::move(pending));
  metrics_.agent_pending = pending_.size();
  ++metrics_.agent_requests;
  send(channel::frame_of(channel::DOCUMENTS, text));
}

void AgentLink::send_bytes(std::uint32_t stream, std::string_view bytes) {
  if (!ended_) {
    send(channel::frame_of(stream, bytes));
  }
}

void AgentLink::send(std::string frame) {
  if (deaf_) {
    return;
  }
  backlog_ += frame.size();
  outgoing_.push_back(std::move(frame));
  if (outgoing_.size() == 1) {
    write();
  }
}

void AgentLink::write() {
  asio::async_write(socket_, asio::buffer(outgoing_.front()), [this](Failure failure, std::size_t) {
    if (ended_) {
      return;
    }
    if (failure) {
      // What the agent sent before its end is still read.
      deaf_ = true;
      outgoing_.clear();
      backlog_ = 0;
      return;
    }
    backlog_ -= outgoing_.front().size();
    outgoing_.pop_front();
    if (!outgoing_.empty()) {
      write();
    }
  });
}

void AgentLink::read() {
  socket_.async_read_some(asio::buffer(block_), [this](Failure failure, std::size_t size) {
    if (ended_) {
      return;
    }
    if (failure) {
      end("the unit has ended", false);
      return;
    }
    try {
      reader_.feed({block_.data(), size});
      while (auto frame = reader_.next()) {
        take(std::move(*frame));
        if (ended_) {
          return;
        }
      }
    } catch (const channel::FrameError& error) {
      fail(error.what());
      return;
    } catch (const channel::DocumentError& error) {
      fail(error.what());
      return;
    }
    read();
  });
}

void AgentLink::take(channel::Frame frame) {
  if (frame.stream == channel::DOCUMENTS) {
    take_document(frame.payload);
    return;
  }
  const auto found = listeners_.find(frame.stream);
  if (found == listeners_.end()) {
    metrics_.agent_dropped_bytes += frame.payload.size();
    return;
  }
  // A copy: the listener may forget its stream.
  const OnBytes on_bytes = found->second;
  on_bytes(frame.payload);
}

void AgentLink::take_document(const std::string& text) {
  const json document = channel::parsed_document(text);
  if (!document.is_object()) {
    throw channel::FrameError("a document of the agent is not an object");
  }
  const auto notice = document.find("notice");
  if (notice == document.end()) {
    take_answer(document, text);
    return;
  }
  if (!notice->is_string()) {
    throw channel::FrameError("a notice of the agent has no name");
  }
  ++metrics_.agent_notices;
  count_notice();
  if (!ended_) {
    listener_.on_notice(notice->get<std::string>(), document);
  }
}

void AgentLink::take_answer(const json& document, const std::string& text) {
  const auto id = document.find("id");
  const auto ok = document.find("ok");
  const auto error = document.find("error");
  if (id == document.end() || !id->is_number_unsigned() || (ok == document.end()) == (error == document.end())) {
    throw channel::FrameError("a document of the agent is neither an answer nor a notice");
  }
  if (pending_.find(id->get<std::uint64_t>()) == pending_.end()) {
    ++metrics_.agent_unknown;
    count_notice();
    return;
  }
  Reply reply;
  if (error != document.end()) {
    reply.error = error_in(*error);
  } else if (!ok->is_object()) {
    reply.error = senseless();
  } else {
    reply.ok = *ok;
    reply.text = member_text(text, "ok");
    if (reply.text.empty()) {
      reply.error = senseless();
    }
  }
  answer(id->get<std::uint64_t>(), reply);
}

void AgentLink::count_notice() {
  const auto now = std::chrono::steady_clock::now();
  if (now - second_ >= std::chrono::seconds(1)) {
    second_ = now;
    notices_ = 0;
  }
  if (++notices_ > limits_.notices_per_second) {
    fail("the agent sends too many notices");
  }
}

void AgentLink::answer(std::uint64_t id, const Reply& reply) {
  const auto found = pending_.find(id);
  if (found == pending_.end()) {
    return;
  }
  const OnReply on_reply = std::move(found->second.on_reply);
  pending_.erase(found);
  metrics_.agent_pending = pending_.size();
  on_reply(reply);
}

void AgentLink::end(const std::string& reason, bool failed) {
  if (ended_) {
    return;
  }
  ended_ = true;
  Failure ignored;
  socket_.close(ignored);
  const auto pending = std::exchange(pending_, {});
  metrics_.agent_pending = 0;
  listener_.on_agent_end(reason, failed);
  for (const auto& [id, each] : pending) {
    each.on_reply({RequestError(503, "the unit has ended"), {}, {}});
  }
}

}  // namespace control::service
