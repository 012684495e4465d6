// A recorded script: keys with values in the order in which they were recorded.
#pragma once

#include <cstdint>
#include <utility>
#include <variant>
#include <vector>

namespace radiashafts::standin {

using ScriptValue = std::variant<double, std::int32_t, bool>;
using Script = std::vector<std::pair<std::uint32_t, ScriptValue>>;

}  // namespace radiashafts::standin
