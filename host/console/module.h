// The VoraCLib module as the console loads it: a plug-in opened with dlopen
// only when an option needs one of its functions, as the CAD program loads an
// application module.
#ifndef VORA_HOST_CONSOLE_MODULE_H
#define VORA_HOST_CONSOLE_MODULE_H

namespace vora_console {

// The exported function name of the module, which is loaded on the first
// call: the file given with --module, else libvoraclib.so next to the vora
// executable, else in ../lib beside its folder (an installed tree). Null,
// after printing the error on standard error, when the module cannot be
// loaded, refuses its initialisation or lacks the function.
void* moduleFunction(const char* name);

template <class Function>
Function moduleFunction(const char* name) {
  return reinterpret_cast<Function>(moduleFunction(name));
}

// Sends the module its unload message and closes it; nothing when it was
// never loaded.
void unloadModule();

}  // namespace vora_console

#endif
