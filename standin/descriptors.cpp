#include "standin/descriptors.h"

#include <cstdlib>
#include <cstring>
#include <memory>

#include "standin/host_fault.h"

namespace radiashafts::standin {
namespace {

// The memory behind a handle: the master pointer, followed by the block's size.
struct Master {
  char* block;  // the handle points to this member
  std::int32_t size;
};

Master* masterOf(hostapi::Handle handle) {
  return reinterpret_cast<Master*>(handle);
}

std::int32_t handleSize(hostapi::Handle handle) {
  return masterOf(handle)->size;
}

hostapi::OSErr setHandleSize(hostapi::Handle handle, std::int32_t size) {
  void* block = std::realloc(masterOf(handle)->block, static_cast<std::size_t>(size));
  if (block == nullptr && size != 0) return -108;
  masterOf(handle)->block = static_cast<char*>(block);
  masterOf(handle)->size = size;
  return 0;
}

void* lockHandle(hostapi::Handle handle, hostapi::Boolean) {
  return *handle;
}
void unlockHandle(hostapi::Handle) {}
void recoverSpace(std::int32_t) {}

struct Reader {
  Script script;
  std::size_t next = 0;

  const ScriptValue& current() const { return script[next - 1].second; }
};

Reader& reader(hostapi::Token token) {
  return *static_cast<Reader*>(token);
}

constexpr hostapi::OSErr callFailed = -1700;

template <class Value>
hostapi::OSErr readAs(hostapi::Token token, Value* value) {
  constexpr hostapi::OSErr wrongType = -1715;
  if (callFails(Service::descriptors)) return callFailed;
  const Value* held = std::get_if<Value>(&reader(token).current());
  if (held == nullptr) return wrongType;
  *value = *held;
  return 0;
}

hostapi::Token openRead(hostapi::Handle descriptor, hostapi::DescriptorKey*) {
  if (callFails(Service::descriptors)) return nullptr;
  auto* const token = new Reader{scriptOf(descriptor)};
  ++liveObjects().tokens;
  return token;
}

hostapi::OSErr closeRead(hostapi::Token token) {
  delete &reader(token);
  --liveObjects().tokens;
  return callFails(Service::descriptors) ? callFailed : hostapi::OSErr{0};
}

hostapi::Boolean getKey(hostapi::Token token, hostapi::DescriptorKey* key, std::uint32_t* type,
                        std::int32_t* flags) {
  Reader& r = reader(token);
  if (callFails(Service::descriptors) || r.next == r.script.size()) return 0;
  const auto& [entryKey, value] = r.script[r.next++];
  constexpr std::uint32_t types[] = {hostapi::fourCharacterCode("doub"),
                                     hostapi::fourCharacterCode("long"),
                                     hostapi::fourCharacterCode("bool")};
  *key = entryKey;
  *type = types[value.index()];
  *flags = 0;
  return 1;
}

hostapi::OSErr getInteger(hostapi::Token token, std::int32_t* value) {
  return readAs(token, value);
}

hostapi::OSErr getFloat(hostapi::Token token, double* value) {
  return readAs(token, value);
}

hostapi::OSErr getBoolean(hostapi::Token token, hostapi::Boolean* value) {
  bool flag = false;
  const hostapi::OSErr error = readAs(token, &flag);
  if (error == 0) *value = flag ? 1 : 0;
  return error;
}

hostapi::OSErr getUnitFloat(hostapi::Token, std::uint32_t*, double*) {
  return -1;
}

Script& writer(hostapi::Token token) {
  return *static_cast<Script*>(token);
}

hostapi::Token openWrite() {
  if (callFails(Service::descriptors)) return nullptr;
  auto* const token = new Script;
  ++liveObjects().tokens;
  return token;
}

hostapi::OSErr closeWrite(hostapi::Token token, hostapi::Handle* descriptor) {
  const std::unique_ptr<Script> script(&writer(token));
  --liveObjects().tokens;
  if (callFails(Service::descriptors)) return callFailed;
  *descriptor = makeDescriptor(*script);
  return *descriptor == nullptr ? callFailed : hostapi::OSErr{0};
}

template <class Value>
hostapi::OSErr put(hostapi::Token token, hostapi::DescriptorKey key, Value value) {
  if (callFails(Service::descriptors)) return callFailed;
  writer(token).emplace_back(key, value);
  return 0;
}

hostapi::OSErr putInteger(hostapi::Token token, hostapi::DescriptorKey key, std::int32_t value) {
  return put(token, key, value);
}

hostapi::OSErr putFloat(hostapi::Token token, hostapi::DescriptorKey key, const double* value) {
  return put(token, key, *value);
}

hostapi::OSErr putBoolean(hostapi::Token token, hostapi::DescriptorKey key,
                          hostapi::Boolean value) {
  return put(token, key, value != 0);
}

void unusedProc() {
  std::abort();
}

}  // namespace

hostapi::Handle newHandle(std::int32_t size) {
  if (callFails(Service::handles)) return nullptr;
  auto* master = static_cast<Master*>(std::malloc(sizeof(Master)));
  if (master == nullptr) return nullptr;
  *master = {static_cast<char*>(std::malloc(static_cast<std::size_t>(size))), size};
  ++liveObjects().handles;
  return &master->block;
}

void disposeHandle(hostapi::Handle handle) {
  if (handle == nullptr) return;
  std::free(*handle);
  std::free(handle);
  --liveObjects().handles;
}

hostapi::Handle makeDescriptor(const Script& script) {
  using Entry = Script::value_type;
  static_assert(std::is_trivially_copyable_v<ScriptValue>);
  const std::size_t bytes = script.size() * sizeof(Entry);
  const hostapi::Handle handle = newHandle(static_cast<std::int32_t>(bytes));
  if (handle != nullptr && bytes != 0) {
    std::memcpy(*handle, static_cast<const void*>(script.data()), bytes);
  }
  return handle;
}

Script scriptOf(hostapi::Handle descriptor) {
  using Entry = Script::value_type;
  if (descriptor == nullptr) return {};
  Script script(static_cast<std::size_t>(handleSize(descriptor)) / sizeof(Entry));
  if (!script.empty()) {
    std::memcpy(static_cast<void*>(script.data()), *descriptor, script.size() * sizeof(Entry));
  }
  return script;
}

hostapi::HandleProcs* handleProcs() {
  static hostapi::HandleProcs procs{hostapi::handleProcsVersion,
                                    hostapi::handleProcsCount,
                                    newHandle,
                                    disposeHandle,
                                    handleSize,
                                    setHandleSize,
                                    lockHandle,
                                    unlockHandle,
                                    recoverSpace,
                                    disposeHandle};
  return &procs;
}

hostapi::ReadDescriptorProcs* readDescriptorProcs() {
  static hostapi::ReadDescriptorProcs procs{0,          hostapi::readDescriptorProcsCount,
                                            openRead,   closeRead,
                                            getKey,     getInteger,
                                            getFloat,   getUnitFloat,
                                            getBoolean, unusedProc,
                                            unusedProc, unusedProc,
                                            unusedProc, unusedProc,
                                            unusedProc, unusedProc,
                                            unusedProc, unusedProc,
                                            unusedProc, unusedProc};
  return &procs;
}

hostapi::WriteDescriptorProcs* writeDescriptorProcs() {
  static hostapi::WriteDescriptorProcs procs{0,          hostapi::writeDescriptorProcsCount,
                                             openWrite,  closeWrite,
                                             putInteger, putFloat,
                                             nullptr,    putBoolean,
                                             unusedProc, unusedProc,
                                             unusedProc, unusedProc,
                                             unusedProc, unusedProc,
                                             unusedProc, unusedProc,
                                             unusedProc, unusedProc};
  return &procs;
}

}  // namespace radiashafts::standin
