// Reads and writes single values of the host's scripts through a token.
#pragma once

#include <cmath>
#include <cstdint>
#include <optional>

#include "hostapi/filter_record.h"
#include "platform/host_call.h"

namespace radiashafts {

// None when the host returns an error, or when the value is not finite: such a value cannot be
// rendered and would stay in the filter for later runs.
inline std::optional<double> readScriptNumber(const hostapi::FilterRecord& record,
                                              hostapi::Token token) {
  double v = 0.0;
  const auto read = record.descriptorParameters->readDescriptorProcs->getFloatProc;
  if (platform::callHost(read, token, &v) != 0 || !std::isfinite(v)) return std::nullopt;
  return v;
}

inline std::optional<std::int32_t> readScriptInteger(const hostapi::FilterRecord& record,
                                                     hostapi::Token token) {
  std::int32_t v = 0;
  const auto read = record.descriptorParameters->readDescriptorProcs->getIntegerProc;
  if (platform::callHost(read, token, &v) != 0) return std::nullopt;
  return v;
}

inline std::optional<bool> readScriptFlag(const hostapi::FilterRecord& record,
                                          hostapi::Token token) {
  hostapi::Boolean v = 0;
  const auto read = record.descriptorParameters->readDescriptorProcs->getBooleanProc;
  if (platform::callHost(read, token, &v) != 0) return std::nullopt;
  return v != 0;
}

// Errors of the host are ignored: the value is then missing in the script.
inline void writeScriptNumber(const hostapi::FilterRecord& record, hostapi::Token token,
                              std::uint32_t key, double value) {
  platform::callHost(record.descriptorParameters->writeDescriptorProcs->putFloatProc, token, key,
                     static_cast<const double*>(&value));
}

inline void writeScriptInteger(const hostapi::FilterRecord& record, hostapi::Token token,
                               std::uint32_t key, std::int32_t value) {
  platform::callHost(record.descriptorParameters->writeDescriptorProcs->putIntegerProc, token, key,
                     value);
}

inline void writeScriptFlag(const hostapi::FilterRecord& record, hostapi::Token token,
                            std::uint32_t key, bool value) {
  const hostapi::Boolean flag = value ? 1 : 0;
  platform::callHost(record.descriptorParameters->writeDescriptorProcs->putBooleanProc, token, key,
                     flag);
}

}  // namespace radiashafts
