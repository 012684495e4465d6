// The host's scripting interface: descriptors are read and written one key at a time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "hostapi/types.h"

namespace hostapi {

using Token = void*;                  // null means failure
using DescriptorKey = std::uint32_t;  // a four-character code
using UnusedProc = void (*)();        // a table entry that this plug-in never calls

constexpr std::int16_t readDescriptorProcsCount = 18;
constexpr std::int16_t writeDescriptorProcsCount = 16;

struct ReadDescriptorProcs {
  std::int16_t readDescriptorProcsVersion;
  std::int16_t numReadDescriptorProcs;
  Token (*openReadDescriptorProc)(Handle descriptor, DescriptorKey* zeroTerminatedKeys);
  OSErr (*closeReadDescriptorProc)(Token token);
  Boolean (*getKeyProc)(Token token, DescriptorKey* key, std::uint32_t* type, std::int32_t* flags);
  OSErr (*getIntegerProc)(Token token, std::int32_t* value);
  OSErr (*getFloatProc)(Token token, double* value);
  OSErr (*getUnitFloatProc)(Token token, std::uint32_t* unit, double* value);
  OSErr (*getBooleanProc)(Token token, Boolean* value);
  UnusedProc getTextProc;
  UnusedProc getAliasProc;
  UnusedProc getEnumeratedProc;
  UnusedProc getClassProc;
  UnusedProc getSimpleReferenceProc;
  UnusedProc getObjectProc;
  UnusedProc getCountProc;
  UnusedProc getStringProc;
  UnusedProc getPinnedIntegerProc;
  UnusedProc getPinnedFloatProc;
  UnusedProc getPinnedUnitFloatProc;
};

struct WriteDescriptorProcs {
  std::int16_t writeDescriptorProcsVersion;
  std::int16_t numWriteDescriptorProcs;
  Token (*openWriteDescriptorProc)();
  OSErr (*closeWriteDescriptorProc)(Token token, Handle* descriptor);
  OSErr (*putIntegerProc)(Token token, DescriptorKey key, std::int32_t value);
  OSErr (*putFloatProc)(Token token, DescriptorKey key, const double* value);
  OSErr (*putUnitFloatProc)(Token token, DescriptorKey key, std::uint32_t unit,
                            const double* value);
  OSErr (*putBooleanProc)(Token token, DescriptorKey key, Boolean value);
  UnusedProc putTextProc;
  UnusedProc putAliasProc;
  UnusedProc putEnumeratedProc;
  UnusedProc putClassProc;
  UnusedProc putSimpleReferenceProc;
  UnusedProc putObjectProc;
  UnusedProc putCountProc;
  UnusedProc putStringProc;
  UnusedProc putScopedClassProc;
  UnusedProc putScopedObjectProc;
};

struct PIDescriptorParameters {
  std::int16_t descriptorParametersVersion;
  std::int16_t playInfo;
  std::int16_t recordInfo;
  Handle descriptor;
  WriteDescriptorProcs* writeDescriptorProcs;
  ReadDescriptorProcs* readDescriptorProcs;
};

static_assert(offsetof(PIDescriptorParameters, playInfo) == 2);
static_assert(offsetof(PIDescriptorParameters, recordInfo) == 4);
static_assert(offsetof(PIDescriptorParameters, descriptor) == 8);
static_assert(offsetof(PIDescriptorParameters, writeDescriptorProcs) == 16);
static_assert(offsetof(PIDescriptorParameters, readDescriptorProcs) == 24);
static_assert(offsetof(ReadDescriptorProcs, openReadDescriptorProc) == 8);
static_assert(sizeof(ReadDescriptorProcs) == 8 + readDescriptorProcsCount * sizeof(void*));
static_assert(sizeof(WriteDescriptorProcs) == 8 + writeDescriptorProcsCount * sizeof(void*));

}  // namespace hostapi
