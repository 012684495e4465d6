// The meeting of the parameters with the host's recorded scripts.

#include <functional>
#include <sstream>

#include <gtest/gtest.h>

#include "parameters/effect_parameters.h"
#include "parameters/parameters.h"
#include "standin/descriptors.h"

namespace radiashafts {
namespace {

using standin::Script;
constexpr auto code = hostapi::fourCharacterCode;

int disposed = 0;

std::string text(const Script& script) {
  std::ostringstream out;
  for (const auto& [key, value] : script) {
    for (int shift = 24; key != 0 && shift >= 0; shift -= 8) out << static_cast<char>(key >> shift);
    std::visit([&out](auto v) { out << v << ' '; }, value);
  }
  return out.str();
}

// The effect's parameters and a record with tables of its own, to be broken one by one.
struct ScriptHost {
  ScriptHost() {
    for (pfParameter* parameter : effect.all) parameters.Add(parameter);
    handles.disposeProc = [](hostapi::Handle h) { ++disposed, standin::disposeHandle(h); };
    disposed = 0;
    descriptors = {0, 0, 1, nullptr, &write, &read};
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
  hostapi::PIDescriptorParameters descriptors;
  hostapi::FilterRecord record{};
};

TEST(Script, IsReadAndWrittenThroughCompleteTablesOnly) {
  const std::function<void(ScriptHost&)> faults[] = {
      [](ScriptHost& h) { h.record.descriptorParameters = nullptr; },
      [](ScriptHost& h) { h.descriptors.descriptorParametersVersion = 1; },
      [](ScriptHost& h) { h.descriptors.writeDescriptorProcs = nullptr; },
      [](ScriptHost& h) { h.read.readDescriptorProcsVersion = 1; },
      [](ScriptHost& h) { h.read.numReadDescriptorProcs = 17; },
      [](ScriptHost& h) { h.read.getPinnedUnitFloatProc = nullptr; },
      [](ScriptHost& h) { h.write.numWriteDescriptorProcs = 15; }};
  for (const auto& fault : faults) {
    SCOPED_TRACE(&fault - faults);
    ScriptHost h;
    fault(h);
    // Without a script the interface opens, and what the host handed over stays as it is.
    EXPECT_TRUE(h.readScript({{code("INTE"), 3.5}}));
    EXPECT_EQ(h.effect.Intensity.value(), 2.0);
    EXPECT_EQ(h.written().size(), 1U);
    EXPECT_EQ(disposed, 0);
  }
}

TEST(Script, IsDisposedOfByTheSystemWhereTheHostsProcsAreUnfit) {
  const std::function<void(ScriptHost&)> faults[] = {
      [](ScriptHost& h) { h.record.handleProcs = nullptr; },
      [](ScriptHost& h) { h.handles.numHandleProcs = 7; },
      [](ScriptHost& h) { h.handles.setSizeProc = nullptr; }};
  for (const auto& fault : faults) {
    SCOPED_TRACE(&fault - faults);
    ScriptHost h;
    fault(h);
    const auto handle = h.descriptors.descriptor = standin::makeDescriptor({{code("INTE"), 3.5}});
    EXPECT_FALSE(h.parameters.ReadScriptParams(&h.record));
    EXPECT_EQ(h.effect.Intensity.value(), 3.5);
    EXPECT_EQ(disposed, 0);
    standin::disposeHandle(handle);  // the system's allocator does not know it
  }
}

TEST(Script, TwentySevenValuesGoOutAndTwentyFiveComeBackInAnyOrder) {
  ScriptHost h;
  Script script = h.written();
  EXPECT_EQ(text(script),
            "ORIX0.5 ORIY0.5 INTE2 RALE1 RADI2 CONT0 GAMA1 COBA0 IMCO1 HSLH0 HSLS0 HSLL0 SELL0 "
            "SELH255 SELS0 SELC1 COLR1 COLG1 COLB1 COHR1 COHG1 COHB1 MODE1 BLND3 SHOW1 0.05 0 ");
  for (std::size_t i = 0; i < 25; ++i) script[i].second = 0.01 * static_cast<double>(i + 1);
  script[8].second = false;
  for (const std::size_t list : {22, 23, 24}) script[list].second = 2;
  const Script reversed(script.rbegin() + 2, script.rend());
  for (const std::int16_t playInfo : {1, 2, 0}) {
    h.descriptors.playInfo = playInfo;
    EXPECT_EQ(h.readScript(reversed), playInfo == 1);
  }
  EXPECT_EQ(h.descriptors.descriptor, nullptr);
  EXPECT_EQ(h.written(), script);
  EXPECT_EQ(h.written(), script);
  EXPECT_EQ(disposed, 4);  // three that were read and one that was replaced
}

}  // namespace
}  // namespace radiashafts
