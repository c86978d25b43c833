// The little JSON that zelhost reads (batch lines) and writes (results).
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace zelhost::json {

struct Value;
using Array = std::vector<Value>;
using Object = std::map<std::string, Value, std::less<>>;

struct Value {
  std::variant<std::nullptr_t, bool, double, std::string, std::shared_ptr<Array>,
               std::shared_ptr<Object>>
      data;
};

// Throws std::invalid_argument for text that is not one JSON value.
Value parse(std::string_view text);

// `text` (UTF-8) as a JSON string literal, quotes included.
std::string quote(std::string_view text);

}  // namespace zelhost::json
