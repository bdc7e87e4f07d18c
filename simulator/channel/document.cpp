#include "simulator/channel/document.h"

#include <set>
#include <string>
#include <vector>

namespace simulator::channel {
namespace {

using nlohmann::json;

[[noreturn]] void refuse(std::size_t byte, const std::string& reason) {
  throw DocumentError("byte " + std::to_string(byte) + ": " + reason);
}

/// Builds a document from the parser's events; refuses duplicate keys and too deep nesting.
class Builder : public nlohmann::json_sax<json> {
public:
  Builder(json& document, std::size_t deepest) : builder_(document), deepest_(deepest) {}

  bool null() override { return builder_.null(); }
  bool boolean(bool value) override { return builder_.boolean(value); }
  bool number_integer(number_integer_t value) override { return builder_.number_integer(value); }
  bool number_unsigned(number_unsigned_t value) override { return builder_.number_unsigned(value); }
  bool number_float(number_float_t value, const string_t& text) override { return builder_.number_float(value, text); }
  bool string(string_t& value) override { return builder_.string(value); }
  bool binary(binary_t& value) override { return builder_.binary(value); }
  bool start_object(std::size_t size) override {
    enter();
    return builder_.start_object(size);
  }
  bool key(string_t& name) override {
    if (!keys_.back().insert(name).second) {
      throw DocumentError("key " + json(name).dump() + ": given twice");
    }
    return builder_.key(name);
  }
  bool end_object() override {
    keys_.pop_back();
    return builder_.end_object();
  }
  bool start_array(std::size_t size) override {
    enter();
    return builder_.start_array(size);
  }
  bool end_array() override {
    keys_.pop_back();
    return builder_.end_array();
  }
  bool parse_error(std::size_t byte, const std::string&, const nlohmann::detail::exception&) override {
    refuse(byte, "not valid JSON");
  }

private:
  void enter() {
    if (keys_.size() == deepest_) {
      throw DocumentError("nested deeper than " + std::to_string(deepest_) + " levels");
    }
    keys_.emplace_back();
  }

  nlohmann::detail::json_sax_dom_parser<json> builder_;
  std::size_t deepest_;
  std::vector<std::set<std::string>> keys_;
};

}  // namespace

json parsed_document(std::string_view text, std::size_t deepest) {
  // The parser takes a NUL byte for the end of the text.
  if (const std::size_t nul = text.find('\0'); nul != std::string_view::npos) {
    refuse(nul + 1, "NUL byte");
  }
  json document;
  Builder builder(document, deepest);
  json::sax_parse(text, &builder);
  return document;
}

}  // namespace simulator::channel
