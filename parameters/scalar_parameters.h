// Parameters with one value and one script key.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "parameters/parameter.h"

namespace radiashafts {

class ScalarParameter : public pfParameter {
 public:
  std::int32_t ScriptKeyCount() const override { return key != 0 ? 1 : 0; }
  void FillScriptKeys(std::uint32_t* keys) const override {
    if (key != 0) *keys = key;
  }

  // 0 is never read. It is written all the same. This is intended: hosts get the same sequence of
  // values in every script.
  std::uint32_t key = 0;

 protected:
  bool ownsKey(std::uint32_t descriptorKey) const { return key != 0 && key == descriptorKey; }
};

// Validate enforces minimum and maximum only when useMinimum and useMaximum are set; the slider's
// range is always minimum to maximum.
class pfParameterFloat final : public ScalarParameter {
 public:
  using Value = double;

  bool SetValue(double v);  // does not clamp; returns whether the preview needs a new render
  double value() const { return value_; }

  void Validate() override;
  void WriteScript(hostapi::FilterRecord* record, hostapi::Token token) override;
  void ReadScript(hostapi::FilterRecord* record, std::uint32_t descriptorKey,
                  hostapi::Token token) override;
  std::unique_ptr<pfUndo> CreateUndo() override;
  void Randomize(double amount) override;
  void Restore(Value v);  // for undo; calls onChange also when the value stays the same

  double minimum = 0.0;
  double maximum = 1.0;
  bool useMinimum = false;
  bool useMaximum = false;

 private:
  double value_ = 0.0;
};

class pfParameterInt final : public ScalarParameter {
 public:
  using Value = std::int32_t;

  bool SetValue(std::int32_t v);  // never calls onChange
  std::int32_t value() const { return value_; }

  void Validate() override;
  void WriteScript(hostapi::FilterRecord* record, hostapi::Token token) override;
  void ReadScript(hostapi::FilterRecord* record, std::uint32_t descriptorKey,
                  hostapi::Token token) override;
  std::unique_ptr<pfUndo> CreateUndo() override;
  void Randomize(double amount) override;
  void Restore(Value v);

  std::int32_t minimum = 0;
  std::int32_t maximum = 1;
  bool useMinimum = false;
  bool useMaximum = false;

 private:
  std::int32_t value_ = 0;
};

class pfParameterBool final : public ScalarParameter {
 public:
  using Value = bool;

  bool SetValue(bool v);
  bool value() const { return value_; }

  void Validate() override {}
  void WriteScript(hostapi::FilterRecord* record, hostapi::Token token) override;
  void ReadScript(hostapi::FilterRecord* record, std::uint32_t descriptorKey,
                  hostapi::Token token) override;
  std::unique_ptr<pfUndo> CreateUndo() override;
  void Randomize(double amount) override;  // a random value, whatever the amount
  void Restore(Value v);

 private:
  bool value_ = false;
};

// A choice of one of several named entries, counted from 1.
class pfParameterList final : public ScalarParameter {
 public:
  using Value = std::int32_t;

  // Ignores a value above the number of entries; accepts one below 1 until Validate clamps it.
  bool SetValue(std::int32_t v);
  std::int32_t value() const { return value_; }

  void AddEntry(std::string text) { entries_.push_back(std::move(text)); }
  std::string GetEntry(std::int32_t index) const;  // counted from 0; empty past the end
  std::int32_t EntryCount() const { return static_cast<std::int32_t>(entries_.size()); }

  void Validate() override;
  void WriteScript(hostapi::FilterRecord* record, hostapi::Token token) override;
  void ReadScript(hostapi::FilterRecord* record, std::uint32_t descriptorKey,
                  hostapi::Token token) override;
  std::unique_ptr<pfUndo> CreateUndo() override;
  void Randomize(double amount) override;
  void Restore(Value v);  // an index outside the list changes nothing

 private:
  bool isEntry(std::int32_t v) const { return v >= 1 && v <= EntryCount(); }

  std::int32_t value_ = 1;
  std::vector<std::string> entries_;
};

}  // namespace radiashafts
