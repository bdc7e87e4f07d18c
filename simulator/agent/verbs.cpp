#include "simulator/agent/verbs.h"

#include <exception>
#include <optional>

#include "simulator/agent/refusal.h"
#include "simulator/settings/settings.h"

namespace simulator::agent {
namespace {

Json or_null(const std::optional<std::string>& text) {
  return text ? Json(*text) : Json();
}

Json error(const Json& id, int code, const std::string& what, const Json& where, const Json& expected) {
  return {{"id", id}, {"error", {{"code", code}, {"what", what}, {"where", where}, {"expected", expected}}}};
}

}  // namespace

Json answer_from(const Json& id, const std::function<Json()>& work) {
  try {
    return {{"id", id}, {"ok", work()}};
  } catch (const Refusal& refusal) {
    return error(id, refusal.code, refusal.what(), or_null(refusal.where), or_null(refusal.expected));
  } catch (const settings::SettingError& refused) {
    return error(id, settings::find_setting(refused.name) ? BAD_REQUEST : UNKNOWN, refused.reason, refused.name,
                 refused.expected.empty() ? Json() : Json(refused.expected));
  } catch (const std::exception& failure) {
    return error(id, FAILED, failure.what(), nullptr, nullptr);
  }
}

Json answer_of(const Verbs& verbs, const Json& request) {
  return answer_from(request.value("id", Json()), [&]() -> Json {
    const std::string name = Arguments(request).text("do");
    const auto verb = verbs.find(name);
    if (verb == verbs.end()) {
      throw Refusal(UNKNOWN, "no such request", name);
    }
    const Json with = request.value("with", Json::object());
    if (!with.is_object()) {
      throw Refusal(BAD_REQUEST, "must be an object", "with");
    }
    return verb->second(Arguments(with));
  });
}

}  // namespace simulator::agent
