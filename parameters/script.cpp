// Reading and writing the host's descriptors.

#include "diagnostics/debug_log.h"
#include "hostapi/constants.h"
#include "parameters/parameters.h"
#include "platform/global_handle.h"

namespace radiashafts {
namespace {

bool allEntriesPresent(const hostapi::ReadDescriptorProcs& procs) {
  return procs.openReadDescriptorProc && procs.closeReadDescriptorProc && procs.getKeyProc &&
         procs.getIntegerProc && procs.getFloatProc && procs.getUnitFloatProc &&
         procs.getBooleanProc && procs.getTextProc && procs.getAliasProc &&
         procs.getEnumeratedProc && procs.getClassProc && procs.getSimpleReferenceProc &&
         procs.getObjectProc && procs.getCountProc && procs.getStringProc &&
         procs.getPinnedIntegerProc && procs.getPinnedFloatProc && procs.getPinnedUnitFloatProc;
}

bool isFit(const hostapi::HandleProcs* procs) {
  return procs != nullptr && procs->handleProcsVersion == hostapi::handleProcsVersion &&
         procs->numHandleProcs >= hostapi::handleProcsCount && procs->newProc &&
         procs->disposeProc && procs->getSizeProc && procs->setSizeProc;
}

}  // namespace

bool IsDescriptorUsable(const hostapi::PIDescriptorParameters* descriptorParameters) {
  if (descriptorParameters == nullptr || descriptorParameters->descriptorParametersVersion != 0) {
    return false;
  }
  const hostapi::ReadDescriptorProcs* read = descriptorParameters->readDescriptorProcs;
  const hostapi::WriteDescriptorProcs* write = descriptorParameters->writeDescriptorProcs;
  return read != nullptr && write != nullptr && read->readDescriptorProcsVersion == 0 &&
         read->numReadDescriptorProcs >= hostapi::readDescriptorProcsCount &&
         write->writeDescriptorProcsVersion == 0 &&
         write->numWriteDescriptorProcs >= hostapi::writeDescriptorProcsCount &&
         allEntriesPresent(*read);
}

void DisposeDescriptorHandle(const hostapi::HandleProcs* handleProcs, hostapi::Handle handle) {
  if (isFit(handleProcs)) {
    handleProcs->disposeProc(handle);
  } else {
    platform::freeGlobalHandle(reinterpret_cast<void**>(handle));
  }
}

std::vector<std::uint32_t> pfParameters::ScriptKeys() const {
  std::int32_t total = 0;
  for (const pfParameter* parameter : parameters_) total += parameter->ScriptKeyCount();
  std::vector<std::uint32_t> keys(static_cast<std::size_t>(total) + 1);
  std::uint32_t* next = keys.data();
  for (const pfParameter* parameter : parameters_) {
    parameter->FillScriptKeys(next);
    next += parameter->ScriptKeyCount();
  }
  return keys;
}

bool pfParameters::ReadScriptParams(hostapi::FilterRecord* record) {
  trace("pfParmeters::ReadScriptParams( pFilterRecord(0x", static_cast<void*>(record), ") )");
  const LogIndent indent;
  bool interfaceWanted = true;
  std::vector<std::uint32_t> keys = ScriptKeys();

  hostapi::PIDescriptorParameters* descriptors = record->descriptorParameters;
  if (IsDescriptorUsable(descriptors)) {
    const hostapi::ReadDescriptorProcs& procs = *descriptors->readDescriptorProcs;
    const hostapi::Token token = procs.openReadDescriptorProc(descriptors->descriptor, keys.data());
    if (token != nullptr) {
      std::uint32_t key = 0;
      std::uint32_t type = 0;
      std::int32_t flags = 0;
      while (procs.getKeyProc(token, &key, &type, &flags) != 0) {
        for (pfParameter* parameter : parameters_) parameter->ReadScript(record, key, token);
      }
      procs.closeReadDescriptorProc(token);
      DisposeDescriptorHandle(record->handleProcs, descriptors->descriptor);
      descriptors->descriptor = nullptr;
    }
    interfaceWanted = descriptors->playInfo == hostapi::playDisplay;
  }
  trace("pfParmeters::ReadScriptParams( return(", interfaceWanted, ") )");
  return interfaceWanted;
}

void pfParameters::WriteScriptParams(hostapi::FilterRecord* record) {
  trace("pfParmeters::WriteScriptParams( pFilterRecord(0x", static_cast<void*>(record), ") )");
  const LogIndent indent;
  hostapi::PIDescriptorParameters* descriptors = record->descriptorParameters;
  if (IsDescriptorUsable(descriptors)) {
    const hostapi::WriteDescriptorProcs& procs = *descriptors->writeDescriptorProcs;
    const hostapi::Token token = procs.openWriteDescriptorProc();
    if (token != nullptr) {
      for (pfParameter* parameter : parameters_) parameter->WriteScript(record, token);
      if (descriptors->descriptor != nullptr) {
        DisposeDescriptorHandle(record->handleProcs, descriptors->descriptor);
      }
      hostapi::Handle written = nullptr;
      procs.closeWriteDescriptorProc(token, &written);
      descriptors->descriptor = written;
      descriptors->recordInfo = hostapi::recordDialogOptional;
    }
  }
  trace("pfParmeters::WriteScriptParams(' return(", 0, ") )");
}

}  // namespace radiashafts
