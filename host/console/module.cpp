#include "host/console/module.h"

#include <dlfcn.h>

#include <cstdio>
#include <filesystem>
#include <system_error>
#include <vector>

#include "host/console/options.h"
#include "vora/arx.h"

namespace vora_console {
namespace {

using EntryPoint = AcRx::AppRetCode (*)(AcRx::AppMsgCode, void*);

constexpr const char* kModuleFile = "libvoraclib.so";

struct LoadedModule {
  std::string path;
  void* handle = nullptr;
  EntryPoint entry = nullptr;
  bool failed = false;
};

LoadedModule& module() {
  static LoadedModule m;
  return m;
}

std::string& requestedPath() {
  static std::string path;
  return path;
}

// Next to the executable first (a build tree), then ../lib or the library
// folder the build installs to (an installed tree). When none exists the
// first is named in the error.
std::string defaultPath() {
  std::error_code ec;
  const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (ec) return kModuleFile;
  const std::filesystem::path dir = exe.parent_path();
  std::vector<std::filesystem::path> candidates = {dir / kModuleFile, dir.parent_path() / "lib" / kModuleFile};
#ifdef VORA_CONSOLE_LIBDIR
  candidates.push_back(dir.parent_path() / VORA_CONSOLE_LIBDIR / kModuleFile);
#endif
  for (const auto& c : candidates)
    if (std::filesystem::exists(c, ec)) return c.string();
  return candidates.front().string();
}

bool load() {
  LoadedModule& m = module();
  if (m.handle != nullptr) return true;
  if (m.failed) return false;
  m.failed = true;
  m.path = requestedPath().empty() ? defaultPath() : requestedPath();
  // A bare file name would send dlopen through the library search path;
  // the console loads the file it was given.
  std::string file = m.path;
  if (file.find('/') == std::string::npos) file = "./" + file;
  void* handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    const char* why = dlerror();
    std::fprintf(stderr, "vora: cannot load the module %s: %s\n", m.path.c_str(), why ? why : "unknown reason");
    return false;
  }
  // A module without the plug-in entry point is accepted: VoraCLib does not
  // export acrxEntryPoint yet, and its functions need no initialisation.
  // When it is there, the module gets the application messages the CAD
  // program sends, with its library handle as the application id.
  m.entry = reinterpret_cast<EntryPoint>(dlsym(handle, "acrxEntryPoint"));
  if (m.entry != nullptr && m.entry(AcRx::kInitAppMsg, handle) != AcRx::kRetOK) {
    std::fprintf(stderr, "vora: the module %s refused to initialise\n", m.path.c_str());
    m.entry = nullptr;
    dlclose(handle);
    return false;
  }
  m.handle = handle;
  m.failed = false;
  return true;
}

int parseModule(const std::string& value) {
  if (value.empty()) {
    std::fprintf(stderr, "vora: --module needs a file name\n");
    return 1;
  }
  requestedPath() = value;
  return 0;
}

const bool registered = registerOption(
    {"--module", true, "PATH  load VoraCLib from PATH instead of libvoraclib.so next to vora (or in ../lib)",
     &parseModule, nullptr});

}  // namespace

void* moduleFunction(const char* name) {
  if (!load()) return nullptr;
  LoadedModule& m = module();
  dlerror();
  void* function = dlsym(m.handle, name);
  if (function == nullptr) std::fprintf(stderr, "vora: the module %s has no function %s\n", m.path.c_str(), name);
  return function;
}

void unloadModule() {
  LoadedModule& m = module();
  if (m.handle == nullptr) return;
  if (m.entry != nullptr) m.entry(AcRx::kUnloadAppMsg, m.handle);
  dlclose(m.handle);
  m = LoadedModule();
}

}  // namespace vora_console
