// Host-internal parts of the run-time class system.
#ifndef VORA_HOST_RX_RXINTERNAL_H
#define VORA_HOST_RX_RXINTERNAL_H

namespace vora_host {

// Registers every class the host models; called once, when the class
// dictionary is first used.
void registerHostClasses();

}  // namespace vora_host

#endif
