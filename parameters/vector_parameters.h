// Parameters with several values, each with its own script key.
#pragma once

#include <array>
#include <cstdint>

#include "parameters/parameter.h"

namespace radiashafts {

// A point of the picture: 0.0 is its left or upper edge, 1.0 its last pixel. Points outside the
// picture are valid.
class pfParameterPosition final : public pfParameter {
 public:
  using Value = std::array<double, 2>;

  bool SetValue(double x, double y);  // returns whether the preview needs a new render
  double x() const { return value_[0]; }
  double y() const { return value_[1]; }
  const Value& value() const { return value_; }

  void Validate() override {}
  void WriteScript(hostapi::FilterRecord* record, hostapi::Token token) override;
  void ReadScript(hostapi::FilterRecord* record, std::uint32_t key, hostapi::Token token) override;
  std::int32_t ScriptKeyCount() const override;
  void FillScriptKeys(std::uint32_t* keysOut) const override;
  std::unique_ptr<pfUndo> CreateUndo() override;
  void Randomize(double amount) override;
  void Restore(const Value& v);

  std::array<std::uint32_t, 2> keys{};  // x, y

 private:
  Value value_{};
};

// Red, green and blue, each 0.0 to 1.0.
class pfParameterRGB final : public pfParameter {
 public:
  using Value = std::array<double, 3>;

  bool SetValue(double red, double green, double blue);
  const Value& value() const { return value_; }

  void Validate() override;
  void WriteScript(hostapi::FilterRecord* record, hostapi::Token token) override;
  void ReadScript(hostapi::FilterRecord* record, std::uint32_t key, hostapi::Token token) override;
  std::int32_t ScriptKeyCount() const override;
  void FillScriptKeys(std::uint32_t* keysOut) const override;
  std::unique_ptr<pfUndo> CreateUndo() override;
  void Randomize(double amount) override;
  void Restore(const Value& v);

  std::array<std::uint32_t, 3> keys{};

 private:
  Value value_{1.0, 1.0, 1.0};
};

}  // namespace radiashafts
