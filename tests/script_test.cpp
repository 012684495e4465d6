// The meeting of the parameters with the host's recorded scripts.

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "hostapi/constants.h"
#include "parameters/effect_parameters.h"
#include "parameters/parameters.h"
#include "standin/descriptors.h"

namespace radiashafts {
namespace {

using standin::Script;

int disposed = 0;
std::vector<std::uint32_t> keysAsked;

std::uint32_t code(const char* text) {
  std::uint32_t result = 0;
  for (; *text != '\0'; ++text) result = result << 8 | static_cast<unsigned char>(*text);
  return result;
}

// The effect's parameters and a record with tables of its own, to be broken one by one.
struct ScriptHost {
  ScriptHost() {
    for (pfParameter* parameter : effect.all) parameters.Add(parameter);
    read.openReadDescriptorProc = [](hostapi::Handle handle, hostapi::DescriptorKey* keys) {
      keysAsked.clear();
      do keysAsked.push_back(*keys);
      while (*keys++ != 0);
      return standin::readDescriptorProcs()->openReadDescriptorProc(handle, nullptr);
    };
    handles.disposeProc = [](hostapi::Handle handle) {
      ++disposed;
      standin::disposeHandle(handle);
    };
    disposed = 0;
    descriptors.readDescriptorProcs = &read;
    descriptors.writeDescriptorProcs = &write;
    descriptors.recordInfo = hostapi::recordDialogRequired;
    record.descriptorParameters = &descriptors;
    record.handleProcs = &handles;
  }
  ~ScriptHost() { standin::disposeHandle(descriptors.descriptor); }

  bool readScript(const Script& script) {
    standin::disposeHandle(descriptors.descriptor);
    descriptors.descriptor = standin::makeDescriptor(script);
    return parameters.ReadScriptParams(&record);
  }
  Script written() {
    parameters.WriteScriptParams(&record);
    return standin::scriptOf(descriptors.descriptor);
  }

  EffectParameters effect;
  pfParameters parameters;
  hostapi::ReadDescriptorProcs read = *standin::readDescriptorProcs();
  hostapi::WriteDescriptorProcs write = *standin::writeDescriptorProcs();
  hostapi::HandleProcs handles = *standin::handleProcs();
  hostapi::PIDescriptorParameters descriptors{};
  hostapi::FilterRecord record{};
};

Script defaultScript() {
  const auto d = [](const char* key, double v) { return Script::value_type{code(key), v}; };
  const auto i = [](const char* key, std::int32_t v) { return Script::value_type{code(key), v}; };
  return {d("ORIX", 0.5), d("ORIY", 0.5), d("INTE", 2.0), d("RALE", 1.0),       d("RADI", 2.0),
          d("CONT", 0.0), d("GAMA", 1.0), d("COBA", 0.0), {code("IMCO"), true}, d("HSLH", 0.0),
          d("HSLS", 0.0), d("HSLL", 0.0), d("SELL", 0.0), d("SELH", 255.0),     d("SELS", 0.0),
          d("SELC", 1.0), d("COLR", 1.0), d("COLG", 1.0), d("COLB", 1.0),       d("COHR", 1.0),
          d("COHG", 1.0), d("COHB", 1.0), i("MODE", 1),   i("BLND", 3),         i("SHOW", 1),
          d("", 0.05),    {0U, false}};
}

TEST(Descriptor, IsUsableWithCompleteTablesOnly) {
  const struct {
    const char* name;
    bool usable;
    std::function<void(ScriptHost&)> change;
  } cases[] = {
      {"as it is", true, [](ScriptHost&) {}},
      {"no block", false, [](ScriptHost& h) { h.record.descriptorParameters = nullptr; }},
      {"version", false, [](ScriptHost& h) { h.descriptors.descriptorParametersVersion = 1; }},
      {"no read table", false, [](ScriptHost& h) { h.descriptors.readDescriptorProcs = nullptr; }},
      {"no write table", false,
       [](ScriptHost& h) { h.descriptors.writeDescriptorProcs = nullptr; }},
      {"read version", false, [](ScriptHost& h) { h.read.readDescriptorProcsVersion = 1; }},
      {"17 reads", false, [](ScriptHost& h) { h.read.numReadDescriptorProcs = 17; }},
      {"19 reads", true, [](ScriptHost& h) { h.read.numReadDescriptorProcs = 19; }},
      {"write version", false, [](ScriptHost& h) { h.write.writeDescriptorProcsVersion = 1; }},
      {"15 writes", false, [](ScriptHost& h) { h.write.numWriteDescriptorProcs = 15; }},
      {"17 writes", true, [](ScriptHost& h) { h.write.numWriteDescriptorProcs = 17; }},
      {"empty writes", true, [](ScriptHost& h) { h.write.putUnitFloatProc = nullptr; }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    ScriptHost h;
    c.change(h);
    EXPECT_EQ(IsDescriptorUsable(h.record.descriptorParameters), c.usable);
    // Without one the interface opens, and what the host handed over stays as it is.
    EXPECT_EQ(h.readScript({{code("INTE"), 3.5}}), !c.usable);
    EXPECT_EQ(h.effect.Intensity.value(), c.usable ? 3.5 : 2.0);
    EXPECT_EQ(h.written().size(), c.usable ? 27U : 1U);
    EXPECT_EQ(h.descriptors.recordInfo,
              c.usable ? hostapi::recordDialogOptional : hostapi::recordDialogRequired);
  }
  for (std::size_t entry = 0; entry < 18; ++entry) {
    ScriptHost h;
    std::memset(reinterpret_cast<char*>(&h.read.openReadDescriptorProc) + entry * sizeof(void*), 0,
                sizeof(void*));
    EXPECT_FALSE(IsDescriptorUsable(&h.descriptors)) << entry;
  }
}

TEST(WriteScriptParams, PutsTwentySevenValuesInOrderTheKeylessOnesUnderZero) {
  ScriptHost h;
  EXPECT_EQ(h.written(), defaultScript());
  EXPECT_EQ(disposed, 0);
  h.effect.Origin.SetValue(0.25, -1.5);
  h.effect.UseImageColor.SetValue(false);
  h.effect.ColorHigh.SetValue(0.1, 0.2, 0.3);
  h.effect.BlendMode.SetValue(23);
  Script expected = defaultScript();
  expected[0].second = 0.25;
  expected[1].second = -1.5;
  expected[8].second = false;
  expected[19].second = 0.1;
  expected[20].second = 0.2;
  expected[21].second = 0.3;
  expected[23].second = std::int32_t{23};
  EXPECT_EQ(h.written(), expected);
  EXPECT_EQ(disposed, 1);  // the descriptor before
}

TEST(ReadScriptParams, AsksForAllKeysTakesTheScriptAndDropsItsHandle) {
  ScriptHost h;
  Script script = defaultScript();
  for (std::size_t i = 0; i < 25; ++i) {
    auto& value = script[i].second;
    if (auto* d = std::get_if<double>(&value)) *d = 0.01 * static_cast<double>(i + 1);
    if (auto* n = std::get_if<std::int32_t>(&value)) *n = 2;
    if (auto* b = std::get_if<bool>(&value)) *b = false;
  }
  Script shuffled(script.rbegin() + 2, script.rend());  // the host's own order, without key 0
  EXPECT_FALSE(h.readScript(shuffled));
  EXPECT_EQ(disposed, 1);
  EXPECT_EQ(h.descriptors.descriptor, nullptr);
  EXPECT_EQ(h.written(), script);
  ASSERT_EQ(keysAsked.size(), 26U);
  for (std::size_t i = 0; i < 25; ++i) EXPECT_EQ(keysAsked[i], script[i].first) << i;
  EXPECT_EQ(keysAsked[25], 0U);
}

TEST(ReadScriptParams, WhatIsAbsentForeignMistypedOrNoEntryKeepsItsValue) {
  ScriptHost h;
  h.effect.Origin.SetValue(0.1, 0.2);
  h.effect.Mode.SetValue(2);
  h.effect.Radius.SetValue(4.5);
  h.readScript({{code("null"), 9.0},
                {code("ORIY"), 0.9},
                {code("INTE"), std::int32_t{4}},
                {code("IMCO"), 0.0},
                {code("MODE"), std::int32_t{0}},
                {code("MODE"), std::int32_t{-1}},
                {code("MODE"), std::int32_t{9}},
                {code("BLND"), 7.0},
                {code("RALE"), 1.5},
                {code("COLG"), 1.5},
                {0U, 0.9},
                {0U, true},
                {code("GAMA"), 2.5}});
  Script expected = defaultScript();
  expected[0].second = 0.1;
  expected[1].second = 0.9;
  expected[3].second = 1.5;  // without limits
  expected[4].second = 4.5;
  expected[6].second = 2.5;
  expected[17].second = 1.5;
  expected[22].second = std::int32_t{2};
  EXPECT_EQ(h.written(), expected);
  h.parameters.ValidateAll();
  expected[3].second = expected[17].second = 1.0;
  EXPECT_EQ(h.written(), expected);
}

TEST(ReadScriptParams, OnlyPlayInfoOneOpensTheInterfaceWhateverTheToken) {
  for (const int playInfo : {-1, 0, 1, 2, 257}) {
    for (const bool token : {true, false}) {
      ScriptHost h;
      h.descriptors.playInfo = static_cast<std::int16_t>(playInfo);
      if (!token) {
        h.read.openReadDescriptorProc =
            [](hostapi::Handle, hostapi::DescriptorKey*) -> hostapi::Token { return nullptr; };
        h.write.openWriteDescriptorProc = []() -> hostapi::Token { return nullptr; };
      }
      EXPECT_EQ(h.readScript({{code("INTE"), 3.0}}), playInfo == 1);
      EXPECT_EQ(h.effect.Intensity.value(), token ? 3.0 : 2.0);
      // Without a token the handle stays the host's.
      EXPECT_EQ(disposed, token ? 1 : 0);
      EXPECT_EQ(h.written().size(), token ? 27U : 1U);
    }
  }
}

// A handle that the procs do not take goes to the system; the leak checker sees one that does not.
TEST(DescriptorHandle, IsDisposedOfByFitProcsElseByTheSystem) {
  const struct {
    const char* name;
    bool fit;
    std::function<void(ScriptHost&)> change;
  } cases[] = {
      {"as it is", true, [](ScriptHost&) {}},
      {"nine procs", true, [](ScriptHost& h) { h.handles.numHandleProcs = 9; }},
      {"no lock", true, [](ScriptHost& h) { h.handles.lockProc = nullptr; }},
      {"no table", false, [](ScriptHost& h) { h.record.handleProcs = nullptr; }},
      {"seven procs", false, [](ScriptHost& h) { h.handles.numHandleProcs = 7; }},
      {"version", false, [](ScriptHost& h) { h.handles.handleProcsVersion = 2; }},
      {"no new", false, [](ScriptHost& h) { h.handles.newProc = nullptr; }},
      {"no dispose", false, [](ScriptHost& h) { h.handles.disposeProc = nullptr; }},
      {"no size", false, [](ScriptHost& h) { h.handles.getSizeProc = nullptr; }},
      {"no set size", false, [](ScriptHost& h) { h.handles.setSizeProc = nullptr; }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    ScriptHost h;
    c.change(h);
    h.readScript(defaultScript());
    EXPECT_EQ(h.descriptors.descriptor, nullptr);
    EXPECT_EQ(disposed, c.fit ? 1 : 0);
    h.written();
    h.written();
    EXPECT_EQ(disposed, c.fit ? 2 : 0);
  }
  DisposeDescriptorHandle(nullptr, nullptr);
}

}  // namespace
}  // namespace radiashafts
