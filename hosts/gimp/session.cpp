#include "hosts/gimp/session.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace radiashafts::gimp {

Session openSession() {
  if (radiashafts_interface() != RADIASHAFTS_HOST_INTERFACE) {
    throw Failure("Radiashafts: the library is of another version than the plug-in");
  }
  Session session(radiashafts_open());
  if (session == nullptr) throw Failure("Radiashafts: not enough memory");
  return session;
}

void check(const Session& session, radiashafts_result result) {
  if (result != RADIASHAFTS_OK) {
    throw Failure(std::string("Radiashafts: ") + radiashafts_error(session.get()));
  }
}

const Parameters& parameters() {
  static const Parameters table = [] {
    Parameters all;
    for (int i = 0; i < radiashafts_parameter_count(); ++i) {
      all.push_back(radiashafts_parameter_at(i));
    }
    return all;
  }();
  return table;
}

const radiashafts_parameter& originParameter() {
  return **std::find_if(parameters().begin(), parameters().end(), [](const auto* parameter) {
    return parameter->kind == RADIASHAFTS_POSITION;
  });
}

Values valuesOf(const Session& session) {
  Values values;
  for (const auto* parameter : parameters()) {
    std::array<double, 3> own{};
    check(session, radiashafts_get(session.get(), parameter->name, own.data()));
    values.insert(values.end(), own.begin(), own.begin() + parameter->value_count);
  }
  return values;
}

void setValues(const Session& session, const Values& values) {
  const int count =
      std::accumulate(parameters().begin(), parameters().end(), 0,
                      [](int sum, const auto* parameter) { return sum + parameter->value_count; });
  if (values.size() != static_cast<std::size_t>(count)) return;
  const double* value = values.data();
  for (const auto* parameter : parameters()) {
    check(session, radiashafts_set(session.get(), parameter->name, value));
    value += parameter->value_count;
  }
}

std::string capitalized(const char* text) {
  std::string result = text;
  if (!result.empty() && result[0] >= 'a' && result[0] <= 'z') result[0] -= 'a' - 'A';
  return result;
}

}  // namespace radiashafts::gimp
