// A stand-in plug-in for the console's loader: the entry point and nothing
// else. It prints each message it gets, and refuses its initialisation when
// VORA_PROBE_REFUSE is set.
#include <cstdio>
#include <cstdlib>

#include "vora/arx/rx.h"

extern "C" __attribute__((visibility("default"))) AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg,
                                                                                  void* appId) {
  std::printf("acrxEntryPoint %d %s\n", static_cast<int>(msg), appId != nullptr ? "with id" : "without id");
  if (msg == AcRx::kInitAppMsg && std::getenv("VORA_PROBE_REFUSE") != nullptr) return AcRx::kRetError;
  return AcRx::kRetOK;
}
