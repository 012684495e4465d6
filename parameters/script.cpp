// Reads and writes the host's descriptors.

#include <utility>

#include "diagnostics/debug_log.h"
#include "hostapi/constants.h"
#include "parameters/parameters.h"
#include "platform/global_handle.h"
#include "platform/host_call.h"

namespace radiashafts {

using platform::callHost;

namespace {

// RAII: a descriptor of the host opened for reading. get returns null when the host opened none.
class ReadToken {
 public:
  ReadToken(const hostapi::ReadDescriptorProcs& procs, hostapi::Handle descriptor,
            hostapi::DescriptorKey* keys)
      : procs_(procs), token_(callHost(procs.openReadDescriptorProc, descriptor, keys)) {}
  ~ReadToken() {
    if (token_ != nullptr) callHost(procs_.closeReadDescriptorProc, token_);
  }
  ReadToken(const ReadToken&) = delete;
  ReadToken& operator=(const ReadToken&) = delete;

  hostapi::Token get() const { return token_; }

 private:
  const hostapi::ReadDescriptorProcs& procs_;
  hostapi::Token token_;
};

// RAII: a descriptor opened for writing. The caller of finish owns the written handle; without
// finish it is freed.
class WriteToken {
 public:
  WriteToken(const hostapi::WriteDescriptorProcs& procs, const hostapi::HandleProcs* handleProcs)
      : procs_(procs), handleProcs_(handleProcs), token_(callHost(procs.openWriteDescriptorProc)) {}
  ~WriteToken() {
    if (token_ == nullptr) return;
    if (hostapi::Handle unused = finish()) DisposeDescriptorHandle(handleProcs_, unused);
  }
  WriteToken(const WriteToken&) = delete;
  WriteToken& operator=(const WriteToken&) = delete;

  hostapi::Token get() const { return token_; }
  // Null when the host fails.
  hostapi::Handle finish() {
    hostapi::Handle written = nullptr;
    callHost(procs_.closeWriteDescriptorProc, std::exchange(token_, nullptr), &written);
    return written;
  }

 private:
  const hostapi::WriteDescriptorProcs& procs_;
  const hostapi::HandleProcs* handleProcs_;
  hostapi::Token token_;
};

bool allEntriesPresent(const hostapi::ReadDescriptorProcs& procs) {
  return procs.openReadDescriptorProc && procs.closeReadDescriptorProc && procs.getKeyProc &&
         procs.getIntegerProc && procs.getFloatProc && procs.getUnitFloatProc &&
         procs.getBooleanProc && procs.getTextProc && procs.getAliasProc &&
         procs.getEnumeratedProc && procs.getClassProc && procs.getSimpleReferenceProc &&
         procs.getObjectProc && procs.getCountProc && procs.getStringProc &&
         procs.getPinnedIntegerProc && procs.getPinnedFloatProc && procs.getPinnedUnitFloatProc;
}

bool isUsable(const hostapi::HandleProcs* procs) {
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
  if (isUsable(handleProcs)) {
    callHost(handleProcs->disposeProc, handle);
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
  bool showsInterface = true;
  std::vector<std::uint32_t> keys = ScriptKeys();

  hostapi::PIDescriptorParameters* descriptors = record->descriptorParameters;
  if (IsDescriptorUsable(descriptors)) {
    const hostapi::ReadDescriptorProcs& procs = *descriptors->readDescriptorProcs;
    bool opened = false;
    {
      const ReadToken token(procs, descriptors->descriptor, keys.data());
      std::uint32_t key = 0;
      std::uint32_t type = 0;
      std::int32_t flags = 0;
      opened = token.get() != nullptr;
      while (opened && callHost(procs.getKeyProc, token.get(), &key, &type, &flags) != 0) {
        for (pfParameter* parameter : parameters_) parameter->ReadScript(record, key, token.get());
      }
    }
    if (opened) {
      DisposeDescriptorHandle(record->handleProcs, descriptors->descriptor);
      descriptors->descriptor = nullptr;
    }
    showsInterface = descriptors->playInfo == hostapi::playDisplay;
  }
  trace("pfParmeters::ReadScriptParams( return(", showsInterface, ") )");
  return showsInterface;
}

void pfParameters::WriteScriptParams(hostapi::FilterRecord* record) {
  trace("pfParmeters::WriteScriptParams( pFilterRecord(0x", static_cast<void*>(record), ") )");
  const LogIndent indent;
  hostapi::PIDescriptorParameters* descriptors = record->descriptorParameters;
  if (IsDescriptorUsable(descriptors)) {
    const hostapi::WriteDescriptorProcs& procs = *descriptors->writeDescriptorProcs;
    WriteToken token(procs, record->handleProcs);
    if (token.get() != nullptr) {
      for (pfParameter* parameter : parameters_) parameter->WriteScript(record, token.get());
      if (descriptors->descriptor != nullptr) {
        DisposeDescriptorHandle(record->handleProcs, descriptors->descriptor);
      }
      descriptors->descriptor = token.finish();
      descriptors->recordInfo = hostapi::recordDialogOptional;
    }
  }
  trace("pfParmeters::WriteScriptParams(' return(", 0, ") )");
}

}  // namespace radiashafts
